#include "host/link/Wait_Point.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

#include "host/Host_Error.h"

namespace vornex {

namespace {

timespec timeOf(Steady_Time::duration time) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    timespec result = {};
    result.tv_sec = static_cast<time_t>(seconds.count());
    result.tv_nsec = static_cast<long>(std::chrono::nanoseconds(time - seconds).count());
    return result;
}

}  // namespace

void Descriptor::reset(int openDescriptor) {
    if (number >= 0) ::close(number);
    number = openDescriptor;
}

Wait_Point::Wait_Point() : bell(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (bell.isOpen()) return;
    throw Host_Error(Host_Error::Kind::NoConnection,
                     std::string("no descriptor to wait with: ") + std::strerror(errno));
}

void Wait_Point::wake() {
    const std::uint64_t one = 1;
    // can fail only when 2^64 - 1 calls wait to be heard
    [[maybe_unused]] const ssize_t rung = ::write(bell.get(), &one, sizeof one);
}

void Wait_Point::stop() {
    stopFlag = true;
    wake();
}

Wait_End Wait_Point::through(Steady_Time deadline, int descriptor, short events) {
    Wait_End end = Wait_End::Woken;
    while (end == Wait_End::Woken)
        end = until(deadline, descriptor, events);
    return end;
}

Wait_End Wait_Point::until(Steady_Time deadline, int descriptor, short events) {
    pollfd watched[] = {{bell.get(), POLLIN, 0}, {descriptor, events, 0}};
    const bool endless = deadline == Steady_Time::max();
    for (;;) {
        if (stopFlag) return Wait_End::Stopped;
        const Steady_Time::duration left = endless ? left.zero() : deadline - std::chrono::steady_clock::now();
        if (!endless && left <= left.zero()) return Wait_End::TimedOut;
        const timespec time = timeOf(left);
        const int ready = ::ppoll(watched, 2, endless ? nullptr : &time, nullptr);
        if (ready <= 0) continue;  // the clock decides, also after a signal
        std::uint64_t calls;
        const bool woken = watched[0].revents != 0 && ::read(bell.get(), &calls, sizeof calls) > 0;
        if (stopFlag) return Wait_End::Stopped;
        if (!endless && std::chrono::steady_clock::now() >= deadline) return Wait_End::TimedOut;
        if (watched[1].revents != 0) return Wait_End::Ready;
        if (woken) return Wait_End::Woken;
    }
}

}  // namespace vornex
