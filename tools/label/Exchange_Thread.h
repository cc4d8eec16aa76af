// The thread that runs the driver's exchange: next frame, send, collect the reply, hand it back.
//
// The wire has no transaction number: a late reply of the right length would pass for the next one. So a connection
// that has shown any fault is closed, and a new one is made before anything is sent again.
#ifndef VORNEX_LABEL_EXCHANGE_THREAD_H
#define VORNEX_LABEL_EXCHANGE_THREAD_H

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <asio/executor_work_guard.hpp>
#include <asio/signal_set.hpp>

#include "Completions.h"
#include "Driver_Library.h"
#include "Exchange.h"
#include "Known_Bytes.h"

namespace vornex {

struct Exchange_Settings {
    std::string host;
    std::string port;
    Milliseconds timeout{1000};
};

class Exchange_Thread {
public:
    Exchange_Thread(const Driver_Library& library, const Exchange_Settings& exchangeSettings,
                    Completions& hostCompletions, Known_Bytes& knownBytes);
    ~Exchange_Thread();

    // Before start(). Observers live as long as the thread.
    void addObserver(Exchange_Observer& observer) { observers.push_back(&observer); }
    // First connection, on the caller's thread. Empty, or the reason in words.
    std::string connect();
    void start();
    void stop();

    // Any thread: something was queued.
    void wake();
    // Any thread, after the cyclic list was rebuilt: its entries, and the least time from one round's start to the
    // next one's. Rounds count from 0 again.
    void pace(int cyclicEntries, Milliseconds interval);
    // The driver's notify callback, on this thread.
    void notified(int varType, int varId, int state) { notices.push_back({varType, varId, state}); }

    // Held while the driver gives a frame or takes a reply. Who queues requests under it gives a trace a true order.
    std::mutex& sequence() { return sequenceMutex; }
    bool interrupted() const { return interruptSeen; }

private:
    struct Notice {
        int varType;
        int varId;
        int state;
    };

    void run();
    bool paused();
    bool nextFrame(Exchange& exchange);
    void waitForWork(Steady_Time until);
    bool linkReady(std::string& reason);
    bool backOff();
    void serve(Exchange& exchange);
    void handBack(Exchange& exchange);
    void settle(const Exchange& exchange);
    void countRound(const Exchange& exchange);
    void dropLink(const std::string& reason);
    void tell(const std::function<void(Exchange_Observer&)>& what);
    void watchSignals();

    const Driver_Library& driver;
    const Exchange_Settings settings;
    Completions& completions;
    Known_Bytes& known;

    asio::io_context context;
    asio::executor_work_guard<asio::io_context::executor_type> work;
    asio::signal_set signals;
    std::atomic<bool> stopping{false};
    std::atomic<bool> interruptSeen{false};
    std::thread thread;
    std::mutex sequenceMutex;

    // The exchange thread's own.
    Link link;
    std::vector<Exchange_Observer*> observers;
    std::vector<Notice> notices;
    std::string lastFrame;  // of the attempt before, to count attempts
    int attempts = 0;
    Milliseconds backOffTime{0};

    std::mutex paceMutex;  // guards the following
    int roundEntries = 0;
    int roundServed = 0;
    int rounds = 0;
    Milliseconds roundInterval{0};
    Steady_Time roundStart;
    Steady_Time nextRound;
};

}  // namespace vornex

#endif
