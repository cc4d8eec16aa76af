#include "Link.h"

#include <sys/socket.h>

#include <memory>

#include <asio/connect.hpp>
#include <asio/read.hpp>
#include <asio/write.hpp>

namespace vornex {

namespace {

using asio::ip::tcp;

// Shared with the handlers: one may come after its operation was given up, name look-ups cannot be cut short.
struct Pending {
    bool done = false;
    asio::error_code error;
    std::string buffer;
    std::size_t received = 0;
};

std::string words(const asio::error_code& error) {
    if (error == asio::error::eof) return "the controller closed the connection";
    return error.message();
}

}  // namespace

Link::Link(asio::io_context& ioContext, const std::atomic<bool>& stopFlag)
    : context(ioContext), stop(stopFlag), socket(ioContext) {}

bool Link::runUntil(const bool& done, Steady_Time deadline) {
    while (!done && !stop) {
        if (context.run_one_until(deadline) == 0 && std::chrono::steady_clock::now() >= deadline) break;
    }
    return done;
}

std::string Link::open(const std::string& host, const std::string& port, Milliseconds timeout) {
    close();
    const auto pending = std::make_shared<Pending>();
    const auto resolver = std::make_shared<tcp::resolver>(context);
    resolver->async_resolve(
        host, port, [this, pending, resolver](asio::error_code error, tcp::resolver::results_type found) {
            pending->error = error;
            if (error || pending->done) {
                pending->done = true;
                return;
            }
            asio::async_connect(socket, found, [pending](asio::error_code failure, const tcp::endpoint&) {
                pending->error = failure;
                pending->done = true;
            });
        });
    if (!runUntil(pending->done, std::chrono::steady_clock::now() + timeout)) {
        pending->done = true;  // a look-up that ends later must not connect
        close();
        return stop ? "interrupted" : "no answer within " + std::to_string(timeout.count()) + " ms";
    }
    if (pending->error) {
        close();
        return words(pending->error);
    }
    asio::error_code ignored;
    socket.set_option(tcp::no_delay(true), ignored);
    return {};
}

void Link::close() {
    asio::error_code ignored;
    socket.close(ignored);
}

std::string Link::unfit() {
    char byte;
    const ssize_t waiting = recv(socket.native_handle(), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    if (waiting > 0) return "bytes came that nobody asked for";
    if (waiting == 0) return "the controller closed the connection";
    if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR) return {};
    return words(asio::error_code(errno, asio::system_category()));
}

Transfer Link::exchange(const std::string& frame, std::size_t replyLength, Milliseconds timeout) {
    const auto pending = std::make_shared<Pending>();
    const Steady_Time deadline = std::chrono::steady_clock::now() + timeout;
    pending->buffer.resize(replyLength);
    asio::async_write(socket, asio::buffer(frame), [this, pending](asio::error_code error, std::size_t) {
        pending->error = error;
        if (error || pending->buffer.empty()) {
            pending->done = true;
            return;
        }
        asio::async_read(socket, asio::buffer(pending->buffer), [pending](asio::error_code failure, std::size_t bytes) {
            pending->error = failure;
            pending->received = bytes;
            pending->done = true;
        });
    });
    const bool inTime = runUntil(pending->done, deadline);
    if (!inTime) {
        asio::error_code ignored;
        socket.cancel(ignored);
        while (!pending->done)
            context.run_one();  // cancelled handlers are ready at once; they tell how much came
    }
    Transfer transfer;
    transfer.reply = pending->buffer.substr(0, pending->received);
    if (!inTime) {
        transfer.state = stop ? Transfer_State::Interrupted : Transfer_State::TimedOut;
        transfer.reason = stop ? "interrupted"
                               : std::to_string(pending->received) + " of " + std::to_string(replyLength) +
                                     " bytes within " + std::to_string(timeout.count()) + " ms";
    } else if (pending->error) {
        transfer.state = Transfer_State::Closed;
        transfer.reason = words(pending->error);
    } else {
        transfer.state = Transfer_State::Complete;
        takeSurplus(transfer);
    }
    return transfer;
}

// Bytes behind a complete reply: the link and the frames are out of step.
void Link::takeSurplus(Transfer& transfer) {
    char bytes[4096];
    const ssize_t surplus = recv(socket.native_handle(), bytes, sizeof bytes, MSG_DONTWAIT);
    if (surplus <= 0) return;
    transfer.reply.append(bytes, static_cast<std::size_t>(surplus));
    transfer.state = Transfer_State::Surplus;
    transfer.reason = std::to_string(surplus) + " bytes more than the reply has";
}

}  // namespace vornex
