#include "values/Value_Codec.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "text/Hex.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex {
namespace {

using Kind = View_Entry::Kind;

[[noreturn]] void refuse(const std::string& text, const std::string& reason) {
    throw std::invalid_argument(quoted(text) + " " + reason);
}

std::uint64_t littleEndian(const std::string& bytes) {
    std::uint64_t number = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    return number;
}

// Of the number's lowest bytes; what is beyond them is zero.
std::string littleEndianBytes(std::uint64_t number, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < std::min<std::size_t>(size, 8); ++i, number >>= 8)
        bytes[i] = static_cast<char>(number & 0xFF);
    return bytes;
}

struct Integer_Range {
    Integer_Range(View view, std::size_t size) {
        const bool isSigned = viewEntry(view).kind == Kind::Signed;
        const auto spare = static_cast<unsigned>(64 - 8 * std::min<std::size_t>(size, 8));
        highest = std::numeric_limits<std::uint64_t>::max() >> spare >> (isSigned ? 1 : 0);
        if (isSigned) lowest = -static_cast<std::int64_t>(highest) - 1;
    }
    std::int64_t lowest = 0;
    std::uint64_t highest = 0;
};

// ---- Floats ---------------------------------------------------------------------------------------------------------

template <class To, class From>
To sameBits(From from) {
    static_assert(sizeof(To) == sizeof(From));
    To to;
    std::memcpy(&to, &from, sizeof to);
    return to;
}

template <class Float, class Bits>
struct Float_Codec {
    static std::string shown(Bits bits) {
        const Float number = sameBits<Float>(bits);
        const bool isOddNan = std::isnan(number) && bits != usualNan();
        return isOddNan ? "nan(0x" + hexDigits(bits, 2 * sizeof bits) + ")" : shortestNumber(number);
    }
    static Bits bits(const std::string& text) {
        if (text == "nan") return usualNan();
        if (text.compare(0, 4, "nan(") == 0 && text.back() == ')') {
            const Bits odd = wholeNumber<Bits>(text.substr(4, text.size() - 5));
            if (std::isnan(sameBits<Float>(odd))) return odd;
        }
        const std::optional<Float> number = readReal<Float>(text);
        if (!number || std::isnan(*number)) {
            refuse(text, "is not a number that a float of " + std::to_string(sizeof(Float)) + " bytes holds");
        }
        return sameBits<Bits>(*number);
    }

private:
    static Bits usualNan() { return sameBits<Bits>(std::numeric_limits<Float>::quiet_NaN()); }
};
using Single = Float_Codec<float, std::uint32_t>;
using Double = Float_Codec<double, std::uint64_t>;

// ---- Texts ----------------------------------------------------------------------------------------------------------

// The byte that "\x1F" at this place stands for.
std::optional<char> escapedByte(const std::string& text, std::size_t at) {
    if (text.compare(at, 2, "\\x") != 0 || at + 4 > text.size()) return std::nullopt;
    const std::string digits = text.substr(at + 2, 2);
    if (digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) return std::nullopt;
    return bytesOfHex(digits)[0];
}

std::string printable(const std::string& bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size() && bytes[i] != '\0';) {
        const std::size_t length = escapedByte(bytes, i) ? 0 : harmlessLength(bytes, i);
        if (length == 0) text += "\\x" + hexDigits(static_cast<unsigned char>(bytes[i]), 2);
        text.append(bytes, i, length);
        i += length == 0 ? 1 : length;
    }
    return text;
}

std::string filled(const std::string& bytes, std::size_t size, const std::string& text) {
    if (bytes.size() > size) refuse(text, "is longer than " + std::to_string(size) + " bytes");
    return bytes + std::string(size - bytes.size(), '\0');
}

// ---- One value ------------------------------------------------------------------------------------------------------

