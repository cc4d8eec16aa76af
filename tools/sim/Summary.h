// What is told at the end.
#ifndef VORNEX_SIM_SUMMARY_H
#define VORNEX_SIM_SUMMARY_H

#include <string>
#include <vector>

#include "sim/Controller.h"

namespace vornex::sim {

struct Summary {
    double seconds = 0;
    std::uint64_t seed = 0;
    Counters counters;
    std::vector<Fault_Rule> rules;
    std::vector<Comparison> expectations;
};

bool allMet(const Summary& summary);
// Lines for people.
std::string summaryText(const Summary& summary);
// One line of JSON: seconds, seed, counters, faults by rule, rules that never fired, expectations.
std::string summaryJson(const Summary& summary);

}  // namespace vornex::sim

#endif
