// The connection to the MQTT broker: libmosquitto, driven by who waits for its socket.
#ifndef VORNEX_EDGE_BROKER_LINK_H
#define VORNEX_EDGE_BROKER_LINK_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "edge/node/Edge_Node.h"
#include "text/Host_Port.h"

struct mosquitto;
struct mosquitto_message;

namespace vornex::edge {

struct Broker_Settings {
    Host_Port address;
    std::string clientId;
    std::string user;      // empty: none
    std::string password;  // out of a file
    std::string caFile;    // empty: no TLS
    std::string certificate, key;
    bool isUnverified = false;  // TLS that believes any certificate
};

// Called by service(), after the library has done its work: any call of the link may follow.
class Broker_Events {
public:
    virtual ~Broker_Events() = default;
    virtual void brokerConnected() = 0;
    virtual void brokerLost(const std::string& reason) = 0;
    virtual void brokerMessage(const std::string& topic, const std::string& payload, bool isRetained) = 0;
    // The broker has had everything that was published before mark() returned this number.
    virtual void brokerReached(int mark) = 0;
};

// One thread. Nothing here waits, but the look-up of a name.
class Broker_Link {
public:
    // Throws std::invalid_argument for settings that the library refuses.
    Broker_Link(const Broker_Settings& brokerSettings, Broker_Events& brokerEvents);
    ~Broker_Link();
    Broker_Link(const Broker_Link&) = delete;
    Broker_Link& operator=(const Broker_Link&) = delete;

    // A new connection with this will; the events tell what becomes of it.
    void connect(const Message& will);
    // -1: none; poll's events that it waits for.
    int socket() const;
    short wantedEvents() const;
    // What waits, in and out; at least every second.
    void service();

    // False: nothing was taken: no connection, or so much waits for a broker that does not read.
    bool publish(const Message& message);
    void subscribe(const std::string& topic, int qos);
    // Asks for a sign that the broker has had all until now: MQTT answers in order. 0: could not be asked.
    int mark(const std::string& unusedTopic);
    // Sends what waits, for at most so long, and disconnects. No event follows.
    void leave(int patienceMs);
    // Ends the connection without a word: the broker publishes the will. No event follows.
    void drop();

private:
    static void onConnect(struct mosquitto*, void* self, int code);
    static void onMessage(struct mosquitto*, void* self, const struct mosquitto_message* message);
    static void onUnsubscribe(struct mosquitto*, void* self, int number);
    static void onLog(struct mosquitto*, void* self, int level, const char* text);

    void setUp();
    void fail(int code);
    void tellEvents();
    void require(int code, const char* what) const;

    const Broker_Settings settings;
    Broker_Events& events;
    struct mosquitto* client = nullptr;
    bool isOpen = false;       // connect() was called, and nothing ended it
    bool isConnected = false;  // the broker has said yes
    std::size_t waiting = 0;   // bytes handed over since the socket took all
    std::vector<std::function<void()>> happened;
    std::string refusal;      // of the connection, by the broker
    std::string lastMistake;  // that the library has told since the connection began
};

}  // namespace vornex::edge

#endif
