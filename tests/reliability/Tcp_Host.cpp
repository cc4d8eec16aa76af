#include "Tcp_Host.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Sim_Process.h"
#include "vornex_label_tcp/Entry_Points.h"

using vornex::test::clockMs;

namespace {

unsigned wordAt(const std::string& bytes, std::size_t at) {
    const auto low = static_cast<unsigned char>(bytes[at]);
    const auto high = static_cast<unsigned char>(bytes[at + 1]);
    return low | static_cast<unsigned>(high) << 8;
}

// Each item of the reply has the length that the frame asked for.
bool countsAgree(const std::string& frame, const std::string& reply) {
    std::size_t at = 4;
    for (std::size_t item = 8; item + 2 <= frame.size() - 2; item += 6) {
        if (at + 2 > reply.size() || wordAt(reply, at) != wordAt(frame, item)) return false;
        at += 2 + wordAt(frame, item);
    }
    return true;
}

bool ready(int descriptor, short events, double until) {
    pollfd wait = {descriptor, events, 0};
    const double left = until - clockMs();
    return ::poll(&wait, 1, left > 0 ? static_cast<int>(left) + 1 : 0) > 0;
}

}  // namespace

int Tcp_Host::exchange() {
    const Protocol* const protocol = ComCommunication();
    if (protocol == nullptr) return -1;
    ++exchanges;
    std::string reply;
    const bool linked = connect();
    if (!linked) ::usleep(2000);  // back-off: the controller is away
    bool complete = linked && collect(*protocol, reply);
    if (!complete) {
        ++failures;
        if (rules.startAfresh) close();
        reply.clear();
    }
    int length = static_cast<int>(reply.size());
    const std::string frame(protocol->frame.constData(), static_cast<std::size_t>(protocol->frame.size()));
    if (complete && rules.checkCounts && protocol->request.accessMode == 0 && !countsAgree(frame, reply)) reply.clear();
    QByteArray bytes(reply.data(), static_cast<int>(reply.size()));
    return DataCom(&bytes, length)->status;
}

bool Tcp_Host::connect() {
    if (socket >= 0 && rules.startAfresh && bytesWait()) close();  // surplus, or the end of the connection
    if (socket >= 0) return true;
    socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    int error = 1;
    socklen_t size = sizeof error;
    const int now = 1;
    if (ready(socket, POLLOUT, clockMs() + patience)) ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size);
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &now, sizeof now);
    if (error == 0) return true;
    close();
    return false;
}

void Tcp_Host::close() {
    if (socket >= 0) ::close(socket);
    socket = -1;
}

bool Tcp_Host::bytesWait() const { return ready(socket, POLLIN, 0); }

// Exactly the bytes that the reply must have. False when they do not come in time.
bool Tcp_Host::collect(const Protocol& protocol, std::string& reply) {
    const auto frameSize = static_cast<ssize_t>(protocol.frameLength);
    const auto replySize = static_cast<std::size_t>(protocol.replyLength);
    bool sent = ::send(socket, protocol.frame.constData(), protocol.frameLength, MSG_NOSIGNAL) == frameSize;
    const double until = clockMs() + patience;
    while (sent && reply.size() < replySize && ready(socket, POLLIN, until)) {
        char buffer[2048];
        const ssize_t got = ::recv(socket, buffer, std::min(sizeof buffer, replySize - reply.size()), 0);
        sent = got > 0;
        if (sent) reply.append(buffer, static_cast<std::size_t>(got));
    }
    if (!sent) close();
    return sent && reply.size() == replySize;
}
