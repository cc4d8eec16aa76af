#include "text/Number.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include "text/Text.h"

namespace vornex {
namespace {

struct Whole {
    bool hasSign = false;
    bool isNegative = false;
    std::uint64_t magnitude = 0;
};

std::optional<Whole> readWhole(const std::string& text) {
    Whole whole;
    whole.isNegative = text[0] == '-';
    whole.hasSign = whole.isNegative || text[0] == '+';
    const char* begin = text.data() + whole.hasSign;
    const char* const end = text.data() + text.size();
    const bool isHex = end - begin > 2 && begin[0] == '0' && (begin[1] == 'x' || begin[1] == 'X');
    const auto result = std::from_chars(isHex ? begin + 2 : begin, end, whole.magnitude, isHex ? 16 : 10);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return whole;
}

[[noreturn]] void refuse(const std::string& what, const std::string& text, const std::string& range) {
    throw std::invalid_argument(what + (what.empty() ? "" : " ") + quoted(text) + " is not a " + range);
}

template <class Integer>
[[noreturn]] void refuseWhole(const std::string& what, const std::string& text, Integer lowest, Integer highest) {
    refuse(what, text, "whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
}

}  // namespace

std::uint64_t unsignedNumber(const std::string& text, std::uint64_t lowest, std::uint64_t highest,
                             const std::string& what) {
    const std::optional<Whole> whole = readWhole(text);
    if (!whole || whole->hasSign || whole->magnitude < lowest || whole->magnitude > highest) {
        refuseWhole(what, text, lowest, highest);
    }
    return whole->magnitude;
}

std::int64_t signedNumber(const std::string& text, std::int64_t lowest, std::int64_t highest, const std::string& what) {
    const std::optional<Whole> whole = readWhole(text);
    constexpr std::uint64_t Most = std::numeric_limits<std::int64_t>::max();
    const bool isLarge = whole && whole->magnitude > Most + (whole->isNegative ? 1 : 0);
    if (!whole || isLarge || (whole->hasSign && lowest >= 0)) refuseWhole(what, text, lowest, highest);
    const auto number = static_cast<std::int64_t>(whole->isNegative ? 0 - whole->magnitude : whole->magnitude);
    if (number < lowest || number > highest) refuseWhole(what, text, lowest, highest);
    return number;
}

std::optional<std::int64_t> indexNumber(const std::string& text, int radix) {
    const std::string digits = trimmed(text);
    char* end = nullptr;
    errno = 0;
    const long long number = std::strtoll(digits.c_str(), &end, radix);
    if (digits.empty() || *end != '\0' || errno != 0) return std::nullopt;
    return number;
}

std::string indexText(std::int64_t number, int radix) {
    char digits[72];
    return std::string(digits, std::to_chars(digits, digits + sizeof digits, number, radix).ptr);
}

template <class Float>
std::optional<Float> readReal(const std::string& text) {
    if (const std::optional<Whole> whole = readWhole(text)) {
        const auto number = static_cast<Float>(whole->magnitude);
        return whole->isNegative ? -number : number;
    }
    const char* const begin = text.data() + (text[0] == '+' && text[1] != '-' ? 1 : 0);
    const char* const end = text.data() + text.size();
    Float number = 0;
    const auto result = std::from_chars(begin, end, number);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return number;
}

double realNumber(const std::string& text, double lowest, double highest) {
    const std::optional<double> number = readReal<double>(text);
    if (number && *number >= lowest && *number <= highest) return *number;
    const bool isLimited = lowest > std::numeric_limits<double>::lowest();
    refuse("", text, isLimited ? "number from " + shortestNumber(lowest) + " to " + shortestNumber(highest) : "number");
}

std::optional<int> compareNumbers(const std::string& a, const std::string& b) {
    const auto order = [](auto x, auto y) { return x < y ? -1 : x > y ? 1 : 0; };
    const std::optional<Whole> left = readWhole(a), right = readWhole(b);
    if (left && right) {
        const bool isBelow = left->isNegative && left->magnitude > 0;
        if (isBelow != (right->isNegative && right->magnitude > 0)) return isBelow ? -1 : 1;
        return isBelow ? order(right->magnitude, left->magnitude) : order(left->magnitude, right->magnitude);
    }
    const std::optional<double> x = readReal<double>(a), y = readReal<double>(b);
    if (!x || !y || std::isnan(*x) || std::isnan(*y)) return std::nullopt;
    return order(*x, *y);
}

namespace {

// The digits without zeros at the ends, and the power of ten of the first one. "-12.50" is "-125" and 1.
struct Decimal {
    explicit Decimal(const std::string& text) {
        const std::size_t mark = std::min(text.find_first_of("eE"), text.size());
        const bool isNegative = text[0] == '-';
        std::size_t point = std::string::npos;
        for (std::size_t at = isNegative || text[0] == '+'; at < mark; ++at) {
            if (text[at] == '.')
                point = digits.size();
            else
                digits += text[at];
        }
        power = static_cast<std::int64_t>(std::min(point, digits.size())) - 1;
        power += mark < text.size() ? std::strtoll(text.c_str() + mark + 1, nullptr, 10) : 0;
        const std::size_t first = std::min(digits.find_first_not_of('0'), digits.size());
        power -= static_cast<std::int64_t>(first);
        digits.erase(0, first);
        digits.erase(digits.find_last_not_of('0') + 1);
        if (digits.empty()) power = 0;
        if (isNegative) digits.insert(0, 1, '-');
    }
    std::string digits;
    std::int64_t power = 0;
};

}  // namespace

bool sameNumber(const std::string& a, const std::string& b) {
    const auto decimal = [](const std::string& text) {
        const std::optional<Whole> whole = readWhole(text);
        return Decimal(whole ? (whole->isNegative ? "-" : "") + std::to_string(whole->magnitude) : text);
    };
    const Decimal x = decimal(a), y = decimal(b);
    return x.digits == y.digits && x.power == y.power;
}

// As %g has it, whole numbers of up to six digits without an exponent: 100000, not 1e+05. But a precision given to
// to_chars rounds the exact number, which is not always the shortest text: at some powers of two it is the neighbour's.
template <class Float>
std::string shortestNumber(Float number) {
    char text[48];
    char* const room = text + sizeof text;
    char* end = std::to_chars(text, room, number, std::chars_format::scientific).ptr;
    const char* const mark = std::find(text, end, 'e');
    if (mark == end) return std::string(text, end);  // inf, nan
    const auto digits = std::count_if<const char*>(text, mark, [](char c) { return c >= '0' && c <= '9'; });
    int exponent = 0;
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), end, exponent);
    const bool isFixed = exponent >= -4 && exponent < std::max(6, static_cast<int>(digits));
    if (isFixed) end = std::to_chars(text, room, number, std::chars_format::fixed).ptr;
    return std::string(text, end);
}

std::string fixedNumber(double number, int digits) {
    char text[400];  // the largest double has 309 in front of the point
    return std::string(text, std::to_chars(text, text + sizeof text, number, std::chars_format::fixed, digits).ptr);
}

template std::optional<float> readReal(const std::string& text);
template std::optional<double> readReal(const std::string& text);
template std::string shortestNumber(float number);
template std::string shortestNumber(double number);

}  // namespace vornex
