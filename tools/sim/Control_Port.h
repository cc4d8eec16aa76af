// Where control lines come from: standard input or clients of a unix socket.
#ifndef VORNEX_SIM_CONTROL_PORT_H
#define VORNEX_SIM_CONTROL_PORT_H

#include <functional>
#include <memory>
#include <string>

#include <asio.hpp>

namespace vornex::sim {

// Takes a line, gives the answer.
using Line_Handler = std::function<std::string(const std::string&)>;

// Lines from standard input, answers to standard output. Its end only ends the control.
void controlByStdin(asio::io_context& context, Line_Handler handler);

// Listens on a unix socket only its owner can open. The path must be free; it is removed again by the destructor.
class Control_Socket {
public:
    // Throws std::system_error.
    Control_Socket(asio::io_context& context, const std::string& socketPath, Line_Handler lineHandler);
    ~Control_Socket();
    Control_Socket(const Control_Socket&) = delete;
    Control_Socket& operator=(const Control_Socket&) = delete;

private:
    void accept();

    std::string path;
    asio::local::stream_protocol::acceptor acceptor;
    Line_Handler handler;
};

}  // namespace vornex::sim

#endif
