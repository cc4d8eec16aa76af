// A host's exchange over TCP with its rules, each of which can be switched off to show what it is for.
#ifndef VORNEX_TESTS_TCP_HOST_H
#define VORNEX_TESTS_TCP_HOST_H

#include <string>

struct Protocol;

struct Host_Rules {
    bool startAfresh = true;  // after a time-out or surplus bytes: a new connection before anything is sent again
    bool checkCounts = true;  // a reply whose items are not those asked for is not handed over
};

class Tcp_Host {
public:
    Tcp_Host(int controllerPort, int patienceMs, Host_Rules hostRules = Host_Rules())
        : rules(hostRules), port(controllerPort), patience(patienceMs) {}
    ~Tcp_Host() { close(); }
    Tcp_Host(const Tcp_Host&) = delete;
    Tcp_Host& operator=(const Tcp_Host&) = delete;

    // One frame of the driver's there and back. The status that DataCom gave; -1 when there was nothing to send.
    int exchange();

    long exchanges = 0;
    long failures = 0;  // replies that did not come as they should

private:
    bool connect();
    void close();
    bool collect(const Protocol& protocol, std::string& reply);
    bool bytesWait() const;

    const Host_Rules rules;
    const int port;
    const int patience;
    int socket = -1;
};

#endif