Value oneValue(View view, const std::string& bytes) {
    const std::uint64_t number = littleEndian(bytes);
    switch (viewEntry(view).kind) {
        case Kind::Unsigned: return number;
        case Kind::Signed: {
            const unsigned spare = static_cast<unsigned>(64 - 8 * bytes.size());
            return static_cast<std::int64_t>(number << spare) >> spare;
        }
        case Kind::Float:
            return Value::number(bytes.size() == 4 ? Single::shown(static_cast<std::uint32_t>(number))
                                                   : Double::shown(number));
        case Kind::Bool: return bytes.find_first_not_of('\0') != std::string::npos;
        case Kind::Text: return printable(bytes);
        case Kind::Hex:
            if (!bytes.empty() && bytes.size() <= 8) return "0x" + hexDigits(number, 2 * bytes.size());
            break;
        case Kind::Bytes: break;
    }
    return hexBytes(bytes);
}

std::string boolBytes(std::size_t size, const std::string& text) {
    const std::optional<bool> truth = truthOf(text);
    if (!truth) refuse(text, "is neither true, on, 1 nor false, off, 0");
    return littleEndianBytes(*truth, size);
}

std::string integerBytes(View view, std::size_t size, const std::string& text) {
    const Integer_Range range(view, size);
    const bool isSigned = range.lowest < 0;
    return littleEndianBytes(isSigned ? static_cast<std::uint64_t>(
                                            signedNumber(text, range.lowest, static_cast<std::int64_t>(range.highest)))
                                      : unsignedNumber(text, 0, range.highest),
                             size);
}

std::string oneValueBytes(View view, std::size_t size, const std::string& text) {
    const Kind kind = viewEntry(view).kind;
    if (kind == Kind::Text) return filled(bytesOfText(text), size, text);
    if (text.empty()) refuse(text, "is no value");
    if (kind == Kind::Bytes || (kind == Kind::Hex && size > 8)) return filled(bytesOfHex(text), size, text);
    if (kind == Kind::Bool) return boolBytes(size, text);
    if (kind != Kind::Float) return integerBytes(view, size, text);
    return littleEndianBytes(size == 4 ? Single::bits(text) : Double::bits(text), size);
}

}  // namespace

Value valueOf(View view, const std::string& bytes, std::size_t element) {
    const std::size_t width = viewEntry(view).width != 0 ? viewEntry(view).width : element;
    if (width == 0 || bytes.size() == width) return oneValue(view, bytes);
    if (bytes.size() % width != 0) return hexBytes(bytes);
    std::vector<Value> values;
    values.reserve(bytes.size() / width);
    for (std::size_t at = 0; at < bytes.size(); at += width)
        values.push_back(oneValue(view, bytes.substr(at, width)));
    return values;
}

std::string typedText(View view, const Value& value) {
    if (view != View::Text || value.kind == Value::Kind::Null) return value.shown();
    if (value.kind == Value::Kind::Text) return '"' + value.text + '"';
    std::string list;
    for (const Value& item : value.items)
        list += (list.empty() ? "\"" : ", \"") + joined(split(item.text, '"'), "\\x22") + '"';
    return "[" + list + "]";
}

std::string bytesOfText(const std::string& text) {
    const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    const std::string inner = isQuoted ? text.substr(1, text.size() - 2) : text;
    std::string bytes;
    for (std::size_t at = 0; at < inner.size(); ++at) {
        const std::optional<char> escaped = escapedByte(inner, at);
        bytes += escaped ? *escaped : inner[at];
        at += escaped ? 3 : 0;
    }
    return bytes;
}

std::optional<bool> truthOf(const std::string& word) {
    const std::string words = lowered(word);
    if (words == "true" || words == "on" || words == "1") return true;
    if (words == "false" || words == "off" || words == "0") return false;
    return std::nullopt;
}

