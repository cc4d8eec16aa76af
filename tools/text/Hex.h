// Bytes and numbers in hex.
#ifndef VORNEX_TEXT_HEX_H
#define VORNEX_TEXT_HEX_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vornex {

// "01 F4 00", or with something else between the bytes.
std::string hexBytes(std::string_view bytes, const char* between = " ");
// The first `most` of them, and whether there are more: "01 F4 ...".
std::string firstHexBytes(std::string_view bytes, std::size_t most);
// "01f400", with or without spaces. Throws std::invalid_argument with the reason.
std::string bytesOfHex(const std::string& text);

// "01F4" for 500 in four digits.
std::string hexDigits(std::uint64_t number, std::size_t digits);

}  // namespace vornex

#endif
