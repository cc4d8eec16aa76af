// What the simulator counts, and the expectations a test can have of it.
#ifndef VORNEX_SIM_STATS_H
#define VORNEX_SIM_STATS_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "values/Comparison.h"

namespace vornex::sim {

struct Stats {
    std::uint64_t clients = 0;         // connections accepted
    std::uint64_t clientsRefused = 0;  // over the limit of clients
    std::uint64_t requests = 0;        // good ones: reads + writes
    std::uint64_t reads = 0;
    std::uint64_t writes = 0;
    std::uint64_t items = 0;      // byte ranges in the reads
    std::uint64_t bytesRead = 0;  // bytes of controller memory answered
    std::uint64_t bytesWritten = 0;
    std::uint64_t bytesIn = 0;  // on the wire
    std::uint64_t bytesOut = 0;
    std::uint64_t badFrames = 0;   // wrong check value, start byte, command, body or length
    std::uint64_t slowFrames = 0;  // not complete in time
    std::uint64_t memoryFull = 0;  // writes that were not carried out: no room in the memory
};

// Names with values, in the order of a summary: the members above, "faults", then "fault.KIND" for every kind.
using Counters = std::vector<std::pair<std::string, std::uint64_t>>;
Counters statsCounters(const Stats& stats);

// "writes>=3": a counter and a whole number. Throws std::invalid_argument for anything else; whether the counter exists
// is known by counterNamed.
Comparison parseExpectation(const std::string& text);
// Throws std::invalid_argument for an unknown counter, naming those known.
std::uint64_t counterNamed(const Counters& counters, const std::string& name);

}  // namespace vornex::sim

#endif
