#include "label/Signal_Watch.h"

#include <csignal>
#include <utility>

#include "text/Output_File.h"

namespace vornex {

Signal_Watch::Signal_Watch(std::function<void()> interrupt) : signals(context, SIGINT, SIGTERM), patience(context) {
    signals.async_wait([this, interrupt = std::move(interrupt)](asio::error_code error, int) {
        if (error) return;
        state = State::Interrupted;
        Output_File::stopWaiting();
        interrupt();
        // not at once: one Ctrl-C may come as two signals, to the process and to its group
        patience.expires_after(std::chrono::milliseconds(500));
        patience.async_wait([this](asio::error_code) {
            state = State::Over;
            signals.clear();
        });
    });
    thread = std::thread([this] { context.run(); });
}

Signal_Watch::~Signal_Watch() {
    context.stop();
    thread.join();
    if (state == State::Interrupted) keepEnding();
}

// The second signal of one Ctrl-C may still be on its way, and must not kill what has said its last word. It waits
// while nobody takes it.
void Signal_Watch::keepEnding() {
    sigset_t both, before;
    sigemptyset(&both);
    sigaddset(&both, SIGINT);
    sigaddset(&both, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &both, &before);
    asio::error_code ignored;
    signals.clear(ignored);
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGTERM, SIG_IGN);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace vornex
