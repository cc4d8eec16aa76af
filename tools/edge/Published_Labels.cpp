#include "edge/Published_Labels.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <unordered_map>

#include "edge/payload/Metric_Names.h"
#include "edge/payload/Wire_Value.h"
#include "host/Span_Read.h"
#include "host/Variable_Value.h"
#include "values/Value_Codec.h"

namespace vornex::edge {

namespace {

Metric_Entry entryOf(const Variable& variable) {
    Metric_Entry entry;
    entry.type = dataTypeOf(variable.view, variable.bytes);
    if (!variable.unit.empty()) entry.properties.push_back({"engUnit", Data_Type::String, variable.unit});
    return entry;
}

}  // namespace

Published_Labels::Published_Labels(Session& session, const Label_File& file, std::vector<Poll_Group> pollGroups,
                                   const std::vector<std::string>& writable)
    : groups(std::move(pollGroups)) {
    for (const Poll_Group& group : groups)
        addGroup(session, file, group);
    std::vector<std::string> labels;
    for (const Watched& watched : variables)
        labels.push_back(watched.variable.text);
    const std::vector<std::string> names = metricNames(labels);
    for (std::size_t i = 0; i < names.size(); ++i)
        entries[i].name = names[i];
    allowWriting(session, file, writable);
}

void Published_Labels::addGroup(Session& session, const Label_File& file, const Poll_Group& group) {
    std::set<std::string> taken;
    for (const Watched& watched : variables)
        taken.insert(watched.variable.text);
    for (Variable& variable : findVariables(session, file, group.patterns, Template_Index())) {
        if (!taken.insert(variable.text).second) continue;
        // a metric's type is that of the bytes
        if (formOf(variable).changes()) seeAs(variable, variable.view);
        entries.push_back(entryOf(variable));
        filters.emplace_back(group);
        Watched watched;
        watched.variable = std::move(variable);
        variables.push_back(std::move(watched));
    }
}

void Published_Labels::allowWriting(Session& session, const Label_File& file,
                                    const std::vector<std::string>& writable) {
    if (writable.empty()) return;
    std::unordered_map<std::string, std::size_t> places;
    for (std::size_t i = 0; i < variables.size(); ++i)
        places.emplace(variables[i].variable.text, i);
    for (const Variable& variable : findVariables(session, file, writable, Template_Index())) {
        const auto place = places.find(variable.text);
        if (place == places.end()) throw std::invalid_argument("'" + variable.text + "' is writable but not published");
        if (variable.range.code >= 10 || variable.bit)
            throw std::invalid_argument("'" + variable.text + "' cannot be written by itself");
        entries[place->second].isWritable = true;
    }
}

std::uint64_t Published_Labels::intervalMs() const {
    std::uint64_t least = groups.empty() ? 1000 : groups[0].intervalMs;
    for (const Poll_Group& group : groups)
        least = std::min(least, group.intervalMs);
    return least;
}

Sample Published_Labels::sampleOf(std::size_t metric, std::uint64_t steadyMs, std::uint64_t wallMs) {
    const Value& value = variables.at(metric).value;
    filters[metric].publishedOtherwise(value, steadyMs);
    return {metric, wireValue(entries[metric].type, value), wallMs};
}

std::vector<Sample> Published_Labels::changes(std::uint64_t steadyMs, std::uint64_t wallMs) {
    std::vector<Sample> samples;
    for (std::size_t i = 0; i < variables.size(); ++i) {
        if (!filters[i].isDue(steadyMs)) continue;
        const Value& value = variables[i].value;
        if (filters[i].take(value, steadyMs)) samples.push_back({i, wireValue(entries[i].type, value), wallMs});
    }
    return samples;
}

std::vector<Sample> Published_Labels::all(std::uint64_t steadyMs, std::uint64_t wallMs) {
    std::vector<Sample> samples;
    for (std::size_t i = 0; i < variables.size(); ++i)
        samples.push_back(sampleOf(i, steadyMs, wallMs));
    return samples;
}

bool Published_Labels::areFresh() const {
    return std::all_of(variables.begin(), variables.end(),
                       [](const Watched& watched) { return watched.freshness == Freshness::Fresh; });
}

// The value is a stranger's: of what can be typed at a terminal, files are not read here.
void writeVerified(Session& session, const Variable& variable, const std::string& typed) {
    const std::string bytes = bytesOf(variable.view, variable.bytes, typed);
    checkLimits({variable.ownView, variable.bytes, variable.meaning}, bytes);
    const Completion written = session.wait(session.startWrite(variable.range, hostLayout(variable.range, bytes)));
    if (written.state != Completion::State::Good)
        throw std::invalid_argument("it may not be written: " + completionText(written));
    const Completion read = session.wait(session.startRead(variable.range));
    if (read.state != Completion::State::Good)
        throw std::invalid_argument("it was not read back: " + completionText(read));
    if (session.bytes(variable.range) != bytes) throw std::invalid_argument("the controller holds another value");
}

}  // namespace vornex::edge
