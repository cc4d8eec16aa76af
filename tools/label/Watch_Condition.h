// "Speed>100": when a watch ends.
#ifndef VORNEX_LABEL_WATCH_CONDITION_H
#define VORNEX_LABEL_WATCH_CONDITION_H

#include <string>

#include "Value.h"

namespace vornex {

// LABEL, one of > >= < <= == !=, and a number, true, false or a text.
struct Watch_Condition {
    std::string label;
    std::string comparison;
    std::string operand;

    // Numbers are compared as numbers; == and != also compare text. An unknown value meets no condition.
    bool metBy(const Value& value) const;
};

// Throws std::invalid_argument with the reason.
Watch_Condition parseCondition(const std::string& text);

// The value as a number: true is 1. False when it is none.
bool asNumber(const Value& value, double& number);

}  // namespace vornex

#endif
