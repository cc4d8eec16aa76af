#include "edge/node/Edge_Node.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "edge/node/Host_State.h"
#include "edge/payload/Wire_Value.h"
#include "text/Json_Tree.h"
#include "text/Text.h"

namespace vornex::edge {

namespace {

const char BirthNumberName[] = "bdSeq";
const char RebirthName[] = "Node Control/Rebirth";
const unsigned Numbers = 256;           // of seq
const std::size_t OwnBirthsKept = 4;    // more are never on their way: rebirths have a least distance
const std::size_t LongestName = 100;    // in messages
const std::size_t MostCommands = 1000;  // metrics in one message

Metric birthNumberMetric(int number, std::uint64_t time) {
    Metric metric;
    metric.name = BirthNumberName;
    metric.type = Data_Type::Int64;
    metric.time = time;
    metric.value = static_cast<std::uint64_t>(number);
    return metric;
}

Metric rebirthMetric(std::uint64_t time) {
    Metric metric;
    metric.name = RebirthName;
    metric.type = Data_Type::Boolean;
    metric.time = time;
    metric.value = false;
    return metric;
}

}  // namespace

Edge_Node::Edge_Node(const Node_Settings& nodeSettings, Node_Port& nodePort)
    : settings(nodeSettings), port(nodePort), topic(settings.ids, settings.primaryHost) {
    known.resize(settings.metrics.size());
    for (std::size_t i = 0; i < settings.metrics.size(); ++i) {
        known[i].metric = i;
        if (!byName.emplace(settings.metrics[i].name, i).second)
            throw std::invalid_argument("two metrics are called '" + settings.metrics[i].name + "'");
    }
}

Message Edge_Node::death(Moment now) const {
    Payload payload;
    payload.time = now.wallMs;
    payload.metrics.push_back(birthNumberMetric(birthNumber, now.wallMs));
    return {topic.nodeDeath, encode(payload), 1};
}

Message Edge_Node::will(int number, Moment now) {
    birthNumber = number;
    return death(now);
}

void Edge_Node::connected(Moment now) {
    port.subscribe(topic.nodeCommand, 1);
    port.subscribe(topic.deviceCommand, 1);
    port.subscribe(topic.nodeBirth, 0);
    state = State::Waiting;
    if (!topic.hostState.empty()) return port.subscribe(topic.hostState, 1);
    giveBirth(now);
}

void Edge_Node::disconnected() {
    state = State::Away;
    deviceBorn = false;
    rebirthWanted = false;
}

void Edge_Node::end(Moment now) {
    if (state == State::Away) return;
    port.publish(death(now));
    disconnected();
    port.leave();
}

void Edge_Node::tick(Moment now) {
    if (state == State::Born && rebirthWanted) rebirth(now);
}

// A number is given out only with a message that is taken: a reader sees no gap.
bool Edge_Node::publish(const std::string& to, Payload& payload) {
    payload.seq = seq;
    if (!port.publish({to, encode(payload), 0})) return false;
    seq = (seq + 1) % Numbers;
    return true;
}

void Edge_Node::giveBirth(Moment now) {
    state = State::Born;
    deviceBorn = false;
    rebirthWanted = false;
    lastBirthMs = now.steadyMs;
    seq = 0;
    Payload payload;
    payload.time = now.wallMs;
    payload.metrics = {birthNumberMetric(birthNumber, now.wallMs), rebirthMetric(now.wallMs)};
    if (!publish(topic.nodeBirth, payload)) {
        rebirthWanted = true;
        return;
    }
    payload.seq = 0;
    ownBirths.push_back(encode(payload));
    if (ownBirths.size() > OwnBirthsKept) ownBirths.pop_front();
    ++counted.births;
    if (deviceAnswers) giveDeviceBirth(now);
}

void Edge_Node::giveDeviceBirth(Moment now) {
    Payload payload;
    payload.time = now.wallMs;
    for (const Sample& sample : known) {
        const Metric_Entry& entry = settings.metrics[sample.metric];
        Metric metric;
        metric.name = entry.name;
        if (settings.usesAliases) metric.alias = sample.metric + 1;
        metric.type = entry.type;
        metric.time = sample.time != 0 ? sample.time : now.wallMs;
        metric.value = sample.value;
        metric.properties = entry.properties;
        payload.metrics.push_back(std::move(metric));
    }
    deviceBorn = publish(topic.deviceBirth, payload);
    rebirthWanted = !deviceBorn;
}

void Edge_Node::deviceUp(const std::vector<Sample>& values, Moment now) {
    deviceAnswers = true;
    for (const Sample& sample : values)
        known.at(sample.metric) = sample;
    if (state == State::Born && !rebirthWanted) giveDeviceBirth(now);
}

void Edge_Node::deviceDown(Moment now) {
    deviceAnswers = false;
    if (!std::exchange(deviceBorn, false)) return;
    Payload payload;
    payload.time = now.wallMs;
    // a death that is not taken: a new birth of the node says the same
    rebirthWanted = !publish(topic.deviceDeath, payload);
    if (!rebirthWanted) ++counted.deaths;
}

bool Edge_Node::send(const std::vector<Sample>& samples, bool areHistorical, Moment now) {
    if (!areHistorical) {
        for (const Sample& sample : samples)
            known.at(sample.metric) = sample;
    }
    if (!isLive()) return false;
    Payload payload;
    payload.time = now.wallMs;
    payload.metrics.reserve(samples.size());
    for (const Sample& sample : samples) {
        const Metric_Entry& entry = settings.metrics.at(sample.metric);
        Metric metric;
        if (settings.usesAliases) metric.alias = sample.metric + 1;
        if (!settings.usesAliases) metric.name = entry.name;
        if (!settings.usesAliases) metric.type = entry.type;
        metric.time = sample.time;
        metric.isHistorical = areHistorical;
        metric.value = sample.value;
        payload.metrics.push_back(std::move(metric));
    }
    if (!publish(topic.deviceData, payload)) return false;
    ++counted.dataMessages;
    counted.values += samples.size();
    if (areHistorical) counted.historical += samples.size();
    return true;
}

void Edge_Node::received(const std::string& from, const std::string& payload, bool isRetained, Moment now) {
    if (state == State::Away) return;
    if (!topic.hostState.empty() && from == topic.hostState) return takeHostState(payload, now);
    if (from == topic.nodeBirth) return noteForeignBirth(payload);
    if (from != topic.nodeCommand && from != topic.deviceCommand) return;
    if (isRetained) return refuse({}, "retained", "the broker keeps a command on " + from);
    takeCommands(from, payload, now);
}

void Edge_Node::noteForeignBirth(const std::string& payload) {
    if (std::find(ownBirths.begin(), ownBirths.end(), payload) != ownBirths.end()) return;
    port.tell("another node publishes births as " + topic.nodeBirth + ": two nodes have one identity");
}

// What is older than the last one seen is passed over.
void Edge_Node::takeHostState(const std::string& text, Moment now) {
    const std::optional<Host_State> host = hostStateOf(text);
    if (!host) return port.tell(topic.hostState + ": not the state of a host");
    if (hostSeen && host->time < hostTime) return;
    hostSeen = true;
    hostTime = host->time;
    if (host->isOnline && state == State::Waiting) return giveBirth(now);
    if (!host->isOnline && state == State::Born) end(now);
}

void Edge_Node::rebirth(Moment now) {
    if (lastBirthMs && now.steadyMs - *lastBirthMs < settings.rebirthEveryMs) {
        rebirthWanted = true;
        return;
    }
    giveBirth(now);
}

void Edge_Node::takeCommands(const std::string& from, const std::string& bytes, Moment now) {
    Payload payload;
    try {
        payload = decode(bytes);
    } catch (const Payload_Error& mistake) {
        return refuse({}, "no payload", mistake.what());
    }
    if (payload.metrics.size() > MostCommands) return refuse({}, "rate", "too many metrics in one message");
    for (const Metric& metric : payload.metrics) {
        if (state == State::Away) return;
        if (from == topic.nodeCommand) {
            takeNodeCommand(metric, now);
        } else {
            takeDeviceCommand(metric, now);
        }
    }
}

void Edge_Node::takeNodeCommand(const Metric& metric, Moment now) {
    if (metric.name != RebirthName) return refuse(metric, "unknown");
    const bool* const wanted = std::get_if<bool>(&metric.value);
    if (!wanted || !*wanted) return refuse(metric, "value", "only true is a command");
    if (state == State::Born) rebirth(now);
}

std::optional<std::size_t> Edge_Node::indexOf(const Metric& metric) const {
    if (metric.name.empty() && metric.alias && settings.usesAliases) {
        if (*metric.alias < 1 || *metric.alias > settings.metrics.size()) return std::nullopt;
        return *metric.alias - 1;
    }
    const auto found = byName.find(metric.name);
    if (found == byName.end()) return std::nullopt;
    return found->second;
}

bool Edge_Node::tooMany(Moment now) {
    if (now.steadyMs / 1000 != commandSecond) commandsInSecond = 0;
    commandSecond = now.steadyMs / 1000;
    return ++commandsInSecond > settings.commandsPerSecond;
}

void Edge_Node::takeDeviceCommand(const Metric& metric, Moment now) {
    const std::optional<std::size_t> index = indexOf(metric);
    if (!index) return refuse(metric, "unknown");
    const Metric_Entry& entry = settings.metrics[*index];
    if (!entry.isWritable) return refuse(metric, "not writable");
    if (metric.type && *metric.type != entry.type)
        return refuse(metric, "type", typeName(*metric.type) + " instead of " + typeName(entry.type));
    if (!deviceAnswers) return refuse(metric, "controller away");
    if (tooMany(now)) return refuse(metric, "rate");
    try {
        const std::string value = typedText(entry.type, metric.value);
        ++counted.commands;
        port.write({*index, value});
    } catch (const std::invalid_argument& reason) {
        refuse(metric, "value", reason.what());
    }
}

void Edge_Node::refuse(const Metric& metric, const std::string& reason, const std::string& detail) {
    ++counted.refused[reason];
    // the name is a stranger's: on one line, and not of any length
    const std::string name = jsonString(cutTo(metric.name, LongestName));
    const std::string subject = metric.name.empty() ? "a command" : "the command for " + name;
    port.tell(subject + " is refused: " + reason + (detail.empty() ? "" : ", " + detail));
}

}  // namespace vornex::edge
