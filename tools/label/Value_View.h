// Bytes as people see them, and back. The wire's byte order is little-endian.
#ifndef VORNEX_LABEL_VALUE_VIEW_H
#define VORNEX_LABEL_VALUE_VIEW_H

#include <cstddef>
#include <string>
#include <vector>

#include "../common/Label_File.h"
#include "Value.h"

namespace vornex {

// Bytes of one value under the view; 0 for views that take any number of bytes (hex, text, bytes, bool).
std::size_t viewBytes(View view);

// The unsigned view of an element's size, or text; what View::Default stands for.
View defaultView(int typeCode);

// Every view's name in the label file, "default" left out.
std::vector<std::string> viewNames();

// One value. Views of a fixed width need that many bytes; with fewer the result is the bytes in hex.
// Hex up to 8 bytes is a number ("0x01F4"); longer runs, and bytes, are "01 F4 ..." in the order of the wire.
// Text ends at the first zero byte; what cannot be printed is shown as \xNN.
Value viewValue(View view, const std::string& bytes);

// The bytes of one value of `size` bytes. Takes decimal, 0x, floats, true/false/on/off, "text" and "01 F4" as the view
// has it. Throws std::invalid_argument with the reason: no number, out of range, too long.
std::string parseValue(View view, std::size_t size, const std::string& text);

// "01 F4 00"
std::string hexBytes(const std::string& bytes);
// "01f400", with or without spaces. Throws std::invalid_argument with the reason.
std::string bytesOfHex(const std::string& text);

// Without white space at both ends.
std::string trimmed(const std::string& text);

}  // namespace vornex

#endif
