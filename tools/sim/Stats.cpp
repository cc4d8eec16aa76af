#include "Stats.h"

#include <limits>
#include <stdexcept>

#include "Value_Text.h"

namespace vornex::sim {

Counters statsCounters(const Stats& stats) {
    return {{"clients", stats.clients},     {"clientsRefused", stats.clientsRefused},
            {"requests", stats.requests},   {"reads", stats.reads},
            {"writes", stats.writes},       {"items", stats.items},
            {"bytesRead", stats.bytesRead}, {"bytesWritten", stats.bytesWritten},
            {"bytesIn", stats.bytesIn},     {"bytesOut", stats.bytesOut},
            {"badFrames", stats.badFrames}, {"slowFrames", stats.slowFrames}};
}

Expectation parseExpectation(const std::string& text) {
    // two characters first: ">" stands in ">=" too
    for (const char* compare : {">=", "<=", "==", "!=", ">", "<", "="}) {
        const std::size_t at = text.find(compare);
        if (at == std::string::npos) continue;
        Expectation expectation;
        expectation.text = text;
        expectation.counter = splitText(text.substr(0, at), '\0')[0];
        expectation.compare = compare;
        const std::string number = splitText(text.substr(at + expectation.compare.size()), '\0')[0];
        expectation.value = parseUnsigned(number, std::numeric_limits<std::uint64_t>::max());
        return expectation;
    }
    throw std::invalid_argument("'" + text + "' is not COUNTER>=NUMBER (or <=, ==, !=, >, <)");
}

std::uint64_t valueOf(const Counters& counters, const std::string& name) {
    std::string known;
    for (const auto& counter : counters) {
        if (counter.first == name) return counter.second;
        known += " " + counter.first;
    }
    throw std::invalid_argument("unknown counter '" + name + "'; known are" + known);
}

bool isMet(const Expectation& expectation, std::uint64_t value) {
    const std::string& compare = expectation.compare;
    if (compare == ">=") return value >= expectation.value;
    if (compare == "<=") return value <= expectation.value;
    if (compare == "!=") return value != expectation.value;
    if (compare == ">") return value > expectation.value;
    if (compare == "<") return value < expectation.value;
    return value == expectation.value;
}

}  // namespace vornex::sim
