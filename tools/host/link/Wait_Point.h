// The one place where the exchange waits.
#ifndef VORNEX_HOST_LINK_WAIT_POINT_H
#define VORNEX_HOST_LINK_WAIT_POINT_H

#include <atomic>
#include <chrono>

namespace vornex {

using Milliseconds = std::chrono::milliseconds;
using Steady_Time = std::chrono::steady_clock::time_point;

// A file descriptor and its end.
class Descriptor {
public:
    explicit Descriptor(int openDescriptor = -1) : number(openDescriptor) {}
    ~Descriptor() { reset(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return number; }
    bool isOpen() const { return number >= 0; }
    // Closes what it has and takes this one.
    void reset(int openDescriptor = -1);

private:
    int number;
};

enum class Wait_End {
    Ready,     // the descriptor has what was waited for, or a fault to tell, before the deadline
    TimedOut,  // the deadline has come; also when the descriptor became ready with it
    Woken,     // by wake()
    Stopped,   // by stop()
};

class Wait_Point {
public:
    // Throws Host_Error NoConnection when the system has no descriptor left.
    Wait_Point();

    // Any thread: ends the wait, or the next one when nobody waits.
    void wake();
    // Any thread: ends every wait from now on.
    void stop();
    bool stopped() const { return stopFlag; }

    // One thread at a time. `events` are poll's; without a descriptor only the other three end the wait.
    Wait_End until(Steady_Time deadline, int descriptor = -1, short events = 0);
    // The same, but a wake-up does not end it: for what has begun already.
    Wait_End through(Steady_Time deadline, int descriptor = -1, short events = 0);

private:
    std::atomic<bool> stopFlag{false};
    Descriptor bell;
};

}  // namespace vornex

#endif
