#include "sim/Summary.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "text/Number.h"
#include "values/Keys.h"

namespace vornex::sim {
namespace {

std::string counted(const Summary& summary, const char* name) {
    return std::string(", ") + name + " " + std::to_string(counterNamed(summary.counters, name));
}

}  // namespace

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

bool allMet(const Summary& summary) {
    return std::all_of(summary.expectations.begin(), summary.expectations.end(), [&](const Comparison& expectation) {
        return expectation.metBy(counterNamed(summary.counters, expectation.subject));
    });
}

std::string summaryText(const Summary& summary) {
    std::string text = "summary: " + fixedNumber(summary.seconds, 1) + " s";
    for (const char* name : {"clients", "requests", "reads", "writes", "bytesRead", "bytesWritten", "faults"}) {
        text += counted(summary, name);
    }
    for (const char* name : {"clientsRefused", "badFrames", "slowFrames", "memoryFull", "unanswered", "bytesUnknown"}) {
        if (counterNamed(summary.counters, name)) text += counted(summary, name);
    }
    text += "\n";
    for (const Fault_Rule& rule : summary.rules) {
        text += "fault " + rule.text + ": " +
                (rule.fired ? "applied to " + std::to_string(rule.fired) : std::string("NEVER APPLIED, to none")) +
                " of " + std::to_string(rule.seen) + " requests in question\n";
    }
    for (const Comparison& expectation : summary.expectations) {
        const std::uint64_t value = counterNamed(summary.counters, expectation.subject);
        text += std::string(expectation.metBy(value) ? "met: " : "NOT MET: ") + expectation.text + " (it is " +
                std::to_string(value) + ")\n";
    }
    return text;
}

std::string summaryJson(const Summary& summary) {
    nlohmann::ordered_json json;
    json[key::seconds.name] = std::round(summary.seconds * 1000) / 1000;
    json[key::seed.name] = summary.seed;
    for (const auto& counter : summary.counters) {
        const bool isFault = counter.first.rfind("fault.", 0) == 0;
        if (isFault) json[key::faultKinds.name][counter.first.substr(6)] = counter.second;
        if (!isFault) json[counter.first] = counter.second;
    }
    json[key::rules.name] = nlohmann::ordered_json::array();
    json[key::neverApplied.name] = nlohmann::ordered_json::array();
    for (const Fault_Rule& rule : summary.rules) {
        json[key::rules.name].push_back(
            {{key::rule.name, rule.text}, {key::seen.name, rule.seen}, {key::applied.name, rule.fired}});
        if (rule.fired == 0) json[key::neverApplied.name].push_back(rule.text);
    }
    json[key::expectations.name] = nlohmann::ordered_json::array();
    for (const Comparison& expectation : summary.expectations) {
        const std::uint64_t value = counterNamed(summary.counters, expectation.subject);
        json[key::expectations.name].push_back({{key::expect.name, expectation.text},
                                                {key::counted.name, value},
                                                {key::met.name, expectation.metBy(value)}});
    }
    // a label in a control line need not be UTF-8
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace vornex::sim
