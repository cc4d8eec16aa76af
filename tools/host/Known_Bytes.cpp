#include "host/Known_Bytes.h"

#include <iterator>

namespace vornex {

// Afterwards no run reaches across `address`.
void Known_Bytes::splitAt(std::uint64_t address) {
    auto after = runs.upper_bound(address);
    if (after == runs.begin()) return;
    auto& [start, run] = *std::prev(after);
    if (start == address || run.end <= address) return;
    runs[address] = run;
    run.end = address;
}

void Known_Bytes::fill(std::uint32_t address, std::uint32_t length) {
    if (length == 0) return;
    const std::lock_guard<std::mutex> lock(mutex);
    const std::uint64_t start = address, end = start + length;
    const auto same = runs.find(start);
    if (same != runs.end() && same->second.end == end) {  // the usual case: the same request again
        same->second.generation = generation;
        return;
    }
    splitAt(start);
    splitAt(end);
    runs.erase(runs.lower_bound(start), runs.lower_bound(end));
    runs[start] = {end, generation};
}

void Known_Bytes::age() {
    const std::lock_guard<std::mutex> lock(mutex);
    ++generation;
}

void Known_Bytes::forget() {
    const std::lock_guard<std::mutex> lock(mutex);
    runs.clear();
}

Freshness Known_Bytes::of(std::uint32_t address, std::uint32_t length) const {
    const std::lock_guard<std::mutex> lock(mutex);
    std::uint64_t at = address;
    const std::uint64_t end = at + length;
    bool stale = false;
    auto run = runs.upper_bound(at);
    if (run != runs.begin()) --run;
    for (; at < end; ++run) {
        if (run == runs.end() || run->first > at || run->second.end <= at) return Freshness::Unknown;
        stale = stale || run->second.generation != generation;
        at = run->second.end;
    }
    return stale ? Freshness::Stale : Freshness::Fresh;
}

}  // namespace vornex
