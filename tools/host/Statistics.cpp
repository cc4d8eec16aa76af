#include "host/Statistics.h"

#include <algorithm>

#include "text/Number.h"

namespace vornex {

namespace {

const char* faultName(const Exchange& exchange) {
    switch (exchange.transfer.state) {
        case Transfer_State::Complete: return exchange.countsDiffer ? "item counts" : "check value";
        case Transfer_State::TimedOut: return exchange.transfer.reply.empty() ? "no reply" : "short reply";
        case Transfer_State::Closed: return "closed";
        case Transfer_State::Surplus: return "surplus bytes";
        default: return "no connection";
    }
}

}  // namespace

void Latency_Histogram::add(std::chrono::microseconds latency) {
    auto digits = static_cast<std::uint64_t>(std::max<std::chrono::microseconds::rep>(latency.count(), 0));
    std::size_t slot = 0;
    for (; digits >= 1000; digits /= 10)
        slot += SlotsPerDecade;
    slot += static_cast<std::size_t>(digits);
    ++counts[std::min(slot, counts.size() - 1)];
    ++total;
}

std::uint32_t Latency_Histogram::notExceededBy(double part) const {
    const double wanted = part * static_cast<double>(total);
    std::uint64_t sum = 0;
    std::uint32_t step = 1;
    std::uint32_t digits = 0;
    for (const std::uint64_t count : counts) {
        sum += count;
        if (sum > 0 && static_cast<double>(sum) >= wanted) return digits * step;
        if (++digits == 1000) {
            digits = 100;
            step *= 10;
        }
    }
    return 0;
}

std::uint64_t Statistics_Figures::gaveUp() const {
    std::uint64_t sum = 0;
    for (const auto& [band, count] : giveUps)
        sum += count;
    return sum;
}

void Statistics::exchangeDone(const Exchange& exchange) {
    const std::lock_guard<std::mutex> lock(mutex);
    ++counted.attempts;
    counted.retries += exchange.attempt > 1 ? 1 : 0;
    if (exchange.transfer.state != Transfer_State::NoLink) counted.bytesSent += exchange.frame.size();
    counted.bytesReceived += exchange.transfer.reply.size();
    if (exchange.gaveUp()) ++counted.giveUps[statusBand(exchange.status)];
    if (!exchange.good()) {
        ++counted.faults[faultName(exchange)];
        return;
    }
    ++counted.good;
    counted.latencies.add(exchange.latency);
    if (!exchange.request.isWrite) counted.itemsRead += exchange.request.items.size();
    for (const Memory_Range& item : exchange.request.items)
        counted.dataBytes += item.bytes;
}

void Statistics::linkChanged(const Link_Change& change) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (change.state == Link_Change::State::Down) ++counted.linkLosses;
    if (change.unasked) ++counted.faults["unasked bytes"];
}

void Statistics::roundDone(int rounds) {
    const std::lock_guard<std::mutex> lock(mutex);
    counted.rounds = rounds;
    counted.goodOfRounds = counted.good;
    counted.dataBytesOfRounds = counted.dataBytes;
}

Statistics_Figures Statistics::figures() const {
    const std::lock_guard<std::mutex> lock(mutex);
    Statistics_Figures copy = counted;
    copy.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    return copy;
}

std::string millisecondsText(std::uint32_t microseconds) { return fixedNumber(microseconds / 1000.0, 2) + " ms"; }

std::string Statistics::summary() const {
    const Statistics_Figures now = figures();
    return std::to_string(now.rounds) + " rounds, " + std::to_string(now.attempts) + " exchanges, " +
           std::to_string(now.retries) + " retries, " + std::to_string(now.gaveUp()) + " given up, " +
           std::to_string(now.linkLosses) + " connections lost, latency p50 " + millisecondsText(now.latency(0.5)) +
           ", p99 " + millisecondsText(now.latency(0.99)) + ", max " + millisecondsText(now.latency(1)) + ", in " +
           fixedNumber(now.seconds, 1) + " s";
}

}  // namespace vornex
