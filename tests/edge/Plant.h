// A broker of its own for a test, and a host that hears all and checks the order of what it hears.
#ifndef VORNEX_TESTS_EDGE_PLANT_H
#define VORNEX_TESTS_EDGE_PLANT_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Process.h"
#include "edge/payload/Payload.h"

struct mosquitto;

namespace vornex::test {

class Broker {
public:
    // Anybody may come to port(); where `securedBy` has lines of its configuration, they hold for a second port.
    explicit Broker(const std::string& folder, const std::string& securedBy = "");
    int port() const { return portNumber; }
    int securedPort() const { return securedNumber; }
    // By SIGKILL; and again on the same port.
    void kill();
    void start();

private:
    bool tryStart();

    const std::string folder, security;
    int portNumber = 0, securedNumber = 0;
    std::unique_ptr<Process> process;
};

struct Heard {
    std::string topic;
    edge::Payload payload;

    std::string type() const;  // "DDATA"
    const edge::Metric* find(const std::string& metric) const;
};

class Plant_Host {
public:
    explicit Plant_Host(int port);
    ~Plant_Host();
    Plant_Host(const Plant_Host&) = delete;
    Plant_Host& operator=(const Plant_Host&) = delete;

    // The first message from the place that is right; nothing when none comes in time. The next call goes on behind it.
    using Right = std::function<bool(const Heard&)>;
    const Heard* waitFor(const std::string& type, const Right& right = {});
    void command(const std::string& topic, const std::string& metric, edge::Wire_Value value);

    std::vector<std::unique_ptr<Heard>> heard;

private:
    struct mosquitto* client = nullptr;
    std::size_t next = 0;
};

// What of the messages breaks the rules of an edge node, in words with the public id of the assertion.
std::vector<std::string> brokenRules(const std::vector<std::unique_ptr<Heard>>& heard);

}  // namespace vornex::test

#endif
