#include "values/Value_Motion.h"

#include <cmath>
#include <stdexcept>
#include <vector>

#include "text/Number.h"
#include "text/Text.h"
#include "values/Value_Codec.h"

namespace vornex {
namespace {

constexpr std::size_t MotionLimit = 1000000;
constexpr double Pi = 3.14159265358979323846;

struct Motion_Name {
    const char* name;
    Motion::Kind kind;
    std::size_t fewest;  // arguments
    std::size_t most;
    const char* form;
};

constexpr Motion_Name MotionNames[] = {
    {"const", Motion::Kind::Const, 1, 1, "const(VALUE)"},
    {"ramp", Motion::Kind::Ramp, 3, 3, "ramp(LOW,HIGH,PERIOD)"},
    {"sine", Motion::Kind::Sine, 3, 3, "sine(LOW,HIGH,PERIOD)"},
    {"square", Motion::Kind::Square, 3, 3, "square(LOW,HIGH,PERIOD)"},
    {"toggle", Motion::Kind::Toggle, 1, 1, "toggle(HOLD)"},
    {"random", Motion::Kind::Random, 2, 3, "random(LOW,HIGH[,HOLD])"},
    {"count", Motion::Kind::Count, 1, 3, "count(HOLD[,FIRST[,STEP]])"},
};

const Motion_Name& findName(const std::string& name) {
    for (const Motion_Name& known : MotionNames) {
        if (name == known.name) return known;
    }
    throw std::invalid_argument("unknown motion '" + name +
                                "'; it is const, ramp, sine, square, toggle, random or count");
}

void setArguments(Motion& motion, const std::vector<double>& given) {
    switch (motion.kind) {
        case Motion::Kind::Const: return;
        case Motion::Kind::Ramp:
        case Motion::Kind::Sine:
        case Motion::Kind::Square:
        case Motion::Kind::Random:
            motion.low = given[0];
            motion.high = given[1];
            motion.period = given.size() > 2 ? given[2] : 100;
            return;
        case Motion::Kind::Toggle:
            motion.high = 1;
            motion.period = given[0];
            return;
        case Motion::Kind::Count:
            motion.period = given[0];
            motion.low = given.size() > 1 ? given[1] : 0;
            motion.high = given.size() > 2 ? given[2] : 1;
            return;
    }
}

// From shown values to raw ones; those of a toggle are 0 and 1 as they are.
void makeRaw(Motion& motion, const Value_Form& form) {
    if (motion.kind == Motion::Kind::Toggle) return;
    const bool isCount = motion.kind == Motion::Kind::Count;
    motion.high = isCount ? rawNumber(form, motion.low + motion.high) : rawNumber(form, motion.high);
    motion.low = rawNumber(form, motion.low);
    if (isCount) motion.high -= motion.low;
}

void checkMotion(Motion& motion, const Value_Form& form) {
    if (!(motion.period >= 1)) throw std::invalid_argument("a time is at least 1 ms");
    if (motion.kind != Motion::Kind::Count && motion.low > motion.high) {
        throw std::invalid_argument("the low value is above the high value");
    }
    makeRaw(motion, form);
    checkNumber(form.view, form.bytes, motion.low);
    if (motion.kind != Motion::Kind::Count) checkNumber(form.view, form.bytes, motion.high);
}

// 0 up to, not including, 1.
double unitNoise(std::uint64_t seed) {
    std::uint64_t mixed = seed + 0x9e3779b97f4a7c15u;
    mixed = (mixed ^ mixed >> 30) * 0xbf58476d1ce4e5b9u;
    mixed = (mixed ^ mixed >> 27) * 0x94d049bb133111ebu;
    return static_cast<double>((mixed ^ mixed >> 31) >> 11) / 9007199254740992.0;
}

}  // namespace

const char* const MotionHelp =
    "const(VALUE)  ramp(LOW,HIGH,PERIOD)  sine(LOW,HIGH,PERIOD)  square(LOW,HIGH,PERIOD)\n"
    "toggle(HOLD)  random(LOW,HIGH[,HOLD])  count(HOLD[,FIRST[,STEP]])\n"
    "PERIOD and HOLD in ms. The elements of an array follow each other by a tenth of the period.\n"
    "A write, or set on a control line, stops the motion and its value stays.\n";

const char* const TooManyMotions = "more than a million elements with a motion";

std::optional<Leaf> forEachMotion(const Label_File& file, const std::function<void(const Leaf&)>& take) {
    Leaf_Filter filter;
    filter.definition = [](const Label& definition) { return !definition.sim.empty(); };
    std::size_t motions = 0;
    std::optional<Leaf> beyond;
    const auto visit = [&](const Leaf& leaf) {
        if (++motions > MotionLimit)
            beyond = leaf;
        else
            take(leaf);
        return !beyond;
    };
    forEachLeaf(file, visit, filter);
    return beyond;
}

Motion parseMotion(const std::string& text, const Value_Form& form) {
    const std::size_t open = text.find('(');
    if (open == std::string::npos || text.back() != ')') {
        throw std::invalid_argument("motion '" + text + "' is not NAME(ARGUMENTS)");
    }
    const Motion_Name& name = findName(text.substr(0, open));
    const std::string inner = text.substr(open + 1, text.size() - open - 2);
    Motion motion;
    motion.kind = name.kind;
    if (name.kind == Motion::Kind::Const) {
        const std::string value = form.view == View::Text ? inner : trimmed(inner);
        motion.bytes = bytesOfShown(form, value);
        motion.remark = inexactRemark(form, value);
        return motion;
    }
    if (form.view == View::Text) throw std::invalid_argument("a text cannot move, only be const(TEXT)");
    const std::vector<std::string> texts = splitTrimmed(inner, ',');
    if (texts.size() < name.fewest || texts.size() > name.most) {
        throw std::invalid_argument("motion '" + text + "' is not " + name.form);
    }
    std::vector<double> numbers;
    numbers.reserve(texts.size());
    for (const std::string& argument : texts)
        numbers.push_back(realNumber(argument));
    setArguments(motion, numbers);
    checkMotion(motion, form);
    return motion;
}

double motionValue(const Motion& motion, double time, std::uint64_t element, std::uint64_t seed) {
    const double span = motion.high - motion.low;
    const double turns = motion.period > 0 ? time / motion.period + static_cast<double>(element % 10) * 0.1 : 0;
    const double part = turns - std::floor(turns);
    const double held = std::floor(motion.period > 0 ? time / motion.period : 0);
    switch (motion.kind) {
        case Motion::Kind::Const: break;
        case Motion::Kind::Ramp: return motion.low + span * part;
        case Motion::Kind::Sine: return motion.low + span * (0.5 + 0.5 * std::sin(2 * Pi * part));
        case Motion::Kind::Square: return part < 0.5 ? motion.low : motion.high;
        case Motion::Kind::Toggle: return std::fmod(held + static_cast<double>(element), 2);
        case Motion::Kind::Random:
            return motion.low + span * unitNoise(seed ^ element << 40 ^ static_cast<std::uint64_t>(held));
        case Motion::Kind::Count: return motion.low + motion.high * (held + static_cast<double>(element));
    }
    return 0;
}

}  // namespace vornex
