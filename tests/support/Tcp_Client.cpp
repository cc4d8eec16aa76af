#include "Tcp_Client.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace vornex::test {

Tcp_Client::Tcp_Client(int port, int patience)
    : patienceMs(patience), socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    int error = ETIMEDOUT;
    socklen_t size = sizeof error;
    if (isReady(POLLOUT, clockMs() + patienceMs)) ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size);
    connected = error == 0;
    const int now = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &now, sizeof now);
}

Tcp_Client::~Tcp_Client() { ::close(socket); }

bool Tcp_Client::isReady(short events, double until) const {
    for (;;) {
        pollfd wait = {socket, events, 0};
        const double left = until - clockMs();
        const int ready = ::poll(&wait, 1, left > 0 ? static_cast<int>(left) + 1 : 0);
        if (ready >= 0 || errno != EINTR) return ready > 0;
    }
}

bool Tcp_Client::somethingWaits(int withinMs) const { return isReady(POLLIN, clockMs() + withinMs); }

bool Tcp_Client::send(const std::string& bytes) {
    const double until = clockMs() + patienceMs;
    std::size_t done = 0;
    while (done < bytes.size() && isReady(POLLOUT, until)) {
        const ssize_t sent = ::send(socket, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (sent < 0) {
            seenEnd = End::Reset;
            return false;
        }
        done += static_cast<std::size_t>(sent);
    }
    return done == bytes.size();
}

std::string Tcp_Client::receive(std::size_t bytes) {
    const double until = clockMs() + patienceMs;
    std::string all;
    while (all.size() < bytes && isReady(POLLIN, until)) {
        char buffer[4096];
        const ssize_t got = ::recv(socket, buffer, std::min(sizeof buffer, bytes - all.size()), 0);
        if (got <= 0) {
            seenEnd = got == 0 ? End::Closed : End::Reset;
            break;
        }
        all.append(buffer, static_cast<std::size_t>(got));
    }
    return all;
}

Tcp_Client::End Tcp_Client::waitForEnd() {
    if (seenEnd == End::Open) receive(1);
    return seenEnd;
}

}  // namespace vornex::test
