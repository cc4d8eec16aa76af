// The TCP link to the controller: one connection, one exchange at a time, no wait without an end.
#ifndef VORNEX_LABEL_LINK_H
#define VORNEX_LABEL_LINK_H

#include <atomic>
#include <chrono>
#include <string>

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>

namespace vornex {

using Milliseconds = std::chrono::milliseconds;
using Steady_Time = std::chrono::steady_clock::time_point;

enum class Transfer_State {
    Complete,     // exactly the expected bytes
    TimedOut,     // fewer bytes, or none, in time
    Closed,       // the controller closed or reset the connection
    Surplus,      // more bytes than expected
    NoLink,       // there was no connection to send on
    Interrupted,  // the tool is ending
};

struct Transfer {
    Transfer_State state = Transfer_State::NoLink;
    std::string reply;   // what was received, also when it is not complete
    std::string reason;  // in words unless complete
};

// Used by one thread at a time, which also runs `context`. When `stop` becomes true and the context is woken, every
// wait ends.
class Link {
public:
    Link(asio::io_context& context, const std::atomic<bool>& stop);

    // Connects; empty on success, else the reason in words.
    std::string open(const std::string& host, const std::string& port, Milliseconds timeout);
    void close();
    bool isOpen() const { return socket.is_open(); }

    // Empty when the connection stands and no byte waits, else the reason why nothing may be sent on it.
    std::string unfit();

    // Sends the frame and collects exactly `replyLength` bytes (0: none are awaited). The connection stays open,
    // whatever came; the caller closes it when it does not trust it any more.
    Transfer exchange(const std::string& frame, std::size_t replyLength, Milliseconds timeout);

private:
    bool runUntil(const bool& done, Steady_Time deadline);
    void takeSurplus(Transfer& transfer);

    asio::io_context& context;
    const std::atomic<bool>& stop;
    asio::ip::tcp::socket socket;
};

}  // namespace vornex

#endif
