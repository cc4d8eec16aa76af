// What every verb that talks to the controller has around its session: traces and statistics.
#ifndef VORNEX_LABEL_ONLINE_H
#define VORNEX_LABEL_ONLINE_H

#include <memory>
#include <vector>

#include "Session.h"
#include "Statistics.h"
#include "Trace.h"

namespace vornex {

class Online {
public:
    // Throws like Session, and Tool_Error Usage for a trace file that cannot be written.
    explicit Online(Tool& tool);
    ~Online();

    void connect() { session.connect(); }

    Statistics statistics;
    Session session;

private:
    std::vector<std::unique_ptr<Trace>> traces;
};

}  // namespace vornex

#endif
