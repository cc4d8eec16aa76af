#include "text/Hex.h"

#include <cctype>
#include <stdexcept>

namespace vornex {
namespace {

constexpr char Digits[] = "0123456789ABCDEF";

}  // namespace

std::string hexBytes(std::string_view bytes, const char* between) {
    std::string text;
    text.reserve(3 * bytes.size());
    for (const char letter : bytes) {
        const unsigned char byte = static_cast<unsigned char>(letter);
        if (!text.empty()) text += between;
        text += Digits[byte >> 4];
        text += Digits[byte & 15];
    }
    return text;
}

std::string firstHexBytes(std::string_view bytes, std::size_t most) {
    return hexBytes(bytes.substr(0, most)) + (bytes.size() > most ? " ..." : "");
}

std::string bytesOfHex(const std::string& text) {
    std::string bytes;
    int high = -1;
    for (const char letter : text) {
        const unsigned char digit = static_cast<unsigned char>(letter);
        if (std::isspace(digit) && high < 0) continue;
        if (!std::isxdigit(digit)) throw std::invalid_argument("'" + text + "' is not a run of bytes in hex");
        const int value = std::isdigit(digit) ? digit - '0' : std::tolower(digit) - 'a' + 10;
        if (high >= 0) bytes += static_cast<char>(high << 4 | value);
        high = high >= 0 ? -1 : value;
    }
    if (high >= 0) throw std::invalid_argument("'" + text + "' ends in half a byte");
    return bytes;
}

std::string hexDigits(std::uint64_t number, std::size_t digits) {
    std::string text(digits, '0');
    for (std::size_t at = digits; at-- > 0; number >>= 4)
        text[at] = Digits[number & 15];
    return text;
}

}  // namespace vornex
