#include "sim/net/Control_Port.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <climits>
#include <utility>

#include "sim/net/Dead_Socket.h"
#include "text/Output_File.h"

namespace vornex::sim {
namespace {

constexpr std::size_t LongestLine = 4096;
constexpr std::size_t MostPeers = 8;
constexpr std::chrono::seconds Patience(3);         // a peer has for taking an answer
constexpr std::chrono::milliseconds LookAgain(20);  // whether standard output is read

// Reads lines from a stream, one after the other, until the stream ends or an answer cannot be handed over.
template <class Stream>
class Line_Reader : public std::enable_shared_from_this<Line_Reader<Stream>> {
public:
    using Done = std::function<void()>;
    // Hands the text over and calls `done` after that; not when it cannot be.
    using Answer = std::function<void(Stream&, const std::string& text, Done done)>;
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
        if (error == asio::error::not_found) return reply("error: the line is too long", true);
        // the last line may lack its end
        const std::size_t used = error ? buffer.size() : bytes;
        const std::string line = buffer.substr(0, used);
        buffer.erase(0, used);
        reply(handler(line), bool(error));
    }

    void reply(const std::string& text, bool isLast) {
        if (!text.empty()) {
            return answer(stream, text + "\n", [self = this->shared_from_this(), isLast] {
                if (!isLast) self->read();
            });
        }
        if (!isLast) read();
    }

    Stream stream;
    const Line_Handler handler;
    const Answer answer;
    std::string buffer;
};

// An answer on its way to standard output. That one is shared with other programs, so it stays blocking and gets no
// more than it takes at once.
class Printing : public std::enable_shared_from_this<Printing> {
public:
    Printing(const asio::any_io_executor& executor, std::string answer, std::function<void()> whenDone, Log messageLog)
        : again(executor), text(std::move(answer)), done(std::move(whenDone)), log(std::move(messageLog)) {}

    void go() try {
        while (printed < text.size()) {
            if (out.wouldWait()) return lookAgain();
            out.write(text.substr(printed, PIPE_BUF));
            out.flush();
            printed += PIPE_BUF;
        }
        done();
    } catch (const Output_Error& error) {
        log(std::string("no more control: ") + error.what());
    }

private:
    void lookAgain() {
        again.expires_after(LookAgain);
        again.async_wait([self = shared_from_this()](const asio::error_code& error) {
            if (!error) self->go();
        });
    }

    asio::steady_timer again;
    const std::string text;
    const std::function<void()> done;
    const Log log;
    std::size_t printed = 0;
    Output_File out = Output_File::standardOutput();
};

// An answer on its way to a peer of the socket, who is dropped when it does not take it in time.
struct Sending {
    using Stream = asio::local::stream_protocol::socket;
    Sending(Stream& peer, std::string answer, std::function<void()> whenDone)
        : patience(peer.get_executor()), stream(peer), text(std::move(answer)), done(std::move(whenDone)) {}

    static void go(const std::shared_ptr<Sending>& self, const Log& log) {
        self->patience.expires_after(Patience);
        self->patience.async_wait([self, log](const asio::error_code& error) {
            if (error || self->sent) return;
            log("control peer does not take its answer, connection closed");
            asio::error_code ignored;
            self->stream.close(ignored);
        });
        asio::async_write(self->stream, asio::buffer(self->text), [self](const asio::error_code& error, std::size_t) {
            self->sent = true;
            self->patience.cancel();
            if (!error) self->done();
        });
    }

    asio::steady_timer patience;
    Stream& stream;  // lives as long as `done`
    const std::string text;
    const std::function<void()> done;
    bool sent = false;  // or failed
};

}  // namespace

void controlByStdin(asio::io_context& context, Line_Handler handler, Log log) {
    using Stream = asio::posix::stream_descriptor;
    const auto print = [log](Stream& stream, const std::string& text, std::function<void()> done) {
        std::make_shared<Printing>(stream.get_executor(), text, std::move(done), log)->go();
    };
    // asio makes the descriptor non-blocking; opened anew, a terminal stays blocking for our output and for the shell
    int descriptor = ::open("/dev/stdin", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) descriptor = ::dup(STDIN_FILENO);
    std::make_shared<Line_Reader<Stream>>(Stream(context, descriptor), std::move(handler), print)->read();
}

Control_Socket::Control_Socket(asio::io_context& context, const std::string& socketPath, Line_Handler lineHandler,
                               Log messageLog)
    : path(socketPath),
      handler(std::move(lineHandler)),
      log(std::move(messageLog)),
      listener(context, log, "control peers", [this](Protocol::socket socket) { onAccepted(std::move(socket)); }) {
    const Protocol::endpoint place(path);
    listener.acceptor.open();
    const Folder_Lock lock(path);  // until it listens: before that it looks like a dead one to others
    const mode_t before = ::umask(0077);
    asio::error_code error;
    std::string reason;
    listener.acceptor.bind(place, error);
    if (error == asio::error::address_in_use) {
        reason = lock.isHeld() ? removeDeadSocket(path) : "its folder cannot be locked";
        if (reason.empty()) listener.acceptor.bind(place, error);
    }
    ::umask(before);
    if (error) throw reason.empty() ? std::system_error(error) : std::system_error(error, reason);
    file = fileNumber(path);
    listener.acceptor.listen();
    listener.start();
}

Control_Socket::~Control_Socket() {
    if (fileNumber(path) == file) ::unlink(path.c_str());
}

void Control_Socket::onAccepted(Protocol::socket socket) {
    if (*peers >= MostPeers) {
        const std::string limit = std::to_string(MostPeers) + " control peers are the limit";
        log("control peer refused, " + limit);
        asio::error_code ignored;
        socket.non_blocking(true, ignored);
        socket.write_some(asio::buffer("error: " + limit + "\n"), ignored);
        return;
    }
    ++*peers;
    // gone with the last handler that knows the peer
    const std::shared_ptr<void> place(nullptr, [all = peers](void*) { --*all; });
    const auto send = [place, messages = log](Protocol::socket& to, const std::string& text,
                                              std::function<void()> done) {
        Sending::go(std::make_shared<Sending>(to, text, std::move(done)), messages);
    };
    std::make_shared<Line_Reader<Protocol::socket>>(std::move(socket), handler, send)->read();
}

}  // namespace vornex::sim
