// Counts what happened on the link.
#ifndef VORNEX_HOST_STATISTICS_H
#define VORNEX_HOST_STATISTICS_H

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "host/link/Exchange.h"

namespace vornex {

// How often each duration came, to three digits: enough to read. All of the memory is taken at the start, so that a run
// of months needs no more of it than one of a minute.
class Latency_Histogram {
public:
    void add(std::chrono::microseconds latency);
    // Microseconds that the given part (0 to 1) of the durations does not exceed; 0 when there are none.
    std::uint32_t notExceededBy(double part) const;

private:
    static constexpr std::uint32_t Decades = 6;  // above the first thousand microseconds: up to a quarter of an hour
    static constexpr std::uint32_t SlotsPerDecade = 900;

    std::vector<std::uint64_t> counts = std::vector<std::uint64_t>(1000 + Decades * SlotsPerDecade);
    std::uint64_t total = 0;
};

struct Statistics_Figures {
    std::uint64_t attempts = 0;  // frames sent, or tried to
    std::uint64_t good = 0;
    std::uint64_t retries = 0;  // frames given again after a fault
    std::uint64_t bytesSent = 0;
    std::uint64_t bytesReceived = 0;
    std::uint64_t itemsRead = 0;  // ranges in good read frames
    std::uint64_t dataBytes = 0;  // in them, and in good writes
    std::uint64_t linkLosses = 0;
    int rounds = 0;
    std::uint64_t goodOfRounds = 0;               // good exchanges up to the end of the last round
    std::uint64_t dataBytesOfRounds = 0;          // the same
    std::map<std::string, std::uint64_t> faults;  // by what went wrong
    std::map<int, std::uint64_t> giveUps;         // by the first code of their band
    Latency_Histogram latencies;                  // of good exchanges
    double seconds = 0;

    std::uint64_t gaveUp() const;
    // Microseconds that the given part (0 to 1) of the good exchanges does not exceed.
    std::uint32_t latency(double part) const { return latencies.notExceededBy(part); }
};

// Counts on the exchange thread, may be asked from any.
class Statistics : public Exchange_Observer {
public:
    Statistics() : started(std::chrono::steady_clock::now()) {}

    void exchangeDone(const Exchange& exchange) override;
    void linkChanged(const Link_Change& change) override;
    void roundDone(int rounds) override;

    Statistics_Figures figures() const;
    // "12 rounds, 34 exchanges, 2 retries, 1 given up, latency p50 0.3 ms, p99 1.2 ms, max 2.0 ms, in 3.1 s"
    std::string summary() const;

private:
    mutable std::mutex mutex;
    Statistics_Figures counted;
    std::chrono::steady_clock::time_point started;
};

// "0.31 ms"
std::string millisecondsText(std::uint32_t microseconds);

}  // namespace vornex

#endif
