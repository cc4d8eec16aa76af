#include "Server.h"

#include <algorithm>

namespace vornex::sim {

using std::chrono::milliseconds;

Server::Server(asio::io_context& context, Controller& answeringController, const Caps& limits, Log traceLog)
    : controller(answeringController),
      caps(limits),
      trace(std::move(traceLog)),
      io(context),
      acceptor(context),
      reopenTimer(context) {}

void Server::listen(const std::string& address, unsigned short port) {
    endpoint = asio::ip::tcp::endpoint(asio::ip::make_address(address), port);
    open();
    endpoint = acceptor.local_endpoint();  // the port stays the same when it opens again
    accept();
}

std::string Server::address() const {
    const std::string host = endpoint.address().to_string();
    return (endpoint.address().is_v6() ? "[" + host + "]" : host) + ":" + std::to_string(endpoint.port());
}

void Server::open() {
    acceptor.open(endpoint.protocol());
    acceptor.set_option(asio::socket_base::reuse_address(true));
    acceptor.bind(endpoint);
    acceptor.listen();
}

void Server::accept() {
    acceptor.async_accept([this](const asio::error_code& error, asio::ip::tcp::socket socket) {
        if (error == asio::error::operation_aborted || !acceptor.is_open()) return;
        if (error) return acceptLater(error);
        onAccepted(std::move(socket));
        accept();
    });
}

// Out of descriptors, for one: at once the same would happen again.
void Server::acceptLater(const asio::error_code& reason) {
    controller.log("no connection can be taken: " + reason.message());
    reopenTimer.expires_after(milliseconds(100));
    reopenTimer.async_wait([this](const asio::error_code& error) {
        if (!error) accept();
    });
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
    const auto session = std::make_shared<Session>(std::move(socket), *this, ++clientNumber);
    trace("client " + std::to_string(clientNumber) + " came from " + peer.address().to_string() + ":" +
          std::to_string(peer.port()));
    sessions.insert(session);
    session->start();
}

void Server::forget(const std::shared_ptr<Session>& session) { sessions.erase(session); }

void Server::endSessions(bool reset) {
    // each one forgets itself in the set
    const std::set<std::shared_ptr<Session>> all = sessions;
    for (const auto& session : all)
        session->end(reset);
}

void Server::stop(bool reset) {
    asio::error_code ignored;
    acceptor.close(ignored);
    reopenTimer.cancel();
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
    asio::error_code ignored;
    acceptor.close(ignored);
    endSessions(true);
    reopenLater(milliseconds(milliseconds_));
}

void Server::reopenLater(milliseconds wait) {
    reopenTimer.expires_after(wait);
    reopenTimer.async_wait([this](const asio::error_code& error) {
        if (error) return;
        try {
            open();
            accept();
            controller.log("connections are taken again");
        } catch (const std::system_error& failure) {
            controller.log("cannot listen again yet: " + std::string(failure.what()));
            asio::error_code ignored;
            acceptor.close(ignored);
            reopenLater(milliseconds(100));
        }
    });
}

void Server::kill() {
    controller.log("power cut");
    stop(true);
}

}  // namespace vornex::sim
