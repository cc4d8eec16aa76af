// One client's connection: frames in, answers out in the order of the requests.
#ifndef VORNEX_SIM_SESSION_H
#define VORNEX_SIM_SESSION_H

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include <asio.hpp>

#include "Controller.h"

namespace vornex::sim {

class Server;

// Limits that no client can pass.
struct Caps {
    std::size_t clients = 16;
    std::size_t frame = 4 + 65535 + 2;  // bytes of a request, and of an answer
    std::uint64_t frameTime = 5000;     // ms from a frame's first byte to its last
};

class Session : public std::enable_shared_from_this<Session> {
public:
    Session(asio::ip::tcp::socket clientSocket, Server& owner, std::uint64_t number);

    void start();
    // Drops everything at once. A reset tells the client that the connection broke, a plain end that it was closed.
    void end(bool reset);

private:
    using Milliseconds = std::chrono::milliseconds;
    struct Step {
        Milliseconds wait{0};
        Bytes bytes;
        Delivery::End end = Delivery::End::None;
    };

    void receive();
    void onReceived(const asio::error_code& error, std::size_t bytes);
    bool serveFrames();
    bool rejectFrame(const Parsed_Frame& frame);
    void serve(const Request& request);
    void deliver(Delivery delivery);
    void addPieces(const Delivery& delivery, Milliseconds wait);
    void watchFrameTime(bool completed);
    void pump();
    void send();
    void onSent(const asio::error_code& error);
    void closeSending();
    void note(const std::string& text) const;

    asio::ip::tcp::socket socket;
    Server& server;
    std::uint64_t id;
    asio::steady_timer sendTimer;
    asio::steady_timer frameTimer;
    std::array<std::uint8_t, 16384> chunk{};
    Bytes received;
    std::deque<Step> steps;
    Bytes previous;  // last right answer
    Bytes held;      // an answer that waits for the next one
    Delivery heldWay;
    bool receiving = false;
    bool sending = false;
    bool inputEnded = false;  // the client closed its direction, or ours is closed: nothing more is served
    bool frameTimed = false;
    bool over = false;
};

}  // namespace vornex::sim

#endif
