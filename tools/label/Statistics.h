// Counts what happened on the link.
#ifndef VORNEX_LABEL_STATISTICS_H
#define VORNEX_LABEL_STATISTICS_H

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>

#include "Exchange.h"

namespace vornex {

struct Statistics_Figures {
    std::uint64_t attempts = 0;  // frames sent, or tried to
    std::uint64_t good = 0;
    std::uint64_t retries = 0;  // frames given again after a fault
    std::uint64_t bytesSent = 0;
    std::uint64_t bytesReceived = 0;
    std::uint64_t itemsRead = 0;     // ranges in good read frames
    std::uint64_t dataBytes = 0;     // in them, and in good writes
    std::uint64_t linkLosses = 0;
    int rounds = 0;
    std::map<std::string, std::uint64_t> faults;  // by what went wrong
    std::map<int, std::uint64_t> giveUps;         // by the first code of their band
    std::map<std::uint32_t, std::uint64_t> latencies;  // microseconds of good exchanges, to three digits
    double seconds = 0;

    std::uint64_t gaveUp() const;
    // The latency that the given part (0 to 1) of the good exchanges does not exceed.
    std::uint32_t latency(double part) const;
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
