#include "edge/Published_Labels.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <unordered_map>

#include "edge/payload/Metric_Names.h"
#include "edge/payload/Wire_Value.h"
#include "host/Span_Read.h"
#include "host/Variable_Value.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex::edge {

namespace {

// What of the meaning makes another number of the raw one: names of states and wished decimals are for people.
std::shared_ptr<const Meaning> numbersOf(const std::shared_ptr<const Meaning>& meaning) {
    if (!meaning || (meaning->states.empty() && !meaning->decimals)) return meaning;
    Meaning numbers = *meaning;
    numbers.states.clear();
    numbers.decimals.reset();
    return std::make_shared<const Meaning>(std::move(numbers));
}

void addNumber(std::vector<Property>& properties, const char* key, const std::optional<double>& number) {
    if (number) properties.push_back({key, Data_Type::Double, *number});
}

void addText(std::vector<Property>& properties, const char* key, const std::string& text) {
    if (!text.empty()) properties.push_back({key, Data_Type::String, text});
}

std::string statesText(const Meaning& meaning) {
    std::vector<std::string> states;
    for (const Named_Number& state : meaning.states)
        states.push_back(std::to_string(state.number) + " = " + state.name);
    return joined(states);
}

std::vector<Property> propertiesOf(const Variable& variable) {
    std::vector<Property> properties;
    addText(properties, "engUnit", variable.unit);
    const std::shared_ptr<const Meaning> meaning = formOf(variable).meaning;
    if (!meaning) return properties;
    addText(properties, "description", meaning->description);
    addNumber(properties, "engLow", meaning->min);
    addNumber(properties, "engHigh", meaning->max);
    addNumber(properties, "low", meaning->low);
    addNumber(properties, "high", meaning->high);
    addText(properties, "states", statesText(*meaning));
    return properties;
}

// A scaled number for which no decimal text leads back to the bytes is shown otherwise, but it is a number.
Wire_Value wireOf(const Metric_Entry& entry, const Watched& watched) {
    Wire_Value value = wireValue(entry.type, watched.value);
    const Value_Form form = formOf(watched.variable);
    if (!std::holds_alternative<std::monostate>(value) || !form.changes() || entry.type != Data_Type::Double)
        return value;
    const std::optional<double> raw = readReal<double>(watched.raw.text);
    return raw ? Wire_Value(shownNumber(form, *raw)) : value;
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
    std::unordered_map<std::shared_ptr<const Meaning>, std::shared_ptr<const Meaning>> numbersOfMeaning;
    for (Variable& variable : findVariables(session, file, group.patterns, Template_Index())) {
        if (!taken.insert(variable.text).second) continue;
        Metric_Entry entry;
        entry.properties = propertiesOf(variable);
        std::shared_ptr<const Meaning>& numbers = numbersOfMeaning[variable.meaning];
        if (!numbers) numbers = numbersOf(variable.meaning);
        variable.meaning = numbers;
        entry.type = dataTypeOf(variable.view, variable.bytes, formOf(variable).changes());
        entries.push_back(std::move(entry));
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
    const Watched& watched = variables.at(metric);
    filters[metric].publishedOtherwise(watched.value, steadyMs);
    return {metric, wireOf(entries[metric], watched), wallMs};
}

std::vector<Sample> Published_Labels::changes(std::uint64_t steadyMs, std::uint64_t wallMs) {
    std::vector<Sample> samples;
    for (std::size_t i = 0; i < variables.size(); ++i) {
        if (!filters[i].isDue(steadyMs)) continue;
        if (filters[i].take(variables[i].value, steadyMs))
            samples.push_back({i, wireOf(entries[i], variables[i]), wallMs});
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
    const std::string bytes = bytesOfShown(formOf(variable), typed);
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
