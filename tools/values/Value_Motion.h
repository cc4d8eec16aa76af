// How a value moves: the texts of "sim" in the label file.
#ifndef VORNEX_VALUES_VALUE_MOTION_H
#define VORNEX_VALUES_VALUE_MOTION_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "values/Shown_Value.h"

namespace vornex {

struct Motion {
    enum class Kind { Const, Ramp, Sine, Square, Toggle, Random, Count };
    Kind kind = Kind::Const;
    std::string bytes;   // of a const, those of its element
    double low = 0;      // count: the first value
    double high = 0;     // count: the step
    double period = 0;   // ms
    std::string remark;  // of a const: what is stored in place of a number that a float does not hold
};

// What may stand in "sim", for help texts.
extern const char* const MotionHelp;

// Reads "ramp(0,3000,500)" for an element of this form; its values are shown ones, those of the motion are raw. Throws
// std::invalid_argument with the reason, also when the values do not fit the view.
Motion parseMotion(const std::string& text, const Value_Form& form);

// Calls `take` for every element with a motion, in the order of the file, as far as the simulator takes them: up to a
// million. The first one beyond, if there is one.
std::optional<Leaf> forEachMotion(const Label_File& file, const std::function<void(const Leaf&)>& take);
extern const char* const TooManyMotions;

// The value at a time in ms since the start. `element` counts the elements of an array from 0: each runs a tenth of the
// period behind the one before (count and random: a value of its own). Not for a const.
double motionValue(const Motion& motion, double time, std::uint64_t element, std::uint64_t seed);

}  // namespace vornex

#endif
