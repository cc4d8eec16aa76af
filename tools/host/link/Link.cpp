#include "host/link/Link.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "text/Hex.h"
#include "text/Text.h"

namespace vornex {

namespace {

const std::size_t ShownBytes = 16;

Steady_Time now() { return std::chrono::steady_clock::now(); }

std::string withinText(Milliseconds timeout) { return " within " + std::to_string(timeout.count()) + " ms"; }

bool laterPerhaps(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == EINTR; }

}  // namespace

Link_Fault Link::open(const Host_Port& target, Milliseconds timeout, Milliseconds settle) {
    close();
    Link_Fault fault = {connectAny(target, timeout)};
    if (fault) return fault;
    if (wait.through(now() + settle, socket.get(), POLLIN) == Wait_End::Stopped)
        fault = {"interrupted"};
    else
        fault = unfit();
    if (fault.unasked) fault.reason = "on the new connection " + fault.reason;
    if (fault) close();
    return fault;
}

std::string Link::connectAny(const Host_Port& target, Milliseconds timeout) {
    const Steady_Time deadline = now() + timeout;
    std::vector<Socket_Address> addresses;
    std::string reason = lookUp.find(target, deadline, wait, addresses);
    for (std::size_t i = 0; i < addresses.size() && !socket.isOpen() && now() < deadline; ++i) {
        // an address that swallows everything leaves time for the others
        const auto left = static_cast<Steady_Time::rep>(addresses.size() - i);
        reason = connect(addresses[i], now() + (deadline - now()) / left);
        if (!reason.empty()) close();
    }
    if (wait.stopped()) return close(), "interrupted";
    if (socket.isOpen() || now() < deadline) return reason;
    return "no answer" + withinText(timeout) + (reason.empty() ? "" : ": " + reason);
}

std::string Link::connect(const Socket_Address& address, Steady_Time deadline) {
    socket.reset(::socket(address.bytes.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket.isOpen()) return std::strerror(errno);
    const int on = 1;
    ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);  // slower without, but right
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address.bytes), address.size) == 0) return {};
    if (errno != EINPROGRESS) return std::strerror(errno);
    if (wait.through(deadline, socket.get(), POLLOUT) != Wait_End::Ready) return "connecting takes longer";
    int error = 0;
    socklen_t size = sizeof error;
    if (::getsockopt(socket.get(), SOL_SOCKET, SO_ERROR, &error, &size) != 0) error = errno;
    return error == 0 ? std::string() : std::strerror(error);
}

Link_Fault Link::unfit() {
    char bytes[4096];
    const ssize_t got = ::recv(socket.get(), bytes, sizeof bytes, MSG_DONTWAIT);
    if (got > 0) {
        const std::string all(bytes, static_cast<std::size_t>(got));
        return {counted(all.size(), "byte") + " came that nobody asked for: " + firstHexBytes(all, ShownBytes), true};
    }
    if (got == 0) return {"the controller closed the connection"};
    return {laterPerhaps(errno) ? std::string() : std::strerror(errno)};
}

Link_Fault Link::rest(Steady_Time until) {
    if (wait.until(until, socket.get(), POLLIN) != Wait_End::Ready) return {};
    return unfit();
}

Transfer Link::exchange(const std::string& frame, std::size_t replyLength, Milliseconds timeout) {
    Transfer transfer;
    transfer.state = Transfer_State::Complete;
    const Steady_Time deadline = now() + timeout;
    if (sendAll(frame, deadline, transfer) && collect(replyLength, deadline, transfer)) takeSurplus(transfer);
    if (transfer.state == Transfer_State::TimedOut) {
        if (transfer.reason.empty())
            transfer.reason = std::to_string(transfer.reply.size()) + " of " + std::to_string(replyLength) + " bytes";
        transfer.reason += withinText(timeout);
    }
    return transfer;
}

// Waits until the socket can go on; false when the exchange has ended instead.
bool Link::step(short events, Steady_Time deadline, Transfer& transfer) {
    const Wait_End end = wait.through(deadline, socket.get(), events);
    if (end == Wait_End::Ready) return true;
    transfer.state = end == Wait_End::Stopped ? Transfer_State::Interrupted : Transfer_State::TimedOut;
    if (end == Wait_End::Stopped) transfer.reason = "interrupted";
    return false;
}

bool Link::sendAll(const std::string& frame, Steady_Time deadline, Transfer& transfer) {
    std::size_t done = 0;
    while (done < frame.size()) {
        if (!step(POLLOUT, deadline, transfer)) {
            if (transfer.state == Transfer_State::TimedOut) transfer.reason = "the request could not be sent";
            return false;
        }
        const ssize_t sent =
            ::send(socket.get(), frame.data() + done, frame.size() - done, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent >= 0) {
            done += static_cast<std::size_t>(sent);
        } else if (!laterPerhaps(errno)) {
            transfer.state = Transfer_State::Closed;
            transfer.reason = std::strerror(errno);
            return false;
        }
    }
    return true;
}

bool Link::collect(std::size_t replyLength, Steady_Time deadline, Transfer& transfer) {
    std::string buffer(replyLength, '\0');
    std::size_t done = 0;
    bool whole = true;
    while (whole && done < replyLength) {
        whole = step(POLLIN, deadline, transfer);
        if (!whole) break;
        const ssize_t got = ::recv(socket.get(), &buffer[done], replyLength - done, MSG_DONTWAIT);
        if (got > 0) {
            done += static_cast<std::size_t>(got);
        } else if (got == 0 || !laterPerhaps(errno)) {
            transfer.state = Transfer_State::Closed;
            transfer.reason = got == 0 ? "the controller closed the connection" : std::strerror(errno);
            whole = false;
        }
    }
    buffer.resize(done);
    transfer.reply = std::move(buffer);
    return whole;
}

// Bytes behind a complete reply: the link and the frames are out of step.
void Link::takeSurplus(Transfer& transfer) {
    char bytes[4096];
    const ssize_t surplus = ::recv(socket.get(), bytes, sizeof bytes, MSG_DONTWAIT);
    if (surplus <= 0) return;
    transfer.reply.append(bytes, static_cast<std::size_t>(surplus));
    transfer.state = Transfer_State::Surplus;
    transfer.reason = std::to_string(surplus) + " bytes more than the reply has";
}

}  // namespace vornex
