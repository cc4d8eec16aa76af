#include "label/Progress.h"

#include <cmath>
#include <utility>

namespace vornex {

namespace {

const std::uint64_t StepsOfALook = 256;  // at the clock, which costs more than a step

std::string withCommas(std::uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, ",");
    return text;
}

}  // namespace

Progress::Progress(Output& output, std::string doneWord, std::uint64_t allSteps)
    : out(output), word(std::move(doneWord)), all(allSteps) {}

void Progress::at(std::uint64_t stepsDone) {
    const bool isLook = all == 0 || all > 10 * StepsOfALook ? stepsDone / StepsOfALook != done / StepsOfALook : true;
    done = stepsDone;
    if (!isLook || !out.messagesOnTerminal) return;
    const Clock::time_point now = Clock::now();
    if (now < next) return;
    next = now + std::chrono::milliseconds(200);
    show(std::chrono::duration<double>(now - start).count());
}

void Progress::show(double seconds) {
    const double rate = static_cast<double>(done) / seconds;
    std::string line = word + " " + withCommas(done);
    if (all > 0) line += " of " + withCommas(all);
    line += ", " + withCommas(static_cast<std::uint64_t>(rate)) + "/s";
    if (all > done && rate > 0) {
        line += ", " + withCommas(static_cast<std::uint64_t>(std::ceil(static_cast<double>(all - done) / rate))) +
                " s left";
    }
    out.progress(line);
}

}  // namespace vornex
