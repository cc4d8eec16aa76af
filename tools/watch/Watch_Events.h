// What a watch hears from the exchange thread, collected until the watch has time for it.
#ifndef VORNEX_WATCH_WATCH_EVENTS_H
#define VORNEX_WATCH_WATCH_EVENTS_H

#include <condition_variable>
#include <mutex>
#include <vector>

#include "host/link/Exchange.h"

namespace vornex {

// A read of the cyclic list that the driver gave up on.
struct Give_Up {
    std::vector<Memory_Range> items;
    int status = 0;
    std::string fault;
};

struct Watch_News {
    int rounds = 0;  // so far
    bool newRound = false;
    bool goodExchange = false;
    bool interrupted = false;
    std::vector<Link_Change> linkChanges;
    std::vector<Give_Up> giveUps;
};

class Watch_Events : public Exchange_Observer {
public:
    void exchangeDone(const Exchange& exchange) override;
    // The first connection is no news, that there is none is.
    void linkChanged(const Link_Change& change) override;
    void roundDone(int rounds) override;
    void interrupted() override;

    // Blocks until there is news that a watch acts on, or the time has come; hands it over.
    Watch_News wait(Steady_Time until = Steady_Time::max());

private:
    std::mutex mutex;
    bool hadLink = false;  // or was told that there is none
    std::condition_variable changed;
    Watch_News news;
    bool pending = false;
};

}  // namespace vornex

#endif
