// Values between texts, numbers and the controller's bytes, by view.
#ifndef VORNEX_SIM_VALUE_TEXT_H
#define VORNEX_SIM_VALUE_TEXT_H

#include <cstdint>
#include <string>
#include <vector>

#include "Frame_Codec.h"
#include "Label_File.h"

namespace vornex::sim {

// Pieces between the separators, blanks around them removed; one piece when there is none.
std::vector<std::string> splitText(const std::string& text, char separator);

// Reads the whole text as a number, decimal, 0x or with a fraction. Throws std::invalid_argument.
double parseNumber(const std::string& text);
// The same for a count without sign. `text` may be decimal or 0x. Throws std::invalid_argument, also above `highest`.
std::uint64_t parseUnsigned(const std::string& text, std::uint64_t highest);

// Throws std::invalid_argument when the view cannot show the number in so many bytes.
void checkRange(double value, View view, std::uint32_t bytes);

// The element's bytes, little-endian; whole numbers are rounded and wrap at their size.
Bytes encodeNumber(double value, View view, std::uint32_t bytes);

// An element's bytes from what a user wrote, and back on one line: control characters in a text show as \x0a.
// parseValue throws std::invalid_argument.
Bytes parseValue(const std::string& text, View view, std::uint32_t bytes);
std::string formatValue(const Bytes& bytes, View view);

}  // namespace vornex::sim

#endif
