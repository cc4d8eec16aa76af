#include "Statistics.h"

#include <cstdio>

#include "Status_Text.h"

namespace vornex {

namespace {

// Three digits are enough to read, and bound the table however long the run is.
std::uint32_t threeDigits(std::int64_t microseconds) {
    std::int64_t step = 1;
    while (microseconds / step >= 1000) step *= 10;
    return static_cast<std::uint32_t>(microseconds / step * step);
}

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

std::uint64_t Statistics_Figures::gaveUp() const {
    std::uint64_t sum = 0;
    for (const auto& [band, count] : giveUps) sum += count;
    return sum;
}

std::uint32_t Statistics_Figures::latency(double part) const {
    const double wanted = part * static_cast<double>(good);
    double sum = 0;
    for (const auto& [microseconds, count] : latencies) {
        sum += static_cast<double>(count);
        if (sum >= wanted) return microseconds;
    }
    return 0;
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
    ++counted.latencies[threeDigits(exchange.latency.count())];
    if (exchange.request.command == Request_View::Command::Read) counted.itemsRead += exchange.request.items.size();
    for (const Frame_Item& item : exchange.request.items) counted.dataBytes += item.length;
}

void Statistics::linkChanged(const Link_Change& change) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (change.state == Link_Change::State::Down) ++counted.linkLosses;
}

void Statistics::roundDone(int rounds) {
    const std::lock_guard<std::mutex> lock(mutex);
    counted.rounds = rounds;
}

Statistics_Figures Statistics::figures() const {
    const std::lock_guard<std::mutex> lock(mutex);
    Statistics_Figures copy = counted;
    copy.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    return copy;
}

std::string millisecondsText(std::uint32_t microseconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f ms", microseconds / 1000.0);
    return text;
}

std::string Statistics::summary() const {
    const Statistics_Figures now = figures();
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%.1f s", now.seconds);
    return std::to_string(now.rounds) + " rounds, " + std::to_string(now.attempts) + " exchanges, " +
           std::to_string(now.retries) + " retries, " + std::to_string(now.gaveUp()) + " given up, " +
           std::to_string(now.linkLosses) + " connections lost, latency p50 " + millisecondsText(now.latency(0.5)) +
           ", p99 " + millisecondsText(now.latency(0.99)) + ", max " + millisecondsText(now.latency(1)) + ", in " +
           seconds;
}

}  // namespace vornex
