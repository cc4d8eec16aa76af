#include "sim/Stats.h"

#include <stdexcept>

#include "text/Number.h"
#include "values/Keys.h"

namespace vornex::sim {

Counters statsCounters(const Stats& stats) {
    return {{key::clients.name, stats.clients},      {key::clientsRefused.name, stats.clientsRefused},
            {key::requests.name, stats.requests},    {key::reads.name, stats.reads},
            {key::writes.name, stats.writes},        {key::items.name, stats.items},
            {key::bytesRead.name, stats.bytesRead},  {key::bytesWritten.name, stats.bytesWritten},
            {key::bytesIn.name, stats.bytesIn},      {key::bytesOut.name, stats.bytesOut},
            {key::badFrames.name, stats.badFrames},  {key::slowFrames.name, stats.slowFrames},
            {key::memoryFull.name, stats.memoryFull}};
}

Comparison parseExpectation(const std::string& text) {
    Comparison expectation = parseComparison(text);
    wholeNumber<std::uint64_t>(expectation.operand);
    return expectation;
}

std::uint64_t counterNamed(const Counters& counters, const std::string& name) {
    std::string known;
    for (const auto& counter : counters) {
        if (counter.first == name) return counter.second;
        known += " " + counter.first;
    }
    throw std::invalid_argument("unknown counter '" + name + "'; known are" + known);
}

}  // namespace vornex::sim
