#include "labels/Meaning.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "text/Number.h"
#include "text/Text.h"

namespace vornex {
namespace {

using Kind = View_Entry::Kind;

// Every number that a state may have under the view.
bool holds(View view, std::uint32_t bytes, std::int64_t number) {
    const Kind kind = viewEntry(view).kind;
    if (kind == Kind::Bool) return number == 0 || number == 1;
    const unsigned bits = 8 * (viewEntry(view).width != 0 ? viewEntry(view).width : bytes);
    if (kind == Kind::Signed) return bits >= 64 || (number >= -(1LL << (bits - 1)) && number < 1LL << (bits - 1));
    return number >= 0 && (bits >= 63 || number < 1LL << bits);
}

// A state is typed where a number could stand, alone and in lists.
std::string stateNameProblem(const std::string& name) {
    if (name.empty() || name != trimmed(name)) return "is empty or has blanks at its ends";
    if (name.find_first_of(",[]\"|=") != std::string::npos) return "has one of , [ ] \" | =";
    if (name[0] == '@' || name.compare(0, 4, "raw(") == 0) return "begins with @ or raw(";
    if (readReal<double>(name)) return "is a number";
    return "";
}

std::string statesProblem(const Meaning& meaning, View view, std::uint32_t bytes) {
    std::set<std::string> names;
    std::set<std::int64_t> numbers;
    for (const Named_Number& state : meaning.states) {
        const std::string problem = stateNameProblem(state.name);
        if (!problem.empty()) return "the state '" + state.name + "' " + problem;
        if (!holds(view, bytes, state.number)) {
            return "the state '" + state.name + "' is " + std::to_string(state.number) + ", which view " +
                   viewName(view) + " does not hold";
        }
        if (!names.insert(state.name).second || !numbers.insert(state.number).second)
            return "two states have the name or the number of '" + state.name + "'";
    }
    return "";
}

std::string bitsProblem(const Meaning& meaning, std::uint32_t bytes) {
    std::set<std::string> names;
    std::set<std::int64_t> places;
    for (const Named_Number& bit : meaning.bits) {
        if (hasControl(bit.name)) return "the name of a bit holds a control character";
        if (bit.name.empty() || bit.name.find_first_of(".[]%|=*?") != std::string::npos)
            return "the bit '" + bit.name + "' is empty or has one of . [ ] % | = * ?";
        if (bit.number < 0 || bit.number >= 8 * std::int64_t(bytes)) {
            return "the bit '" + bit.name + "' is " + std::to_string(bit.number) + ", the element has 0 to " +
                   std::to_string(8 * bytes - 1);
        }
        if (!names.insert(bit.name).second || !places.insert(bit.number).second)
            return "two bits have the name or the place of '" + bit.name + "'";
    }
    return "";
}

}  // namespace

bool Meaning::isEmpty() const {
    return unit.empty() && description.empty() && !isScaled() && !min && !max && !low && !high && states.empty() &&
           bits.empty();
}

const Named_Number* findName(const std::vector<Named_Number>& all, const std::string& name) {
    const auto found = std::find_if(all.begin(), all.end(), [&](const Named_Number& one) { return one.name == name; });
    return found == all.end() ? nullptr : &*found;
}

const Named_Number* findNumber(const std::vector<Named_Number>& all, std::int64_t number) {
    const auto found =
        std::find_if(all.begin(), all.end(), [number](const Named_Number& one) { return one.number == number; });
    return found == all.end() ? nullptr : &*found;
}

std::vector<std::string> namesOf(const std::vector<Named_Number>& all) {
    std::vector<std::string> names;
    names.reserve(all.size());
    for (const Named_Number& one : all)
        names.push_back(one.name);
    return names;
}

std::string meaningProblem(const Meaning& meaning, View view, std::uint32_t bytes) {
    const Kind kind = viewEntry(view).kind;
    const bool isText = kind == Kind::Text || kind == Kind::Bytes || (kind == Kind::Hex && bytes > 8);
    const bool isNumber = !isText && kind != Kind::Bool;
    const bool hasLimits = meaning.min || meaning.max || meaning.low || meaning.high;
    if (!isNumber && (meaning.isScaled() || hasLimits))
        return "only numbers have scale, offset, decimals and limits; view " + viewName(view) + " shows none";
    if (!meaning.states.empty() && (isText || kind == Kind::Float))
        return "only whole numbers and bool have states; view " + viewName(view) + " shows none";
    if (!meaning.bits.empty() && bytes > 8) return "an element of " + std::to_string(bytes) + " bytes has no bits";
    if (meaning.scale && (*meaning.scale == 0 || !std::isfinite(1 / *meaning.scale)))
        return "\"scale\" is 0 or next to it";
    if (meaning.min && meaning.max && *meaning.min > *meaning.max) return "\"min\" is above \"max\"";
    if (meaning.low && meaning.high && *meaning.low > *meaning.high) return "\"low\" is above \"high\"";
    const std::string problem = statesProblem(meaning, view, bytes);
    return problem.empty() ? bitsProblem(meaning, bytes) : problem;
}

}  // namespace vornex
