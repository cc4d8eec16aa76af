#include "host/link/Completions.h"

#include <algorithm>

namespace vornex {

namespace {
const Milliseconds SilenceStep{1000};
}  // namespace

int Completions::open() {
    const std::lock_guard<std::mutex> lock(mutex);
    entries[++lastId] = Entry();
    return lastId;
}

void Completions::queued(int id) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = entries.find(id);
    if (found != entries.end()) found->second.order = ++lastOrder;
}

void Completions::forget(int id) {
    const std::lock_guard<std::mutex> lock(mutex);
    entries.erase(id);
}

void Completions::signOfLife() {
    const std::lock_guard<std::mutex> lock(mutex);
    ++steps;
}

// Silence is counted in waits of this thread, not read off the clock: a process that is stopped and goes on has missed
// nothing.
Completion Completions::wait(int id) {
    std::unique_lock<std::mutex> lock(mutex);
    Entry& entry = entries[id];
    const auto ended = [&] { return entry.completion.state != Completion::State::Pending || interruptedFlag; };
    Milliseconds silence{0};
    const Milliseconds step = std::min(SilenceStep, longestSilence);
    for (unsigned heard = steps; silence < longestSilence; heard = steps) {
        if (changed.wait_for(lock, step, ended)) break;
        silence = heard == steps ? silence + step : Milliseconds(0);
    }
    Completion completion = entry.completion;
    if (completion.state == Completion::State::Pending)
        completion.state = interruptedFlag ? Completion::State::Interrupted : Completion::State::Stalled;
    entries.erase(id);
    return completion;
}

void Completions::finish(int id, const Completion& completion) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = entries.find(id);
    if (found == entries.end()) return;
    found->second.completion = completion;
    changed.notify_all();
}

int Completions::mark() {
    const std::lock_guard<std::mutex> lock(mutex);
    return lastOrder;
}

void Completions::loseUpTo(int upTo) {
    const std::lock_guard<std::mutex> lock(mutex);
    for (auto& [id, entry] : entries) {
        const bool isQueued = entry.order != 0 && entry.order <= upTo;
        if (isQueued && entry.completion.state == Completion::State::Pending) {
            entry.completion.state = Completion::State::Lost;
            changed.notify_all();
        }
    }
}

bool Completions::anyQueued() {
    const std::lock_guard<std::mutex> lock(mutex);
    for (const auto& [id, entry] : entries) {
        if (entry.order != 0 && entry.completion.state == Completion::State::Pending) return true;
    }
    return false;
}

void Completions::interrupt() {
    const std::lock_guard<std::mutex> lock(mutex);
    interruptedFlag = true;
    changed.notify_all();
}

}  // namespace vornex
