// The thread that runs the driver's exchange: next frame, send, collect the reply, hand it back.
//
// The wire has no transaction number: a late reply of the right length would pass for the next one. So a connection
// that has shown any fault is closed, and a new one is made before anything is sent again. While nothing is to be sent
// the connection is watched, so that its loss is told when it happens.
//
// Every step of the thread is bounded: an exchange and a connection by the time-out, a new connection's settle time by
// itself, the wait before an attempt to connect by 2 s. Between two rounds, and when the driver has nothing to send, it
// rests until the round's time, a wake-up or news on the connection. Whoever waits for a request (Completions) hears of
// each step.
#ifndef VORNEX_HOST_LINK_EXCHANGE_THREAD_H
#define VORNEX_HOST_LINK_EXCHANGE_THREAD_H

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "host/Driver_Library.h"
#include "host/Host_Settings.h"
#include "host/Known_Bytes.h"
#include "host/link/Completions.h"
#include "host/link/Exchange.h"

namespace vornex {

// How the cyclic list is polled.
struct Poll_Plan {
    Milliseconds interval{200};  // least time from one round's start to the next one's
    int rounds = 0;              // then nothing more is polled; 0: no end
    bool oneByOne = false;       // each round waits for roundTaken(), so that none is missed
};

class Exchange_Thread {
public:
    // The first two have to outlive it.
    Exchange_Thread(const Driver_Library& library, const Host_Settings& hostSettings, const Host_Port& controller);
    ~Exchange_Thread();

    // Before start(). Observers live as long as the thread.
    void addObserver(Exchange_Observer& observer) { observers.push_back(&observer); }
    // First connection, on the caller's thread. Empty, or the reason in words. Bytes that nobody asked for are what a
    // gateway kept for the client before, and gave out with this: a few more connections are tried.
    std::string connect();
    void start();
    void stop();
    // Any thread: ends every wait and then the thread; observers hear of it last, on the exchange thread.
    void interrupt();

    // Any thread: something was queued.
    void wake() { waiting.wake(); }
    // Any thread, under sequence() with the rebuild of the cyclic list: its entries, and how they are polled. Rounds
    // count from 0 again; a request of the list before that is still under way is in none of them. wake() follows.
    void pace(int cyclicEntries, const Poll_Plan& plan);
    // Any thread: the next round may begin, when rounds are taken one by one.
    void roundTaken();
    // The driver's notify callback, on this thread.
    void notified(int varId, int state) { notices.push_back({varId, state}); }
    void tell(const std::function<void(Exchange_Observer&)>& what);

    // Held while the driver gives a frame or takes a reply. Who queues a request and tells of it holds it too:
    // observers then hear of both in the order in which the driver has them.
    std::mutex& sequence() { return sequenceMutex; }
    bool interrupted() const { return interruptSeen; }

    Completions completions;
    Known_Bytes known;

private:
    struct Notice {
        int varId;
        int state;
    };

    void run();
    bool paused();
    bool nextFrame(Exchange& exchange);
    void rest(Steady_Time until);
    Link_Fault readyLink();
    bool backOff();
    void serve(Exchange& exchange);
    void handBack(Exchange& exchange);
    void conclude(const Exchange& exchange);
    void countRound(const Exchange& exchange);
    int currentPlan();
    void beginRound();
    void dropLink(const Link_Fault& fault);
    void tellLink(Link_Change::State state, const Link_Fault& fault);

    const Driver_Library& driver;
    const Host_Settings& settings;
    const Host_Port target;

    Wait_Point waiting;
    std::atomic<bool> interruptSeen{false};
    std::thread thread;
    std::mutex sequenceMutex;

    // The exchange thread's own.
    Link link;
    std::vector<Exchange_Observer*> observers;
    std::vector<Notice> notices;
    bool everConnected = false;
    std::string lastFrame;  // of the attempt before, to count attempts
    int attempts = 0;
    bool cyclicBefore = false;  // the request finished last was one of the cyclic list
    Milliseconds backOffTime{0};

    std::mutex paceMutex;  // guards the following
    int plans = 0;         // that pace() has set
    int roundEntries = 0;
    int roundServed = 0;
    int rounds = 0;
    Poll_Plan roundPlan;
    Steady_Time roundStart;
    Steady_Time nextRound;
};

}  // namespace vornex

#endif
