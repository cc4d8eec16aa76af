// Who waits for a write or a one-shot read, and how it ended.
//
// The driver tells a request's end by its notify callback alone. What it drops (a full queue, a station that is off)
// leaves no sign: such a request is found out when the driver's queues are empty and it is still waited for.
#ifndef VORNEX_HOST_LINK_COMPLETIONS_H
#define VORNEX_HOST_LINK_COMPLETIONS_H

#include <condition_variable>
#include <map>
#include <mutex>
#include <string>

#include "host/link/Wait_Point.h"

namespace vornex {

struct Completion {
    enum class State {
        Pending,
        Good,
        GaveUp,
        Lost,         // the driver dropped it without a word
        Stalled,      // the exchange gave no sign of life
        Interrupted,  // by interrupt()
    };

    State state = State::Pending;
    int code = 0;       // of GaveUp: the driver's band code
    std::string fault;  // of GaveUp: the last fault of the link in words
};

// Any thread.
class Completions {
public:
    // The exchange's steps are bounded: a wait that hears none of them for so long ends. Before the first wait().
    void allowSilence(Milliseconds longest) { longestSilence = longest; }
    // The exchange's thread, once a step.
    void signOfLife();

    // A new identifier (varId), unique in the process.
    int open();
    // The request is in the driver's queue: from now on it can be lost.
    void queued(int id);
    // Blocks until the request has ended, interrupt() is called or the exchange stands still; forgets the request.
    Completion wait(int id);
    // The request did not get into the queue.
    void forget(int id);

    void finish(int id, const Completion& completion);
    // A mark of what is queued now; and: everything up to the mark that is still pending is lost.
    int mark();
    void loseUpTo(int mark);
    bool anyQueued();
    void interrupt();

private:
    struct Entry {
        int order = 0;  // in which it was queued, 0: not yet
        Completion completion;
    };

    std::mutex mutex;
    std::condition_variable changed;
    std::map<int, Entry> entries;
    Milliseconds longestSilence{60000};
    unsigned steps = 0;  // of the exchange
    int lastId = 0;
    int lastOrder = 0;
    bool interruptedFlag = false;
};

}  // namespace vornex

#endif
