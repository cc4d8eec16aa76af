// A host's exchange over TCP with its rules, each of which can be switched off to show what it is for.
#ifndef VORNEX_TESTS_TCP_HOST_H
#define VORNEX_TESTS_TCP_HOST_H

#include <memory>
#include <string>

#include "Tcp_Client.h"

struct Protocol;

struct Host_Rules {
    bool startAfresh = true;  // after a time-out or surplus bytes: a new connection before anything is sent again
    bool checkCounts = true;  // a reply whose items are not those asked for is not handed over
    int settleMs = 10;        // a new connection is listened to before the first frame; below 0: it is not
};

class Tcp_Host {
public:
    Tcp_Host(int controllerPort, int patienceMs, Host_Rules hostRules = Host_Rules())
        : rules(hostRules), port(controllerPort), patience(patienceMs) {}

    // One frame of the driver's there and back. The status that DataCom gave; -1 when there was nothing to send.
    int exchange();

    void close() { client.reset(); }

    long zerosEvery = 0;  // a fault of the line: every so many replies arrive as zeros of the same length; 0: none

    long exchanges = 0;
    long failures = 0;  // replies that did not come as they should
    long unasked = 0;   // new connections on which something came before the first frame, their end included
    long zeroed = 0;    // replies that arrived as zeros
    long replies = 0;   // that arrived at all

private:
    bool connect();
    bool collect(const Protocol& protocol, std::string& reply);
    void spoil(std::string& reply);

    const Host_Rules rules;
    const int port;
    const int patience;
    std::unique_ptr<vornex::test::Tcp_Client> client;
};

#endif
