// Who waits for a write or a one-shot read, and how it ended.
//
// The driver tells a request's end by its notify callback alone. What it drops (a full queue, a station that is off)
// leaves no sign: such a request is found out when the driver has nothing more to send and it is still waited for.
#ifndef VORNEX_LABEL_COMPLETIONS_H
#define VORNEX_LABEL_COMPLETIONS_H

#include <condition_variable>
#include <map>
#include <mutex>
#include <string>

namespace vornex {

struct Completion {
    enum class State { Pending, Good, GaveUp, Lost, Interrupted };

    State state = State::Pending;
    int code = 0;       // of GaveUp: the driver's band code
    std::string fault;  // of GaveUp: the last fault of the link in words
};

// Any thread.
class Completions {
public:
    // A new identifier (varId), unique in the process.
    int open();
    // The request is in the driver's queue: from now on it can be lost.
    void queued(int id);
    // Blocks until the request has ended or interrupt() is called; forgets the request.
    Completion wait(int id);

    void finish(int id, const Completion& completion);
    // A mark of what is queued now; and: everything up to the mark that is still pending is lost.
    int mark();
    void loseUpTo(int mark);
    bool anyPending();
    void interrupt();

private:
    struct Entry {
        int order = 0;  // in which it was queued, 0: not yet
        Completion completion;
    };

    std::mutex mutex;
    std::condition_variable changed;
    std::map<int, Entry> entries;
    int lastId = 0;
    int lastOrder = 0;
    bool interruptedFlag = false;
};

}  // namespace vornex

#endif
