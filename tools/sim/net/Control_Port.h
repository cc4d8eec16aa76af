// Where control lines come from: standard input or clients of a unix socket.
#ifndef VORNEX_SIM_NET_CONTROL_PORT_H
#define VORNEX_SIM_NET_CONTROL_PORT_H

#include <functional>
#include <memory>
#include <string>

#include <asio.hpp>

#include "sim/Controller.h"
#include "sim/net/Accept_Loop.h"

namespace vornex::sim {

// Takes a line, gives the answer.
using Line_Handler = std::function<std::string(const std::string&)>;

// Nobody is waited for in what follows: the next line of a peer is read when it has taken the answer to the one before,
// so that one answer at most is kept for each.

// Lines from standard input, answers to standard output. Its end only ends the control.
void controlByStdin(asio::io_context& context, Line_Handler handler, Log log);

// Listens on a unix socket only its owner can open. A socket file that nobody listens behind, left by a program that
// was killed, is replaced; anything else at the path is left alone. The destructor removes the file if it is still
// ours.
class Control_Socket {
public:
    // Throws std::system_error.
    Control_Socket(asio::io_context& context, const std::string& socketPath, Line_Handler lineHandler, Log messageLog);
    ~Control_Socket();
    Control_Socket(const Control_Socket&) = delete;
    Control_Socket& operator=(const Control_Socket&) = delete;

private:
    using Protocol = asio::local::stream_protocol;
    void onAccepted(Protocol::socket socket);

    const std::string path;
    const Line_Handler handler;
    const Log log;
    const std::shared_ptr<std::size_t> peers = std::make_shared<std::size_t>(0);  // at present
    std::pair<std::uint64_t, std::uint64_t> file;                                 // device and number of our file
    Accept_Loop<Protocol> listener;
};

}  // namespace vornex::sim

#endif
