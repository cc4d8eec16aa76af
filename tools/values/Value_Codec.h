// Bytes as people see them, and back: the same in every program. The wire's byte order is little-endian.
//
// What is shown can be typed again and gives the same bytes; what is lost is the bytes of a text behind its first zero
// byte, and which of its 255 values makes a bool true.
#ifndef VORNEX_VALUES_VALUE_CODEC_H
#define VORNEX_VALUES_VALUE_CODEC_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "labels/Label_Type.h"
#include "values/Value.h"

namespace vornex {

// What the bytes hold: one value, or a list when they are more than one value of the view takes. `element`: bytes of
// one value under a view of no width of its own, 0: all of them. Bytes that are no whole number of values are shown in
// hex.
// Hex up to 8 bytes is a number ("0x01F4"), longer runs, and bytes, are "01 F4 ..." in the order of the wire. A text
// ends at the first zero byte, \xNN is a byte of it that cannot be printed. A nan of other bits than the usual ones is
// nan(0x7FA00000).
Value valueOf(View view, const std::string& bytes, std::size_t element = 0);

// As it is typed in, and as people read it: a text in quotes, also in a list of texts, where a quote is \x22.
std::string typedText(View view, const Value& value);

// The bytes of one element of `size` bytes: decimal, 0x, floats, true/on/1 and false/off/0 in upper or lower case, a
// text with or without quotes, "01 F4", and a list "[1, 2]" of as many values as it takes to fill the element.
// Throws std::invalid_argument with the reason: no such value, out of range, too long, too few or many values.
std::string bytesOf(View view, std::size_t size, const std::string& text);
// What stands between the commas of "[1, 2, "a, b"]"; those in quotes are no commas. Throws std::invalid_argument.
std::vector<std::string> itemsOfList(const std::string& text);
// The bytes of such a list, of any number of values; `size` as above.
std::string bytesOfList(View view, std::size_t size, const std::string& text);

// Of what bytesOf() or bytesOfList() takes: "'16777217' is stored as 16777216, the nearest number that 4 bytes hold"
// for the first number that a float does not hold; else empty.
std::string inexactRemark(View view, const std::string& text);

// The bytes of a text, as many as it has.
std::string bytesOfText(const std::string& text);
// true, on, 1 or false, off, 0, in upper or lower case; nothing for other words.
std::optional<bool> truthOf(const std::string& word);

// A number that is worked out, rounded and held within what the view takes, as the element's first value; what follows
// is zero. For views of text and bytes, the lowest bytes of the element.
std::string bytesOfNumber(View view, std::size_t size, double number);
// Throws std::invalid_argument when the view cannot show the number in so many bytes.
void checkNumber(View view, std::size_t size, double number);

}  // namespace vornex

#endif
