// Numbers that people write: on the command line, in tables, on control lines, in fault rules.
#ifndef VORNEX_TEXT_NUMBER_H
#define VORNEX_TEXT_NUMBER_H

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>

namespace vornex {

// The whole text is the number, decimal or 0x: "010" is ten. No blanks; a sign only where a negative number may stand.
// All throw std::invalid_argument "WHAT 'TEXT' is not a whole number from LOWEST to HIGHEST"; `what` may be empty.
std::uint64_t unsignedNumber(const std::string& text, std::uint64_t lowest, std::uint64_t highest,
                             const std::string& what = "");
std::int64_t signedNumber(const std::string& text, std::int64_t lowest, std::int64_t highest,
                          const std::string& what = "");
template <class Integer>
Integer wholeNumber(const std::string& text, Integer lowest = std::numeric_limits<Integer>::min(),
                    Integer highest = std::numeric_limits<Integer>::max(), const std::string& what = "") {
    if constexpr (std::is_signed_v<Integer>) {
        return static_cast<Integer>(signedNumber(text, lowest, highest, what));
    } else {
        return static_cast<Integer>(unsignedNumber(text, lowest, highest, what));
    }
}

// An index of an array: digits of the radix, blanks around them and "0x" in radix 16 as the driver takes them.
std::optional<std::int64_t> indexNumber(const std::string& text, int radix);
std::string indexText(std::int64_t number, int radix);

// With fraction and exponent, or a whole number as above; the nearest float or double there is. Nothing when the text
// is something else, or when no such number comes near: 1e39 as a float. "inf" and "nan" are numbers here.
template <class Float>
std::optional<Float> readReal(const std::string& text);
// Throws std::invalid_argument "'TEXT' is not a number from LOWEST to HIGHEST"; without limits any finite one will do.
double realNumber(const std::string& text, double lowest = std::numeric_limits<double>::lowest(),
                  double highest = std::numeric_limits<double>::max());

// -1, 0 or 1 as `a` is less than, the same as or greater than `b`; whole numbers to the last digit, others as doubles.
// Nothing when one of them is no number, or nan.
std::optional<int> compareNumbers(const std::string& a, const std::string& b);

// Whether two texts of readReal() are the same number to the last digit, as texts: 0.10 and 1e-1, not 0.1 and what a
// float makes of it.
bool sameNumber(const std::string& a, const std::string& b);

// The shortest decimal text that reads back as the same number.
template <class Float>
std::string shortestNumber(Float number);
// "0.31" for two digits behind the point.
std::string fixedNumber(double number, int digits);

}  // namespace vornex

#endif
