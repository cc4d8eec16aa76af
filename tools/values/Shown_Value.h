// Raw values, as the bytes have them under a view, and shown values, as the label file says that people see them:
// scaled, with so many decimals, by the names of their states. The one place that turns one into the other.
//
// What is shown can be typed again and gives the same raw value, whatever scale and offset: the shown text is as short
// as that allows, and where no decimal text leads back it is "raw(1234)", which every value may be typed as.
#ifndef VORNEX_VALUES_SHOWN_VALUE_H
#define VORNEX_VALUES_SHOWN_VALUE_H

#include <memory>
#include <string>

#include "labels/Label_File.h"
#include "values/Value.h"

namespace vornex {

// How the values of a variable are shown and typed.
struct Value_Form {
    Value_Form(View elementView, std::uint32_t elementBytes, std::shared_ptr<const Meaning> elementMeaning = nullptr)
        : view(elementView), bytes(elementBytes), meaning(std::move(elementMeaning)) {}
    explicit Value_Form(const Leaf& leaf) : Value_Form(leaf.view, leaf.bytes, leaf.definition->meaning) {}

    View view;
    std::uint32_t bytes;                     // of one element
    std::shared_ptr<const Meaning> meaning;  // null: shown as they are
    bool isRaw = false;                      // shown and typed as they are, whatever they mean; limits still hold

    // Whether shown values may differ from raw ones.
    bool changes() const { return meaning && !isRaw && (meaning->isScaled() || !meaning->states.empty()); }
};

// What valueOf() gives for the bytes, as it is shown; lists item by item.
Value shownValue(const Value_Form& form, const Value& raw);
// The bytes of one element as they are shown.
Value shownOf(const Value_Form& form, const std::string& bytes);

// What was typed for one value, as the text that bytesOf() takes: a number, a state's name, "raw(1234)". A number
// between two raw values becomes the nearer one. Throws std::invalid_argument with the reason.
std::string rawText(const Value_Form& form, const std::string& typed);
// The bytes of one element, and of a list of any number of values, for what was typed; bytesOf() and bytesOfList() with
// the meaning. Limits are not looked at.
std::string bytesOfShown(const Value_Form& form, const std::string& typed);
std::string bytesOfShownList(const Value_Form& form, const std::string& typed);

// "'12.34' is stored as 12.3, the nearest": the first value typed, alone or in a list, that is not stored as it was
// typed; empty when all are. For what bytesOfShown() and bytesOfShownList() take.
std::string inexactRemark(const Value_Form& form, const std::string& typed);

// A shown number as a raw one, not rounded, and back.
double rawNumber(const Value_Form& form, double shown);
double shownNumber(const Value_Form& form, double raw);

// Throws std::invalid_argument for the first value of these bytes that is outside min and max.
void checkLimits(const Value_Form& form, const std::string& bytes);
// "low" or "high" for a value that is not normal, else empty; of a list the first one's that is not.
std::string bandOf(const Value_Form& form, const Value& raw);

}  // namespace vornex

#endif
