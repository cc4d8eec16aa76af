#include "panel/record/Sample_Reader.h"

#include <algorithm>
#include <numeric>

#include "wire/Frame_Reader.h"

namespace vornex::panel {

Sample_Reader::Sample_Reader(const std::vector<Memory_Range>& places) : byAddress(places.size()) {
    followed.reserve(places.size());
    for (const Memory_Range& place : places) {
        followed.push_back({place, std::string(place.bytes, '\0'), std::vector<bool>(place.bytes), {}});
        longest = std::max(longest, place.bytes);
    }
    std::iota(byAddress.begin(), byAddress.end(), std::size_t(0));
    std::stable_sort(byAddress.begin(), byAddress.end(), [this](std::size_t a, std::size_t b) {
        return followed[a].place.address < followed[b].place.address;
    });
}

void Sample_Reader::fill(std::uint32_t address, const std::string& data) {
    const std::uint64_t end = std::uint64_t(address) + data.size();
    const std::uint32_t from = address < longest ? 0 : address - longest;
    auto place = std::lower_bound(byAddress.begin(), byAddress.end(), from,
                                  [this](std::size_t a, std::uint32_t at) { return followed[a].place.address < at; });
    for (; place != byAddress.end() && followed[*place].place.address < end; ++place) {
        Followed& one = followed[*place];
        const std::uint64_t begin = std::max(one.place.address, address);
        const std::uint64_t until = std::min(std::uint64_t(one.place.address) + one.place.bytes, end);
        for (std::uint64_t at = begin; at < until; ++at) {
            one.bytes[at - one.place.address] = data[at - address];
            one.known[at - one.place.address] = true;
            one.touched = true;
        }
    }
}

void Sample_Reader::exchangeDone(const Exchange& exchange) {
    if (!exchange.good() || exchange.request.isWrite) return;
    const std::optional<Reply> reply = readReply(exchange.transfer.reply, exchange.request.items.size());
    if (!reply || !answers(*reply, exchange.request)) return;
    for (std::size_t i = 0; i < reply->items.size(); ++i)
        fill(exchange.request.items[i].address, reply->items[i].data);
    for (Followed& one : followed) {
        const bool whole = one.touched && std::all_of(one.known.begin(), one.known.end(), [](bool is) { return is; });
        if (whole) one.samples.push_back({exchange.repliedAt, one.bytes});
        one.touched = false;
    }
}

void Sample_Reader::linkChanged(const Link_Change& change) {
    if (change.state == Link_Change::State::Up) return;
    for (Followed& one : followed) {
        one.known.assign(one.known.size(), false);
        if (!one.samples.empty() && !one.samples.back().bytes.empty()) one.samples.push_back({change.at, ""});
    }
}

const Recorded_Sample* sampleAt(const Recorded_Samples& samples, Wall_Time time) {
    const auto later = std::upper_bound(samples.begin(), samples.end(), time,
                                        [](Wall_Time at, const Recorded_Sample& sample) { return at < sample.at; });
    if (later == samples.begin() || std::prev(later)->bytes.empty()) return nullptr;
    return &*std::prev(later);
}

}  // namespace vornex::panel
