// How far long work is, for whoever waits at a terminal.
#ifndef VORNEX_LABEL_PROGRESS_H
#define VORNEX_LABEL_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <string>

#include "label/Output.h"

namespace vornex {

// "checked 25,000 of 100,000, 18,000/s, 4 s left", from the second second on and once in a while. Nothing in a pipe.
class Progress {
public:
    // `all`: how much there is to do, 0 when it is not known.
    Progress(Output& output, std::string doneWord, std::uint64_t allSteps);

    void step() { at(done + 1); }
    void at(std::uint64_t stepsDone);

private:
    using Clock = std::chrono::steady_clock;
    void show(double seconds);

    Output& out;
    const std::string word;
    const std::uint64_t all;
    std::uint64_t done = 0;
    const Clock::time_point start = Clock::now();
    Clock::time_point next = start + std::chrono::seconds(1);
};

}  // namespace vornex

#endif
