// "Speed>100", "writes>=3": what a value is expected to be.
#ifndef VORNEX_VALUES_COMPARISON_H
#define VORNEX_VALUES_COMPARISON_H

#include <optional>
#include <string>

#include "labels/Views.h"
#include "values/Value.h"

namespace vornex {

struct Comparison {
    std::string text;     // as it was written
    std::string subject;  // a label, a counter
    std::string sign;     // one of > >= < <= == !=
    std::string operand;

    // Numbers are compared as numbers, whole ones to the last digit, true and on as 1; == and != compare everything
    // else as text. An unknown value meets nothing.
    bool metBy(const Value& value) const;
};

// "SUBJECT SIGN OPERAND", = for == as well. Throws std::invalid_argument with the reason.
Comparison parseComparison(const std::string& text);
// Throws std::invalid_argument when values of the view cannot be compared so: a number with a word, a text by size.
void checkComparison(const Comparison& comparison, View view);

// The value as a number: true is 1, "0x1F" is 31. Nothing when it is none.
std::optional<double> numberOf(const Value& value);

}  // namespace vornex

#endif
