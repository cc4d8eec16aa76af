// How a value moves: the texts of "sim" in the label file.
#ifndef VORNEX_SIM_PLANT_VALUE_MOTION_H
#define VORNEX_SIM_PLANT_VALUE_MOTION_H

#include <cstdint>
#include <string>

#include "labels/Label_File.h"

namespace vornex::sim {

struct Motion {
    enum class Kind { Const, Ramp, Sine, Square, Toggle, Random, Count };
    Kind kind = Kind::Const;
    std::string bytes;  // of a const, those of its element
    double low = 0;     // count: the first value
    double high = 0;    // count: the step
    double period = 0;  // ms
};

// What may stand in "sim", for help texts.
extern const char* const MotionHelp;

// Reads "ramp(0,3000,500)" for an element of this view and size. Throws std::invalid_argument with the reason, also
// when the values do not fit the view.
Motion parseMotion(const std::string& text, View view, std::uint32_t bytes);

// The value at a time in ms since the start. `element` counts the elements of an array from 0: each runs a tenth of the
// period behind the one before (count and random: a value of its own). Not for a const.
double motionValue(const Motion& motion, double time, std::uint64_t element, std::uint64_t seed);

}  // namespace vornex::sim

#endif
