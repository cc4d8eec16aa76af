// vornex-edge at work: one controller, one broker, one thread that waits for both.
#ifndef VORNEX_EDGE_EDGE_RUN_H
#define VORNEX_EDGE_EDGE_RUN_H

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "edge/Broker_Link.h"
#include "edge/Published_Labels.h"
#include "edge/node/Birth_Number.h"
#include "edge/store/Record_Store.h"
#include "watch/Watch_Events.h"

namespace vornex::edge {

struct Run_Settings {
    Node_Settings node;
    Broker_Settings broker;
    std::string stateFolder;
    std::uint64_t storeBytes = 0;
};

class Edge_Run : Node_Port, Broker_Events, Exchange_Observer {
public:
    using Tell = std::function<void(const std::string&)>;

    // All have to outlive it. Throws Store_Error for a state folder that cannot be used, std::invalid_argument.
    Edge_Run(const Run_Settings& runSettings, Session& controllerSession, Published_Labels& publishedLabels,
             Wait_Point& waitPoint, Tell tellWords);
    // Until the wait point is stopped; then the node's death is published.
    void run();

private:
    // Of what the broker may not have had yet.
    struct Batch {
        std::vector<Sample> samples;  // live ones, which are kept when the connection ends
        std::size_t records = 0;      // of the store, which are taken out when they have arrived
    };

    bool publish(const Message& message) override { return link.publish(message); }
    void subscribe(const std::string& topic, int qos) override { link.subscribe(topic, qos); }
    void write(const Wanted_Write& wanted) override { writes.push_back(wanted); }
    void leave() override;
    void tell(const std::string& words) override { tellOthers(words); }
    void brokerConnected() override;
    void brokerLost(const std::string& reason) override;
    void brokerMessage(const std::string& topic, const std::string& payload, bool isRetained) override;
    void brokerReached(int mark) override;
    void roundDone(int) override { waiting.wake(); }
    void linkChanged(const Link_Change&) override { waiting.wake(); }

    void step();
    void connectBroker();
    void takeNews();
    void takeLinkChange(const Link_Change& change);
    void takeRound();
    void sendAll(const std::vector<Sample>& samples);
    void keep(const std::vector<Sample>& samples);
    void keepUnconfirmed();
    void sendKept();
    void doWrites();
    void syncStore();

    const Run_Settings settings;
    Session& session;
    Published_Labels& labels;
    Wait_Point& waiting;
    const Tell tellOthers;
    Record_Store store;
    Birth_Number birthNumber;
    Edge_Node node;
    Broker_Link link;
    Watch_Events events;
    std::unordered_map<std::string, std::size_t> byName;

    std::deque<Wanted_Write> writes;
    std::deque<Batch> unconfirmed;
    std::size_t marked = 0;  // of these, the ones before the mark
    int mark = 0;            // that is waited for; 0: none
    bool keptUnderWay = false;
    std::uint64_t overwrittenBefore = 0;

    Moment now;
    bool isUp = false;                    // the controller answers
    std::optional<std::uint64_t> downMs;  // since when the link to it is down
    bool brokerWanted = false;            // connect() was called and nothing ended it
    bool brokerAnswered = false;
    std::uint64_t brokerDeadlineMs = 0;  // of the answer, or of the next attempt
    std::uint64_t pauseMs = 0;
    std::uint64_t keptMs = 0, syncMs = 0;
    std::uint64_t keptFailed = 0;
};

}  // namespace vornex::edge

#endif
