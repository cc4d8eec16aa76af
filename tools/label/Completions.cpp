#include "Completions.h"

namespace vornex {

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

Completion Completions::wait(int id) {
    std::unique_lock<std::mutex> lock(mutex);
    Entry& entry = entries[id];
    changed.wait(lock, [&] { return entry.completion.state != Completion::State::Pending || interruptedFlag; });
    Completion completion = entry.completion;
    if (completion.state == Completion::State::Pending) completion.state = Completion::State::Interrupted;
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

bool Completions::anyPending() {
    const std::lock_guard<std::mutex> lock(mutex);
    for (const auto& [id, entry] : entries) {
        if (entry.completion.state == Completion::State::Pending) return true;
    }
    return false;
}

void Completions::interrupt() {
    const std::lock_guard<std::mutex> lock(mutex);
    interruptedFlag = true;
    changed.notify_all();
}

}  // namespace vornex