std::vector<std::string> itemsOfList(const std::string& text) {
    if (text.size() < 2 || text.back() != ']') throw std::invalid_argument("the list has no closing ]");
    std::vector<std::string> items(1);
    bool isQuoted = false;
    for (const char letter : text.substr(1, text.size() - 2)) {
        if (letter == '"') isQuoted = !isQuoted;
        if (letter == ',' && !isQuoted)
            items.emplace_back();
        else
            items.back() += letter;
    }
    for (std::string& item : items)
        item = trimmed(item);
    return items;
}

std::string bytesOfList(View view, std::size_t size, const std::string& text) {
    const std::size_t width = viewEntry(view).width != 0 ? viewEntry(view).width : size;
    std::string bytes;
    for (const std::string& value : itemsOfList(text))
        bytes += oneValueBytes(view, width, value);
    return bytes;
}

std::string bytesOf(View view, std::size_t size, const std::string& text) {
    const std::size_t width = viewEntry(view).width;
    if (width == 0 || width == size) return oneValueBytes(view, size, text);
    const std::string words =
        "view " + viewName(view) + " has " + std::to_string(width) + " bytes, the element " + std::to_string(size);
    if (size % width != 0) throw std::invalid_argument(words);
    const std::string needed = words + ": write a list of " + std::to_string(size / width) + " values";
    if (text.empty() || text.front() != '[') throw std::invalid_argument(needed);
    std::string bytes = bytesOfList(view, size, text);
    if (bytes.size() != size) throw std::invalid_argument(needed);
    return bytes;
}

std::string inexactRemark(View view, const std::string& text) {
    if (viewEntry(view).kind != Kind::Float || text.empty()) return "";
    const std::size_t width = viewEntry(view).width;
    const bool isList = text.front() == '[';
    for (const std::string& typed : isList ? splitTrimmed(text.substr(1, text.size() - 2), ',') : std::vector{text}) {
        if (typed.find_first_of("nN") != std::string::npos) continue;  // inf, nan
        const std::string stored = oneValue(view, oneValueBytes(view, width, typed)).text;
        if (sameNumber(typed, stored)) continue;
        return std::string("'").append(typed).append("' is stored as ").append(stored) + ", the nearest number that " +
               std::to_string(width) + " bytes hold";
    }
    return "";
}

void checkNumber(View view, std::size_t size, double number) {
    const std::size_t width = viewEntry(view).width != 0 ? viewEntry(view).width : size;
    double lowest = 0, highest = 0;
    if (viewEntry(view).kind == Kind::Float) {
        highest = width == 4 ? double(std::numeric_limits<float>::max()) : std::numeric_limits<double>::max();
        lowest = -highest;
    } else {
        const Integer_Range range(view, width);
        lowest = static_cast<double>(range.lowest);
        highest = static_cast<double>(range.highest);
    }
    if (number >= lowest && number <= highest) return;
    refuse(shortestNumber(number), "is out of the range of " + viewName(view) + ": " + shortestNumber(lowest) + " to " +
                                       shortestNumber(highest));
}

std::string bytesOfNumber(View view, std::size_t size, double number) {
    const std::size_t width = viewEntry(view).width != 0 ? viewEntry(view).width : size;
    std::uint64_t bits = 0;
    if (viewEntry(view).kind == Kind::Float) {
        bits = width == 4 ? sameBits<std::uint32_t>(static_cast<float>(number)) : sameBits<std::uint64_t>(number);
    } else if (viewEntry(view).kind == Kind::Bool) {
        bits = number != 0;
    } else {
        // a double is exact at both ends of what fits 64 bits, one step short of them
        const double rounded = std::round(number);
        bits = rounded < 0 ? static_cast<std::uint64_t>(static_cast<std::int64_t>(std::max(rounded, -0x1p63)))
                           : static_cast<std::uint64_t>(std::min(rounded, 0x1.fffffffffffffp63));
    }
    std::string bytes = littleEndianBytes(bits, std::min(width, size));
    bytes.resize(size, '\0');
    return bytes;
}

}  // namespace vornex
