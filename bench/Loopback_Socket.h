// Blocking sockets of the loopback benchmark, and the plain server that all contenders share.
#ifndef VORNEX_BENCH_LOOPBACK_SOCKET_H
#define VORNEX_BENCH_LOOPBACK_SOCKET_H

#include <string>

// A connection to a port of the loopback interface; its reads give up after two seconds.
int connectTo(int port);

void sendAll(int socket, const char* bytes, int count);

// Reads exactly `count` bytes. False when the other side closes before the first of them.
bool receiveAll(int socket, char* bytes, int count);

// A process that answers every request of `RequestBytes` bytes on one connection with the same prepared reply; for a
// protocol with transaction numbers the request's first two bytes go into it. It computes nothing. Ends when the
// connection does.
struct Plain_Server {
    int port;
    int process;
};
Plain_Server startPlainServer(const std::string& reply, bool echoesTransaction);

#endif
