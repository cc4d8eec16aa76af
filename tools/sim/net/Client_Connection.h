// One client's connection: frames in, answers out in the order of the requests.
#ifndef VORNEX_SIM_NET_CLIENT_CONNECTION_H
#define VORNEX_SIM_NET_CLIENT_CONNECTION_H

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include <asio.hpp>

#include "sim/Controller.h"
#include "wire/Frame_Reader.h"

namespace vornex::sim {

class Server;

// Limits that no client can pass.
struct Caps {
    std::size_t clients = 16;
    std::size_t frame = 4 + 65535 + 2;  // bytes of a request, and of an answer
    std::uint64_t frameTime = 5000;     // ms from a frame's first byte to its last
};

class Client_Connection : public std::enable_shared_from_this<Client_Connection> {
public:
    Client_Connection(asio::ip::tcp::socket clientSocket, Server& owner, std::uint64_t number);

    void start();
    // Drops everything at once. A reset tells the client that the connection broke, a plain end that it was closed.
    void end(bool reset);

private:
    using Milliseconds = std::chrono::milliseconds;
    // Bytes on their way to the client, in one or more pieces.
    struct Step {
        Milliseconds wait{0};  // before the next piece
        std::string bytes;
        std::size_t pieceBytes = 0;  // 0: all of them
        Milliseconds pieceGap{0};
        Delivery::End end = Delivery::End::None;
        std::size_t sent = 0;
    };

    void receive();
    void onReceived(const asio::error_code& error, std::size_t bytes);
    bool isFull() const;
    void serveNext();
    void take(const Parsed_Frame& frame);
    void rejectFrame(const Parsed_Frame& frame);
    void serve(const Request& request);
    void deliver(Delivery delivery);
    void add(Step step);
    void awaitMore();
    void startFrameTime();
    void pump();
    void send();
    void onSent(const asio::error_code& error, std::size_t bytes);
    void closeSending();
    void note(const std::string& text) const;

    asio::ip::tcp::socket socket;
    Server& server;
    std::uint64_t id;
    asio::steady_timer sendTimer;
    asio::steady_timer frameTimer;
    std::array<char, 16384> chunk{};
    std::string received;
    std::size_t served = 0;  // of `received`
    std::deque<Step> steps;
    std::size_t stepBytes = 0;  // in all of them
    std::string previous;       // last right answer
    std::string held;           // an answer that waits for the next one
    Delivery heldWay;
    bool receiving = false;
    bool sending = false;
    bool turnTaken = false;    // serveNext is called again when the others had theirs
    bool inputEnded = false;   // the client closed its direction
    bool outputEnded = false;  // ours is closed: nothing more is served
    bool frameTimed = false;
    bool over = false;
};

}  // namespace vornex::sim

#endif
