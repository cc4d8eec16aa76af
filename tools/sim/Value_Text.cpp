#include "Value_Text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace vornex::sim {
namespace {

bool isSigned(View view) { return view == View::S8 || view == View::S16 || view == View::S32 || view == View::S64; }

// Bytes that the view looks at, of an element with so many.
std::uint32_t viewedBytes(View view, std::uint32_t bytes) {
    std::uint32_t width = bytes;
    switch (view) {
        case View::U8:
        case View::S8: width = 1; break;
        case View::U16:
        case View::S16: width = 2; break;
        case View::U32:
        case View::S32:
        case View::F32: width = 4; break;
        case View::U64:
        case View::S64:
        case View::F64: width = 8; break;
        default: break;
    }
    return std::min({width, bytes, std::uint32_t(8)});
}

Bytes wholeNumber(std::uint64_t value, View view, std::uint32_t bytes) {
    Bytes result(bytes);
    for (std::uint32_t i = 0; i < viewedBytes(view, bytes); ++i) {
        result[i] = static_cast<std::uint8_t>(value >> 8 * i & 0xff);
    }
    return result;
}

// Whole numbers digit by digit, because a double is exact to 53 bits only; "1e3" and "2.5" by way of the double.
Bytes exactNumber(const std::string& text, double number, View view, std::uint32_t bytes) {
    const bool negative = text[0] == '-';
    const bool hex = text.compare(negative, 2, "0x") == 0;
    const char* end = text.data() + text.size();
    std::uint64_t value = 0;
    const auto result = std::from_chars(text.data() + negative + (hex ? 2 : 0), end, value, hex ? 16 : 10);
    if (result.ec != std::errc() || result.ptr != end) return encodeNumber(number, view, bytes);
    return wholeNumber(negative ? 0 - value : value, view, bytes);
}

template <class Float>
Bytes floatBytes(double value, std::uint32_t bytes) {
    const Float number = static_cast<Float>(value);
    Bytes result(bytes);
    std::memcpy(result.data(), &number, std::min(sizeof number, result.size()));
    return result;
}

template <class Float>
std::string floatText(const Bytes& bytes) {
    Float number = 0;
    std::memcpy(&number, bytes.data(), std::min(sizeof number, bytes.size()));
    char text[40];
    const auto end = std::to_chars(text, text + sizeof text, number);
    return std::string(text, end.ptr);
}

// Up to the first zero byte. A line end in it would look like one of the answer's own.
std::string shownText(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (byte == 0) break;
        const bool isControl = byte < 0x20 || byte == 0x7F;
        text += isControl ? "\\x" + hexText({byte}) : std::string(1, static_cast<char>(byte));
    }
    return text;
}

std::string wholeText(const Bytes& bytes, View view) {
    const std::uint32_t width = viewedBytes(view, static_cast<std::uint32_t>(bytes.size()));
    std::uint64_t value = 0;
    for (std::uint32_t i = width; i-- > 0;)
        value = value << 8 | bytes[i];
    if (width == 0 || !isSigned(view)) return std::to_string(value);
    const int unused = 64 - 8 * static_cast<int>(width);
    return std::to_string(static_cast<std::int64_t>(value << unused) >> unused);
}

}  // namespace

std::vector<std::string> splitText(const std::string& text, char separator) {
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        std::string piece = text.substr(begin, end - begin);
        piece.erase(0, std::min(piece.find_first_not_of(" \t\r"), piece.size()));
        piece.erase(piece.find_last_not_of(" \t\r") + 1);
        pieces.push_back(piece);
        if (end == text.size()) return pieces;
        begin = end + 1;
    }
}

double parseNumber(const std::string& text) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || std::isspace(static_cast<unsigned char>(text[0])) || *end != '\0' || !std::isfinite(value)) {
        throw std::invalid_argument("'" + text + "' is not a number");
    }
    return value;
}

std::uint64_t parseUnsigned(const std::string& text, std::uint64_t highest) {
    const bool hex = text.rfind("0x", 0) == 0;
    const char* begin = text.data() + (hex ? 2 : 0);
    const char* end = text.data() + text.size();
    std::uint64_t value = 0;
    const auto result = std::from_chars(begin, end, value, hex ? 16 : 10);
    if (result.ec != std::errc() || result.ptr != end || value > highest) {
        throw std::invalid_argument("'" + text + "' is not a whole number from 0 to " + std::to_string(highest));
    }
    return value;
}

void checkRange(double value, View view, std::uint32_t bytes) {
    double lowest = 0;
    double highest = std::ldexp(1.0, static_cast<int>(8 * viewedBytes(view, bytes))) - 1;
    if (isSigned(view)) {
        highest = std::floor(highest / 2);
        lowest = -highest - 1;
    }
    if (view == View::F32 || view == View::F64) {
        highest = view == View::F32 ? double(std::numeric_limits<float>::max()) : std::numeric_limits<double>::max();
        lowest = -highest;
    }
    if (value < lowest || value > highest) {
        throw std::invalid_argument(std::to_string(value) + " does not fit " + viewName(view) + " in " +
                                    std::to_string(bytes) + " bytes");
    }
}

Bytes encodeNumber(double value, View view, std::uint32_t bytes) {
    if (view == View::F32) return floatBytes<float>(value, bytes);
    if (view == View::F64) return floatBytes<double>(value, bytes);
    if (view == View::Bool) return wholeNumber(value != 0, view, bytes);
    const double rounded = std::round(value);
    if (rounded < 0) {
        return wholeNumber(static_cast<std::uint64_t>(-static_cast<std::int64_t>(std::min(-rounded, 9.2e18))), view,
                           bytes);
    }
    return wholeNumber(static_cast<std::uint64_t>(std::min(rounded, 18446744073709549568.0)), view, bytes);
}

Bytes parseValue(const std::string& text, View view, std::uint32_t bytes) {
    if (view == View::Bytes || view == View::Text) {
        Bytes value(text.begin(), text.end());
        if (view == View::Bytes && !parseHex(text, value))
            throw std::invalid_argument("'" + text + "' is not hex bytes");
        if (value.size() > bytes)
            throw std::invalid_argument("longer than the element's " + std::to_string(bytes) + " bytes");
        value.resize(bytes);
        return value;
    }
    const std::string word = text == "true" ? "1" : text == "false" ? "0" : text;
    const double number = parseNumber(word);
    checkRange(number, view, bytes);
    if (view == View::F32 || view == View::F64 || view == View::Bool) return encodeNumber(number, view, bytes);
    return exactNumber(word, number, view, bytes);
}

std::string formatValue(const Bytes& bytes, View view) {
    switch (view) {
        case View::F32: return floatText<float>(bytes);
        case View::F64: return floatText<double>(bytes);
        case View::Text: return shownText(bytes);
        case View::Bytes:
        case View::Hex: return hexText(bytes);
        case View::Bool:
            return std::any_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte != 0; }) ? "true"
                                                                                                        : "false";
        default: return wholeText(bytes, view);
    }
}

}  // namespace vornex::sim
