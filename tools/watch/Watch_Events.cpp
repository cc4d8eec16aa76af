#include "watch/Watch_Events.h"

#include <utility>

namespace vornex {

namespace {
// A slow reader of the output must not make the tool grow; what is beyond is more of the same.
const std::size_t MostKept = 1000;
}  // namespace

void Watch_Events::exchangeDone(const Exchange& exchange) {
    const std::lock_guard<std::mutex> lock(mutex);
    news.goodExchange = news.goodExchange || exchange.good();
    if (!exchange.gaveUp() || news.giveUps.size() >= MostKept) return;
    news.giveUps.push_back({exchange.request.items, exchange.status, exchange.fault()});
    pending = true;
    changed.notify_all();
}

void Watch_Events::linkChanged(const Link_Change& change) {
    const std::lock_guard<std::mutex> lock(mutex);
    const bool isFirst = !std::exchange(hadLink, true);
    const bool isNews = change.state == Link_Change::State::Down || isFirst == (change.state != Link_Change::State::Up);
    if (!isNews || news.linkChanges.size() >= MostKept) return;
    news.linkChanges.push_back(change);
    pending = true;
    changed.notify_all();
}

void Watch_Events::roundDone(int rounds) {
    const std::lock_guard<std::mutex> lock(mutex);
    news.rounds = rounds;
    news.newRound = pending = true;
    changed.notify_all();
}

void Watch_Events::interrupted() {
    const std::lock_guard<std::mutex> lock(mutex);
    news.interrupted = pending = true;
    changed.notify_all();
}

Watch_News Watch_Events::wait(Steady_Time until) {
    std::unique_lock<std::mutex> lock(mutex);
    const auto ready = [this] { return pending; };
    if (until == Steady_Time::max())
        changed.wait(lock, ready);
    else
        changed.wait_until(lock, until, ready);
    pending = false;
    Watch_News taken;
    taken.rounds = news.rounds;
    std::swap(taken, news);
    news.rounds = taken.rounds;
    return taken;
}

}  // namespace vornex
