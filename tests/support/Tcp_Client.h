// A client that knows nothing but bytes.
#ifndef VORNEX_TESTS_TCP_CLIENT_H
#define VORNEX_TESTS_TCP_CLIENT_H

#include <string>

#include "Process.h"

namespace vornex::test {

class Tcp_Client {
public:
    enum class End { Open, Closed, Reset };

    // Connects to a port of this machine. Each wait of the client's ends after `patience` ms.
    explicit Tcp_Client(int port, int patience = WaitLimit);
    ~Tcp_Client();
    Tcp_Client(const Tcp_Client&) = delete;
    Tcp_Client& operator=(const Tcp_Client&) = delete;

    bool isConnected() const { return connected; }
    // False when not all of it could be sent.
    bool send(const std::string& bytes);
    // Exactly so many bytes, fewer when the connection ends before or the time is over.
    std::string receive(std::size_t bytes);
    // Something can be received within this time: bytes, or the connection's end.
    bool somethingWaits(int withinMs = 0) const;
    // How the connection ended, as far as sending and receiving have shown; the second one waits for it.
    End end() const { return seenEnd; }
    End waitForEnd();

private:
    bool isReady(short events, double until) const;

    const int patienceMs;
    int socket = -1;
    bool connected = false;
    End seenEnd = End::Open;
};

}  // namespace vornex::test

#endif
