// Ctrl-C and the request to end, for as long as a verb talks to the controller.
#ifndef VORNEX_LABEL_SIGNAL_WATCH_H
#define VORNEX_LABEL_SIGNAL_WATCH_H

#include <atomic>
#include <functional>
#include <thread>

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>

namespace vornex {

// SIGINT and SIGTERM call `interrupt` on a thread of their own, once, in place of ending the process. Half a second
// later they are as they were: a tool that is held up, by a disk that does not answer for one, ends with the next one.
// A tool that ends before that ends with its own exit code, whatever comes meanwhile.
class Signal_Watch {
public:
    explicit Signal_Watch(std::function<void()> interrupt);
    ~Signal_Watch();

private:
    void keepEnding();

    enum class State { Waiting, Interrupted, Over };
    std::atomic<State> state{State::Waiting};
    asio::io_context context;
    asio::signal_set signals;
    asio::steady_timer patience;
    std::thread thread;
};

}  // namespace vornex

#endif
