// The rules of a Sparkplug B 3.0 edge node with one device, without sockets and clocks.
//
//   state      begins with                         ends
//   Away       construction, disconnected(), end() with connected() -> Waiting with a primary host, else -> Born
//   Waiting    connected()                         with the host online -> Born
//   Born       births sent                         with the host offline: death, leave() -> Away; end() -> Away
//
// In Born the device is born too while the controller answers. Only then are data taken; what is not taken is the
// caller's to keep, and is sent later as historical.
//
// One thread. Times are given with each call.
#ifndef VORNEX_EDGE_NODE_EDGE_NODE_H
#define VORNEX_EDGE_NODE_EDGE_NODE_H

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "edge/node/Topics.h"
#include "edge/payload/Payload.h"

namespace vornex::edge {

struct Moment {
    std::uint64_t wallMs = 0;    // since 1970, UTC; may be set back
    std::uint64_t steadyMs = 0;  // never goes back
};

struct Message {
    std::string topic;
    std::string payload;
    int qos = 0;
};

// A command that was found good; the index is the metric's.
struct Wanted_Write {
    std::size_t metric = 0;
    std::string value;  // as it would be typed
};

// What a node needs of the world.
class Node_Port {
public:
    virtual ~Node_Port() = default;
    // False: the message was not taken, and never will be; the node counts it as not sent.
    virtual bool publish(const Message& message) = 0;
    virtual void subscribe(const std::string& topic, int qos) = 0;
    virtual void write(const Wanted_Write& wanted) = 0;
    // Sends what was published, and disconnects. disconnected() does not follow.
    virtual void leave() = 0;
    virtual void tell(const std::string& words) = 0;
};

// What is told of a metric in the birth.
struct Metric_Entry {
    std::string name;
    Data_Type type = Data_Type::String;
    std::vector<Property> properties;
    bool isWritable = false;
};

struct Node_Settings {
    Node_Ids ids;
    std::string primaryHost;  // empty: none
    std::vector<Metric_Entry> metrics;
    bool usesAliases = false;  // data by number and without datatype; many readers need both name and datatype
    std::uint64_t rebirthEveryMs = 1000;
    unsigned commandsPerSecond = 10;
};

struct Sample {
    std::size_t metric = 0;
    Wire_Value value;
    std::uint64_t time = 0;  // ms since 1970
};

struct Node_Counts {
    std::uint64_t births = 0;  // of the node, rebirths included
    std::uint64_t deaths = 0;  // of the device
    std::uint64_t dataMessages = 0;
    std::uint64_t values = 0;
    std::uint64_t historical = 0;                  // of these values
    std::uint64_t commands = 0;                    // metrics that were passed on to be written
    std::map<std::string, std::uint64_t> refused;  // metrics in commands, by the reason
};

class Edge_Node {
public:
    // The port has to outlive it. Throws std::invalid_argument for ids and names that cannot be.
    Edge_Node(const Node_Settings& nodeSettings, Node_Port& nodePort);

    // Before each connection, with its number: the will.
    Message will(int birthNumber, Moment now);
    void connected(Moment now);
    void disconnected();
    // A message that the broker kept is taken from the primary host alone: a kept command would be done at each
    // connect.
    void received(const std::string& topic, const std::string& payload, bool isRetained, Moment now);
    // The intended end: death, then leave(). When it is not connected nothing happens.
    void end(Moment now);
    // At any time, at least every second: what was put off.
    void tick(Moment now);

    // The controller answers, and these are all values that are known of it; or it is lost.
    void deviceUp(const std::vector<Sample>& values, Moment now);
    void deviceDown(Moment now);

    // Data are taken.
    bool isLive() const { return state == State::Born && deviceBorn; }
    // Sends the samples in one message. False: nothing was taken. What births tell follows in any case, but for
    // historical ones.
    bool send(const std::vector<Sample>& samples, bool areHistorical, Moment now);

    const Node_Counts& counts() const { return counted; }
    const Topics& topics() const { return topic; }

private:
    enum class State { Away, Waiting, Born };

    bool publish(const std::string& to, Payload& payload);
    Message death(Moment now) const;
    void giveBirth(Moment now);
    void giveDeviceBirth(Moment now);
    void noteForeignBirth(const std::string& payload);
    void takeHostState(const std::string& text, Moment now);
    void takeCommands(const std::string& topicName, const std::string& bytes, Moment now);
    void takeNodeCommand(const Metric& metric, Moment now);
    void takeDeviceCommand(const Metric& metric, Moment now);
    std::optional<std::size_t> indexOf(const Metric& metric) const;
    void rebirth(Moment now);
    bool tooMany(Moment now);
    void refuse(const Metric& metric, const std::string& reason, const std::string& detail = "");

    const Node_Settings settings;
    Node_Port& port;
    const Topics topic;
    std::unordered_map<std::string, std::size_t> byName;
    std::vector<Sample> known;  // by metric; nothing known: a value of nothing
    Node_Counts counted;

    State state = State::Away;
    bool deviceAnswers = false;
    bool deviceBorn = false;
    int birthNumber = 0;
    unsigned seq = 0;
    std::deque<std::string> ownBirths;  // the last payloads: they come back from the broker
    bool hostSeen = false;
    std::uint64_t hostTime = 0;  // of its last state
    bool rebirthWanted = false;
    std::optional<std::uint64_t> lastBirthMs;  // steady
    std::uint64_t commandSecond = 0;
    unsigned commandsInSecond = 0;
};

}  // namespace vornex::edge

#endif
