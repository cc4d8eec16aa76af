#include "label/Signal_Watch.h"

#include <csignal>
#include <utility>

#include "text/Output_File.h"

namespace vornex {

Signal_Watch::Signal_Watch(std::function<void()> interrupt) : signals(context, SIGINT, SIGTERM), patience(context) {
    signals.async_wait([this, interrupt = std::move(interrupt)](asio::error_code error, int) {
        if (error) return;
        Output_File::stopWaiting();
        interrupt();
        // not at once: one Ctrl-C may come as two signals, to the process and to its group
        patience.expires_after(std::chrono::milliseconds(500));
        patience.async_wait([this](asio::error_code) { signals.clear(); });
    });
    thread = std::thread([this] { context.run(); });
}

Signal_Watch::~Signal_Watch() {
    context.stop();
    thread.join();
}

}  // namespace vornex
