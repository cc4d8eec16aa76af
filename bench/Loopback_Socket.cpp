#include "Loopback_Socket.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

#include "Loopback_Contender.h"

namespace {

enum { Patience = 2 };  // seconds

sockaddr_in loopback(int port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

void tune(int socket) {
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    const timeval patience = {Patience, 0};
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
}

void serve(int listener, std::string reply, bool echoesTransaction) {
    const int client = accept(listener, nullptr, nullptr);
    if (client < 0) return;
    const int on = 1;
    setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    char request[RequestBytes];
    while (receiveAll(client, request, RequestBytes)) {
        if (echoesTransaction) std::memcpy(&reply[0], request, 2);
        sendAll(client, reply.data(), static_cast<int>(reply.size()));
    }
}

}  // namespace

int connectTo(int port) {
    const int made = socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = loopback(port);
    if (connect(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) fail("connect");
    tune(made);
    return made;
}

void sendAll(int socket, const char* bytes, int count) {
    if (send(socket, bytes, static_cast<size_t>(count), MSG_NOSIGNAL) != count) fail("send");
}

bool receiveAll(int socket, char* bytes, int count) {
    for (int done = 0; done < count;) {
        const ssize_t got = recv(socket, bytes + done, static_cast<size_t>(count - done), 0);
        if (got == 0 && done == 0) return false;
        if (got <= 0) fail("receive");
        done += static_cast<int>(got);
    }
    return true;
}

Plain_Server startPlainServer(const std::string& reply, bool echoesTransaction) {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener, 1) != 0 ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        fail("listen");
    const int process = fork();
    if (process < 0) fail("fork");
    if (process == 0) {
        serve(listener, reply, echoesTransaction);
        _exit(0);
    }
    close(listener);
    return {ntohs(address.sin_port), process};
}
