// Text to bytes, range-checked: the other direction of Value_View.h.
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "Value_View.h"

namespace vornex {

namespace {

[[noreturn]] void refuse(const std::string& text, const std::string& reason) {
    throw std::invalid_argument("'" + text + "' " + reason);
}

std::string littleEndianBytes(std::uint64_t number, std::size_t size) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) {
        bytes += static_cast<char>(number & 0xFF);
        number >>= 8;
    }
    return bytes;
}

struct Whole_Number {
    bool negative = false;
    std::uint64_t magnitude = 0;
};

// Decimal or 0x, nothing around it. A leading 0 is decimal: nobody writes octal by intent.
Whole_Number wholeNumber(const std::string& text) {
    Whole_Number number;
    std::size_t at = 0;
    if (text[at] == '-' || text[at] == '+') number.negative = text[at++] == '-';
    const bool hex = text.compare(at, 2, "0x") == 0 || text.compare(at, 2, "0X") == 0;
    const std::string digits = text.substr(hex ? at + 2 : at);
    const char* const allowed = hex ? "0123456789abcdefABCDEF" : "0123456789";
    if (digits.empty() || digits.find_first_not_of(allowed) != std::string::npos) refuse(text, "is not a whole number");
    errno = 0;
    number.magnitude = std::strtoull(digits.c_str(), nullptr, hex ? 16 : 10);
    if (errno == ERANGE) refuse(text, "is out of range");
    return number;
}

std::string integerBytes(const std::string& text, std::size_t size, bool isSigned) {
    const Whole_Number number = wholeNumber(text);
    const unsigned bits = static_cast<unsigned>(8 * size);
    const std::uint64_t highest = std::numeric_limits<std::uint64_t>::max() >> (64 - bits + (isSigned ? 1 : 0));
    const std::uint64_t lowest = isSigned ? highest + 1 : 0;  // as a magnitude
    if (number.magnitude > (number.negative ? lowest : highest)) {
        refuse(text, "is out of range: " + std::string(isSigned ? "-" + std::to_string(lowest) : "0") + " to " +
                         std::to_string(highest));
    }
    return littleEndianBytes(number.negative ? 0 - number.magnitude : number.magnitude, size);
}

std::string floatBytes(const std::string& text, std::size_t size) {
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (*end != '\0' || std::isspace(static_cast<unsigned char>(text[0]))) refuse(text, "is not a number");
    const bool saysInfinite = std::tolower(static_cast<unsigned char>(text[text.find_first_not_of("+-")])) == 'i';
    const bool tooLarge = std::isinf(number) || (size == 4 && std::isinf(static_cast<float>(number)));
    if (tooLarge && !saysInfinite) refuse(text, "is out of range of a float of " + std::to_string(size) + " bytes");
    std::uint64_t bits = 0;
    if (size == 4) {
        const float single = static_cast<float>(number);
        std::memcpy(&bits, &single, sizeof single);
        bits &= 0xFFFFFFFF;
    } else {
        std::memcpy(&bits, &number, sizeof number);
    }
    return littleEndianBytes(bits, size);
}

std::string boolBytes(const std::string& text, std::size_t size) {
    for (const char* yes : {"1", "true", "on"}) {
        if (text == yes) return littleEndianBytes(1, size);
    }
    for (const char* no : {"0", "false", "off"}) {
        if (text == no) return littleEndianBytes(0, size);
    }
    refuse(text, "is neither true, on, 1 nor false, off, 0");
}

std::string filled(const std::string& bytes, std::size_t size, const std::string& text) {
    if (bytes.size() > size) refuse(text, "is longer than " + std::to_string(size) + " bytes");
    return bytes + std::string(size - bytes.size(), '\0');
}

}  // namespace

std::string bytesOfHex(const std::string& text) {
    std::string bytes;
    int high = -1;
    for (char letter : text) {
        const unsigned char digit = static_cast<unsigned char>(letter);
        if (std::isspace(digit) && high < 0) continue;
        if (!std::isxdigit(digit)) refuse(text, "is not a run of bytes in hex");
        const int value = std::isdigit(digit) ? digit - '0' : std::tolower(digit) - 'a' + 10;
        if (high >= 0) bytes += static_cast<char>(high << 4 | value);
        high = high >= 0 ? -1 : value;
    }
    if (high >= 0) refuse(text, "ends in half a byte");
    return bytes;
}

std::string parseValue(View view, std::size_t size, const std::string& text) {
    if (view == View::Text) return filled(text, size, text);
    if (text.empty()) refuse(text, "is no value");
    switch (view) {
        case View::S8:
        case View::S16:
        case View::S32:
        case View::S64: return integerBytes(text, size, true);
        case View::F32:
        case View::F64: return floatBytes(text, size);
        case View::Bool: return boolBytes(text, size);
        case View::Bytes: return filled(bytesOfHex(text), size, text);
        case View::Hex:
            if (size > 8) return filled(bytesOfHex(text), size, text);
            return integerBytes(text, size, false);
        default: return integerBytes(text, size, false);
    }
}

}  // namespace vornex
