// What is told at the end, and what a test can expect of it.
#ifndef VORNEX_SIM_SUMMARY_H
#define VORNEX_SIM_SUMMARY_H

#include <string>
#include <vector>

#include "sim/Controller.h"
#include "values/Comparison.h"

namespace vornex::sim {

struct Summary {
    double seconds = 0;
    std::uint64_t seed = 0;
    Counters counters;
    std::vector<Fault_Rule> rules;
    std::vector<Comparison> expectations;
};

// "writes>=3": a counter and a whole number. Throws std::invalid_argument for anything else; whether the counter exists
// is known by counterNamed.
Comparison parseExpectation(const std::string& text);
// Throws std::invalid_argument for an unknown counter, naming those known.
std::uint64_t counterNamed(const Counters& counters, const std::string& name);

bool allMet(const Summary& summary);
// Lines for people.
std::string summaryText(const Summary& summary);
// One line of JSON: seconds, seed, counters, faults by rule, rules that never fired, expectations.
std::string summaryJson(const Summary& summary);

}  // namespace vornex::sim

#endif
