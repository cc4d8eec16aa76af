// Faults on demand: which requests they are for, and how often each was applied.
#ifndef VORNEX_SIM_FAULTS_FAULT_RULES_H
#define VORNEX_SIM_FAULTS_FAULT_RULES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "wire/Frame.h"

namespace vornex::sim {

enum class Fault_Kind {
    Drop,
    Delay,
    Late,
    Crc,
    Flip,
    Short,
    Long,
    Empty,
    Junk,
    Header,
    Count,
    Swap,
    Stale,
    Dup,
    Slice,
    Glue,
    Rst,
    Fin,
    Refuse,
    Stall,
    Kill
};
constexpr std::size_t FaultKinds = 21;

// Every kind, a line each: "delay(MS[,MOST]) the answer MS later, ... [200]", with the defaults in brackets.
std::string faultKinds();
// The same with the selectors, for people.
std::string faultHelp();

// "KIND[(ARGS)][@SELECTOR[,SELECTOR...]]"; without a selector it is for every request.
struct Fault_Rule {
    std::string text;
    Fault_Kind kind = Fault_Kind::Drop;
    std::array<std::uint64_t, 2> args{};  // with the defaults of the kind filled in

    std::optional<bool> forWrites;  // cmd=
    std::optional<std::pair<std::uint32_t, std::uint32_t>> addresses;
    std::optional<std::pair<std::uint64_t, std::uint64_t>> numbers;  // n=
    std::uint64_t every = 1;
    double probability = 1;

    std::uint64_t seen = 0;   // requests that the kind can be applied to and cmd and addr select
    std::uint64_t fired = 0;  // of those, the ones it was applied to
};

// Names with values, in the order of a summary.
using Counters = std::vector<std::pair<std::string, std::uint64_t>>;

// Throws std::invalid_argument with the reason.
Fault_Rule parseFault(const std::string& text);

class Fault_Rules {
public:
    explicit Fault_Rules(std::uint64_t seed) : noise(seed) {}

    void add(const std::string& text) { active.push_back(parseFault(text)); }
    // The first rule of this text is gone, the others go on counting. False when there is none.
    bool remove(const std::string& text);
    // The rules are gone, what they did stays counted.
    void clear() { active.clear(); }
    const std::vector<Fault_Rule>& rules() const { return active; }

    // The rules that hit this request, in the order they were given; counts them. `hasPrevious`: the connection has had
    // an answer before. Good until rules are added or cleared.
    std::vector<const Fault_Rule*> select(const Request& request, bool hasPrevious);

    // Appends "faults" and "fault.KIND".
    void appendTo(Counters& counters) const;
    // A number from 0 to below `limit`, which is at least 1. The same seed gives the same row of numbers.
    std::uint64_t random(std::uint64_t limit) { return noise() % limit; }

private:
    bool hits(Fault_Rule& rule, const Request& request, bool hasPrevious);

    std::vector<Fault_Rule> active;
    std::array<std::uint64_t, FaultKinds> applied{};
    std::mt19937_64 noise;
};

}  // namespace vornex::sim

#endif
