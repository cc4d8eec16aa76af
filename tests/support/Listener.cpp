#include "Listener.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Process.h"

namespace vornex::test {

namespace {

bool readable(int socket) {
    pollfd wait = {socket, POLLIN, 0};
    return ::poll(&wait, 1, WaitLimit) > 0;
}

sockaddr_in loopback(int port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

}  // namespace

Listener::Listener(int waiting) { open(waiting); }

Listener::Listener(Serve serve) {
    open(16);
    thread = std::thread([this, serve] {
        for (int peer; (peer = ::accept4(socket, nullptr, nullptr, SOCK_CLOEXEC)) >= 0; ::close(peer))
            serve(peer, ++taken);
    });
}

Listener::~Listener() {
    ::shutdown(socket, SHUT_RDWR);  // ends accept
    if (thread.joinable()) thread.join();
    for (const int filler : fillers)
        ::close(filler);
    ::close(socket);
}

void Listener::open(int waiting) {
    socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (::bind(socket, reinterpret_cast<sockaddr*>(&address), size) == 0 && ::listen(socket, waiting) == 0 &&
        ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) == 0) {
        portNumber = ntohs(address.sin_port);
    }
}

void Listener::fill() {
    const sockaddr_in address = loopback(portNumber);
    for (bool taking = true; taking && fillers.size() < 100;) {
        const int filler = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        fillers.push_back(filler);
        ::connect(filler, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        pollfd wait = {filler, POLLOUT, 0};
        taking = ::poll(&wait, 1, 200) > 0;
    }
}

std::string receiveFrom(int socket, std::size_t bytes) {
    std::string all;
    char buffer[4096];
    while (all.size() < bytes && readable(socket)) {
        const ssize_t got = ::recv(socket, buffer, sizeof buffer, 0);
        if (got <= 0) break;
        all.append(buffer, static_cast<std::size_t>(got));
    }
    return all;
}

void sendTo(int socket, const std::string& bytes) {
    ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);  // a peer that has gone is what some tests are about
}

void waitForClose(int socket) {
    char byte;
    while (readable(socket) && ::recv(socket, &byte, 1, 0) > 0) {
    }
}

}  // namespace vornex::test
