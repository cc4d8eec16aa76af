// The listening socket, the connections and the clock.
#ifndef VORNEX_SIM_NET_SERVER_H
#define VORNEX_SIM_NET_SERVER_H

#include <chrono>
#include <memory>
#include <set>
#include <string>

#include <asio.hpp>

#include "sim/Controller.h"
#include "sim/net/Accept_Loop.h"
#include "sim/net/Client_Connection.h"

namespace vornex::sim {

class Server {
public:
    // `trace` takes what is worth a line only to somebody who watches closely.
    Server(asio::io_context& context, Controller& answeringController, const Caps& limits, Log traceLog);

    // Throws std::system_error when the address cannot be had. Port 0 takes a free one.
    void listen(const std::string& address, unsigned short port);
    // From now on there are connections only where the played record has them.
    void followRecord();
    // "127.0.0.1:2000"
    std::string address() const;

    // Ends every connection; run() of the context returns when nothing else is left to do.
    void stop(bool reset);

    // For sessions.
    void forget(const std::shared_ptr<Client_Connection>& session);
    double now() const;
    void stall(std::uint64_t milliseconds);
    std::chrono::milliseconds stallLeft() const;
    void refuse(std::uint64_t milliseconds);
    void kill();

    Controller& controller;
    const Caps caps;
    const Log trace;

private:
    using Clock = std::chrono::steady_clock;
    void open();
    void onAccepted(asio::ip::tcp::socket socket);
    void reopenLater(std::chrono::milliseconds wait);
    void endSessions(bool reset);

    asio::io_context& io;
    Accept_Loop<asio::ip::tcp> listener;
    asio::ip::tcp::endpoint endpoint;
    asio::steady_timer reopenTimer;
    asio::steady_timer recordTimer;
    bool isDown = false;  // as the played record says
    std::set<std::shared_ptr<Client_Connection>> sessions;
    std::uint64_t clientNumber = 0;
    Clock::time_point started = Clock::now();
    Clock::time_point stalledUntil = started;
};

}  // namespace vornex::sim

#endif
