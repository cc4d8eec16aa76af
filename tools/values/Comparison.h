// "Speed>100", "writes>=3": what a value is expected to be.
#ifndef VORNEX_VALUES_COMPARISON_H
#define VORNEX_VALUES_COMPARISON_H

#include <optional>
#include <string>

#include "values/Shown_Value.h"

namespace vornex {

struct Comparison {
    std::string text;     // as it was written
    std::string subject;  // a label, a counter
    std::string sign;     // one of > >= < <= == !=
    std::string operand;
    bool ofRaw = false;  // raw values are compared, not shown ones

    // Numbers are compared as numbers, whole ones to the last digit, true and on as 1; == and != compare everything
    // else as text. An unknown value meets nothing.
    bool metBy(const Value& value) const;
};

// "SUBJECT SIGN OPERAND", = for == as well. Throws std::invalid_argument with the reason.
Comparison parseComparison(const std::string& text);
// Makes the comparison one of values of this form: where they have states, by name or number, raw values are compared.
// Throws std::invalid_argument when they cannot be compared so: a number with a word, a text by size.
void fitComparison(Comparison& comparison, const Value_Form& form);

// The value as a number: true is 1, "0x1F" is 31. Nothing when it is none.
std::optional<double> numberOf(const Value& value);

}  // namespace vornex

#endif
