#include "Control_Port.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <iostream>
#include <utility>

namespace vornex::sim {
namespace {

constexpr std::size_t LongestLine = 4096;

// Reads lines from a stream and hands each answer to `answer`, until the stream ends.
template <class Stream>
class Line_Reader : public std::enable_shared_from_this<Line_Reader<Stream>> {
public:
    using Answer = std::function<void(Stream&, const std::string&)>;
    Line_Reader(Stream lineStream, Line_Handler lineHandler, Answer sendAnswer)
        : stream(std::move(lineStream)), handler(std::move(lineHandler)), answer(std::move(sendAnswer)) {}

    void read() {
        asio::async_read_until(stream, asio::dynamic_buffer(buffer, LongestLine), '\n',
                               [self = this->shared_from_this()](const asio::error_code& error, std::size_t bytes) {
                                   self->onRead(error, bytes);
                               });
    }

private:
    void onRead(const asio::error_code& error, std::size_t bytes) {
        if (error == asio::error::not_found) return answer(stream, "error: the line is too long\n");
        // the last line may lack its end
        const std::size_t used = error ? buffer.size() : bytes;
        const std::string reply = handler(buffer.substr(0, used));
        buffer.erase(0, used);
        if (!reply.empty()) answer(stream, reply + "\n");
        if (!error) read();
    }

    Stream stream;
    Line_Handler handler;
    Answer answer;
    std::string buffer;
};

}  // namespace

void controlByStdin(asio::io_context& context, Line_Handler handler) {
    using Stream = asio::posix::stream_descriptor;
    const auto print = [](Stream&, const std::string& text) { std::cout << text << std::flush; };
    // asio makes the descriptor non-blocking; opened anew, a terminal stays blocking for our output and for the shell
    int descriptor = ::open("/dev/stdin", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) descriptor = ::dup(STDIN_FILENO);
    std::make_shared<Line_Reader<Stream>>(Stream(context, descriptor), std::move(handler), print)->read();
}

Control_Socket::Control_Socket(asio::io_context& context, const std::string& socketPath, Line_Handler lineHandler)
    : path(socketPath), acceptor(context), handler(std::move(lineHandler)) {
    acceptor.open();
    const mode_t before = ::umask(0077);
    asio::error_code error;
    acceptor.bind(path, error);
    ::umask(before);
    if (error) throw std::system_error(error, path);
    acceptor.listen();
    accept();
}

Control_Socket::~Control_Socket() { ::unlink(path.c_str()); }

void Control_Socket::accept() {
    using Stream = asio::local::stream_protocol::socket;
    acceptor.async_accept([this](const asio::error_code& error, Stream stream) {
        if (error == asio::error::operation_aborted) return;
        const auto send = [](Stream& to, const std::string& text) {
            asio::error_code ignored;
            asio::write(to, asio::buffer(text), ignored);
        };
        if (!error) std::make_shared<Line_Reader<Stream>>(std::move(stream), handler, send)->read();
        accept();
    });
}

}  // namespace vornex::sim
