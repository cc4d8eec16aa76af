// A line between a host and a controller that does everything a line, a gateway or a serial server can do to bytes.
// Only what nobody could notice is left out: data changed together with its check value.
#ifndef VORNEX_TESTS_HOSTILE_PROXY_H
#define VORNEX_TESTS_HOSTILE_PROXY_H

#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "Listener.h"

namespace vornex::test {

class Hostile_Proxy {
public:
    // One of `period` requests, at random, meets a fault, each kind in turn. `only`: one kind, by its name.
    Hostile_Proxy(int controllerPort, unsigned period, const std::string& only = "");

    int port() const { return listener->port(); }
    // To be called when the host has closed; the following are known then.
    void finish() { listener.reset(); }
    // How many connections began with an old reply. When the host's request is there first, the moment in which a host
    // can tell is over, and there is no greeting unless it `greetsLate`, which is set before the host connects.
    long greetings() const { return greeted; }
    bool greetsLate = false;
    // How often each kind was injected.
    const std::map<std::string, long>& injected() const { return counts; }
    // Of these, the ones in a read that leave no good reply.
    long mustFail() const { return withoutGoodReply; }
    std::string summary() const;  // "13 faults of 2 kinds: bit flipped 7, zeros 6"

    struct Kind;
    static std::size_t allKinds();

private:
    void serve(int host);

    const int controller;
    const unsigned often;
    std::vector<const Kind*> kinds;
    std::size_t turn = 0;
    std::mt19937 chance{1};
    std::map<std::string, long> counts;
    long withoutGoodReply = 0;
    std::string last;  // the reply before
    long greeted = 0;
    std::string greeting;              // what the next connection begins with
    bool refuses = false;              // the next connection is closed
    bool isDead = false;               // the next connection is not answered
    std::optional<Listener> listener;  // last: its thread uses the others
};

}  // namespace vornex::test

#endif
