#include "sim/net/Server.h"

#include <algorithm>
#include <utility>

namespace vornex::sim {

using std::chrono::milliseconds;

Server::Server(asio::io_context& context, Controller& answeringController, const Caps& limits, Log traceLog)
    : controller(answeringController),
      caps(limits),
      trace(std::move(traceLog)),
      io(context),
      listener(context, answeringController.log, "clients", [this](auto socket) { onAccepted(std::move(socket)); }),
      reopenTimer(context),
      recordTimer(context) {}

void Server::listen(const std::string& address, unsigned short port) {
    endpoint = asio::ip::tcp::endpoint(asio::ip::make_address(address), port);
    open();
    endpoint = listener.acceptor.local_endpoint();  // the port stays the same when it opens again
    listener.start();
}

std::string Server::address() const {
    const std::string host = endpoint.address().to_string();
    return (endpoint.address().is_v6() ? "[" + host + "]" : host) + ":" + std::to_string(endpoint.port());
}

void Server::open() {
    listener.acceptor.open(endpoint.protocol());
    listener.acceptor.set_option(asio::socket_base::reuse_address(true));
    listener.acceptor.bind(endpoint);
    listener.acceptor.listen();
}

void Server::onAccepted(asio::ip::tcp::socket socket) {
    asio::error_code ignored;
    const asio::ip::tcp::endpoint peer = socket.remote_endpoint(ignored);
    if (sessions.size() >= caps.clients) {
        ++controller.stats.clientsRefused;
        controller.log("connection refused, " + std::to_string(caps.clients) + " clients are the limit");
        return;
    }
    ++controller.stats.clients;
    const auto session = std::make_shared<Client_Connection>(std::move(socket), *this, ++clientNumber);
    trace("client " + std::to_string(clientNumber) + " came from " + peer.address().to_string() + ":" +
          std::to_string(peer.port()));
    sessions.insert(session);
    session->start();
}

void Server::forget(const std::shared_ptr<Client_Connection>& session) { sessions.erase(session); }

void Server::endSessions(bool reset) {
    // each one forgets itself in the set
    const std::set<std::shared_ptr<Client_Connection>> all = sessions;
    for (const auto& session : all)
        session->end(reset);
}

void Server::stop(bool reset) {
    listener.stop();
    reopenTimer.cancel();
    recordTimer.cancel();
    endSessions(reset);
    io.stop();
}

double Server::now() const { return std::chrono::duration<double, std::milli>(Clock::now() - started).count(); }

void Server::stall(std::uint64_t milliseconds_) {
    stalledUntil = std::max(stalledUntil, Clock::now() + milliseconds(milliseconds_));
}

milliseconds Server::stallLeft() const {
    const auto left = std::chrono::ceil<milliseconds>(stalledUntil - Clock::now());
    return std::max(left, milliseconds(0));
}

void Server::refuse(std::uint64_t milliseconds_) {
    listener.stop();
    endSessions(true);
    reopenLater(milliseconds(milliseconds_));
}

void Server::reopenLater(milliseconds wait) {
    reopenTimer.expires_after(wait);
    reopenTimer.async_wait([this](const asio::error_code& error) {
        if (error || isDown) return;
        try {
            open();
            listener.start();
            controller.log("connections are taken again");
        } catch (const std::system_error& failure) {
            controller.log("cannot listen again yet: " + std::string(failure.what()));
            listener.stop();
            reopenLater(milliseconds(100));
        }
    });
}

void Server::followRecord() {
    const bool wasDown = std::exchange(isDown, controller.plant.line(now()) == Played_Record::Line::Down);
    if (isDown && !wasDown) {
        controller.log("the record has no link, connections are closed");
        listener.stop();
        endSessions(false);
    }
    if (wasDown && !isDown) reopenLater(milliseconds(0));
    recordTimer.expires_after(milliseconds(20));
    recordTimer.async_wait([this](const asio::error_code& error) {
        if (!error) followRecord();
    });
}

void Server::kill() {
    controller.log("power cut");
    stop(true);
}

}  // namespace vornex::sim
