// Control lines: what a person or a test script tells the simulator while it runs.
#ifndef VORNEX_SIM_CONTROL_H
#define VORNEX_SIM_CONTROL_H

#include <functional>
#include <string>

#include "sim/Controller.h"

namespace vornex::sim {

extern const char* const ControlHelp;

struct Control_Hooks {
    std::function<double()> now;           // ms since the start
    std::function<std::string()> summary;  // one line
    std::function<void()> quit;
};

// Carries one line out. The answer is "ok", "ok VALUE" or "error: REASON" without line end; a list has its lines before
// the last one, "ok". Nothing for an empty line and for one that begins with '#'.
std::string runControlLine(const std::string& line, Controller& controller, const Control_Hooks& hooks);

}  // namespace vornex::sim

#endif
