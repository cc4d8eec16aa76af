#include "sim/Control.h"

#include <stdexcept>

#include "text/Hex.h"
#include "text/Number.h"
#include "text/Text.h"
#include "values/Shown_Value.h"
#include "values/Value_Codec.h"

namespace vornex::sim {
namespace {

constexpr std::uint64_t LongestPeek = 65535;

// The first word of a text, which is left without it.
std::string takeWord(std::string& text) {
    const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
    const std::size_t end = std::min(text.find_first_of(" \t", begin), text.size());
    std::string word = text.substr(begin, end - begin);
    text.erase(0, std::min(text.find_first_not_of(" \t", end), text.size()));
    return word;
}

bool isAddress(const std::string& word) { return !word.empty() && word[0] >= '0' && word[0] <= '9'; }

std::uint32_t parseAddress(const std::string& word) { return wholeNumber<std::uint32_t>(word); }

Leaf findLabel(const Controller& controller, const std::string& label) {
    const std::optional<Leaf> leaf = controller.plant.find(label);
    if (!leaf) throw std::invalid_argument("no element is called '" + label + "'");
    return *leaf;
}

std::string someBytes(const std::string& text) {
    if (text.empty()) throw std::invalid_argument("bytes in hex are missing");
    return bytesOfHex(text);
}

std::string get(std::string rest, Controller& controller, double now) {
    const std::string what = takeWord(rest);
    if (isAddress(what)) {
        const auto bytes = static_cast<std::size_t>(unsignedNumber(takeWord(rest), 0, LongestPeek));
        return "ok " + hexBytes(controller.plant.peek(parseAddress(what), bytes, now));
    }
    const Leaf leaf = findLabel(controller, what);
    const Value value = shownOf(Value_Form(leaf), controller.plant.peek(leaf.address, leaf.bytes, now));
    return "ok " + typedText(leaf.view, value);
}

void store(Controller& controller, std::uint32_t address, const std::string& bytes, double now) {
    if (!controller.plant.write(address, bytes, now)) throw std::invalid_argument("the memory is full; see --memory");
}

std::string set(std::string rest, Controller& controller, double now) {
    if (controller.plant.isPattern()) throw std::invalid_argument("pattern mode has no values to set");
    const std::string what = takeWord(rest);
    if (isAddress(what)) {
        store(controller, parseAddress(what), someBytes(rest), now);
        return "ok";
    }
    const Leaf leaf = findLabel(controller, what);
    store(controller, leaf.address, bytesOfShown(Value_Form(leaf), rest), now);
    const std::string remark = inexactRemark(Value_Form(leaf), rest);
    return remark.empty() ? "ok" : "ok, " + remark;
}

std::string move(std::string rest, Controller& controller, double now) {
    const Leaf leaf = findLabel(controller, takeWord(rest));
    if (rest.empty()) throw std::invalid_argument("a motion is missing, like ramp(0,100,500)");
    controller.plant.setMotion(leaf, rest, now);
    return "ok";
}

std::string hold(std::string rest, Controller& controller, double now) {
    const Leaf leaf = findLabel(controller, takeWord(rest));
    store(controller, leaf.address, controller.plant.peek(leaf.address, leaf.bytes, now), now);
    return "ok";
}

std::string check(std::string rest) {
    const std::uint32_t address = parseAddress(takeWord(rest));
    const std::string bytes = someBytes(rest);
    std::uint8_t generation = 0;
    const std::size_t good = checkPattern(address, bytes, generation);
    if (good == bytes.size()) return "ok generation " + std::to_string(generation);
    return "error: foreign byte at " + std::to_string(std::uint32_t(address + good)) + ", generation " +
           std::to_string(generation) + " up to there";
}

std::string fault(std::string rest, Controller& controller) {
    const std::string verb = takeWord(rest);
    if (verb == "add") {
        controller.faults.add(rest);
    } else if (verb == "remove") {
        if (!controller.faults.remove(rest)) throw std::invalid_argument("no such rule: '" + rest + "'");
    } else if (verb == "clear" && rest.empty()) {
        controller.faults.clear();
    } else if (verb == "kinds" && rest.empty()) {
        return faultKinds() + "ok";
    } else if (verb == "list" && rest.empty()) {
        std::string lines;
        for (const Fault_Rule& rule : controller.faults.rules()) {
            lines += rule.text + " applied " + std::to_string(rule.fired) + " of " + std::to_string(rule.seen) + "\n";
        }
        return lines + "ok";
    } else {
        throw std::invalid_argument("fault add RULE, remove RULE, list, clear or kinds");
    }
    return "ok";
}

std::string run(const std::string& verb, const std::string& rest, Controller& controller, const Control_Hooks& hooks) {
    if (verb == "get") return get(rest, controller, hooks.now());
    if (verb == "set") return set(rest, controller, hooks.now());
    if (verb == "move") return move(rest, controller, hooks.now());
    if (verb == "hold") return hold(rest, controller, hooks.now());
    if (verb == "check") return check(rest);
    if (verb == "fault") return fault(rest, controller);
    if (verb == "stats" && rest.empty()) return "ok " + hooks.summary();
    if (verb == "help") return ControlHelp + std::string("ok");
    if (verb == "quit" && rest.empty()) {
        hooks.quit();
        return "ok";
    }
    throw std::invalid_argument("unknown command '" + verb + "'; help lists them");
}

}  // namespace

const char* const ControlHelp =
    "get LABEL | get ADDRESS BYTES      the value, or bytes in hex\n"
    "set LABEL VALUE | set ADDRESS HEX  stops the motion there, if any\n"
    "move LABEL MOTION                  from now on, beginning at the motion's begin\n"
    "hold LABEL                         the motion stops where it is\n"
    "check ADDRESS HEX                  pattern mode: do these bytes belong there, and of which generation are they\n"
    "fault add RULE | fault remove RULE | fault list | fault clear\n"
    "fault kinds                        each kind with its arguments and defaults\n"
    "stats                              the summary so far, as JSON\n"
    "quit\n";

std::string runControlLine(const std::string& line, Controller& controller, const Control_Hooks& hooks) {
    std::string rest = trimmed(line.substr(0, line.find('\n')));
    if (rest.empty() || rest[0] == '#') return "";
    const std::string verb = takeWord(rest);
    try {
        return run(verb, rest, controller, hooks);
    } catch (const std::invalid_argument& error) {
        return "error: " + harmless(error.what());
    }
}

}  // namespace vornex::sim
