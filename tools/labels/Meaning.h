// What the values of a label mean to people, beyond the view of their bytes.
#ifndef VORNEX_LABELS_MEANING_H
#define VORNEX_LABELS_MEANING_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "labels/Label_Type.h"

namespace vornex {

// A state of a value, or a bit of it, by its name.
struct Named_Number {
    std::string name;
    std::int64_t number = 0;
};

// Everything may be missing. The limits are in shown values: raw x scale + offset.
struct Meaning {
    std::string unit;
    std::string description;
    std::optional<int> decimals;  // wished for; more are shown where fewer would lead to another raw value
    std::optional<double> scale, offset;
    std::optional<double> min, max;   // what may be written
    std::optional<double> low, high;  // what is normal
    std::vector<Named_Number> states;
    std::vector<Named_Number> bits;  // by their place: 0 is the lowest bit of the element

    bool isScaled() const { return scale || offset || decimals; }
    bool isEmpty() const;
};

// Null when none has this name or number.
const Named_Number* findName(const std::vector<Named_Number>& all, const std::string& name);
const Named_Number* findNumber(const std::vector<Named_Number>& all, std::int64_t number);
std::vector<std::string> namesOf(const std::vector<Named_Number>& all);

// What is wrong with the meaning of an element of this view and size, in words: "\"scale\" is 0". Empty: nothing.
std::string meaningProblem(const Meaning& meaning, View view, std::uint32_t bytes);

}  // namespace vornex

#endif
