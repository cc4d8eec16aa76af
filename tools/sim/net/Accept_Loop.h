// Takes connections of a listening socket, one after the other.
#ifndef VORNEX_SIM_NET_ACCEPT_LOOP_H
#define VORNEX_SIM_NET_ACCEPT_LOOP_H

#include <chrono>
#include <functional>
#include <string>
#include <utility>

#include <asio.hpp>

#include "sim/Controller.h"

namespace vornex::sim {

// On the thread of its context. When no connection can be taken, out of descriptors for one, the next attempt comes
// after a pause: who knocks waits meanwhile, and a core is not burnt.
template <class Protocol>
class Accept_Loop {
public:
    using Socket = typename Protocol::socket;
    // `peers`: how messages call those who connect.
    Accept_Loop(asio::io_context& context, Log messageLog, std::string peers, std::function<void(Socket)> taker)
        : acceptor(context),
          pause(context),
          log(std::move(messageLog)),
          peerName(std::move(peers)),
          take(std::move(taker)) {}

    // For a socket that is open and listens.
    void start() {
        acceptor.async_accept([this](const asio::error_code& error, Socket socket) {
            if (error == asio::error::operation_aborted || !acceptor.is_open()) return;
            if (error) return startLater(error);
            if (std::exchange(held, false)) log("connections of " + peerName + " are taken again");
            take(std::move(socket));
            start();
        });
    }

    void stop() {
        asio::error_code ignored;
        acceptor.close(ignored);
        pause.cancel();
    }

    typename Protocol::acceptor acceptor;

private:
    void startLater(const asio::error_code& reason) {
        if (!std::exchange(held, true)) log("no connection of " + peerName + " can be taken: " + reason.message());
        pause.expires_after(std::chrono::milliseconds(100));
        pause.async_wait([this](const asio::error_code& error) {
            if (!error && acceptor.is_open()) start();
        });
    }

    asio::steady_timer pause;
    const Log log;
    const std::string peerName;
    const std::function<void(Socket)> take;
    bool held = false;  // the attempt before this one failed
};

}  // namespace vornex::sim

#endif
