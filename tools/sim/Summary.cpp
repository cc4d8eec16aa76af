#include "Summary.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <nlohmann/json.hpp>

namespace vornex::sim {
namespace {

std::string counted(const Summary& summary, const char* name) {
    return std::string(", ") + name + " " + std::to_string(valueOf(summary.counters, name));
}

std::string secondsText(double seconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f s", seconds);
    return text;
}

}  // namespace

bool allMet(const Summary& summary) {
    return std::all_of(summary.expectations.begin(), summary.expectations.end(), [&](const Expectation& expectation) {
        return isMet(expectation, valueOf(summary.counters, expectation.counter));
    });
}

std::string summaryText(const Summary& summary) {
    std::string text = "summary: " + secondsText(summary.seconds);
    for (const char* name : {"clients", "requests", "reads", "writes", "bytesRead", "bytesWritten", "faults"}) {
        text += counted(summary, name);
    }
    for (const char* name : {"clientsRefused", "badFrames", "slowFrames"}) {
        if (valueOf(summary.counters, name)) text += counted(summary, name);
    }
    text += "\n";
    for (const Fault_Rule& rule : summary.rules) {
        text += "fault " + rule.text + ": " +
                (rule.fired ? "applied to " + std::to_string(rule.fired) : std::string("NEVER APPLIED, to none")) +
                " of " + std::to_string(rule.seen) + " requests in question\n";
    }
    for (const Expectation& expectation : summary.expectations) {
        const std::uint64_t value = valueOf(summary.counters, expectation.counter);
        text += std::string(isMet(expectation, value) ? "met: " : "NOT MET: ") + expectation.text + " (it is " +
                std::to_string(value) + ")\n";
    }
    return text;
}

std::string summaryJson(const Summary& summary) {
    nlohmann::ordered_json json;
    json["seconds"] = std::round(summary.seconds * 1000) / 1000;
    json["seed"] = summary.seed;
    for (const auto& counter : summary.counters) {
        const bool isFault = counter.first.rfind("fault.", 0) == 0;
        if (isFault) json["faultKinds"][counter.first.substr(6)] = counter.second;
        if (!isFault) json[counter.first] = counter.second;
    }
    json["rules"] = nlohmann::ordered_json::array();
    json["neverApplied"] = nlohmann::ordered_json::array();
    for (const Fault_Rule& rule : summary.rules) {
        json["rules"].push_back({{"rule", rule.text}, {"seen", rule.seen}, {"applied", rule.fired}});
        if (rule.fired == 0) json["neverApplied"].push_back(rule.text);
    }
    json["expectations"] = nlohmann::ordered_json::array();
    for (const Expectation& expectation : summary.expectations) {
        const std::uint64_t value = valueOf(summary.counters, expectation.counter);
        json["expectations"].push_back(
            {{"expect", expectation.text}, {"value", value}, {"met", isMet(expectation, value)}});
    }
    // a label in a control line need not be UTF-8
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace vornex::sim
