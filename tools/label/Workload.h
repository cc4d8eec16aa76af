// Polling for its own sake, to measure the link.
#ifndef VORNEX_LABEL_WORKLOAD_H
#define VORNEX_LABEL_WORKLOAD_H

#include <string>
#include <vector>

#include "host/Variables.h"
#include "label/Online.h"

namespace vornex {

struct Polled_Labels {
    std::vector<std::string> labels;
    int rounds = 0;
    int interval = 0;
    double seconds = 0;
    Template_Index index;
    bool noWait = false;
};

// What a round asks for, to judge the packing by.
struct Workload {
    std::size_t variables = 0;
    std::uint64_t bytesWanted = 0;  // each byte once
    int requests = 0;
};

// Connects and has the labels polled. Throws as findVariables() and Session::connect() do, and Tool_Error Label when
// there is nothing to poll.
Workload startPolling(Tool& tool, Session& session, const Polled_Labels& polled);

// 0 when there is no unit.
inline double per(double amount, double unit) { return unit > 0 ? amount / unit : 0; }

}  // namespace vornex

#endif
