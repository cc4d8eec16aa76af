// Variables under watch: their last values, what these are worth, and who shows or keeps them.
#ifndef VORNEX_WATCH_WATCHED_H
#define VORNEX_WATCH_WATCHED_H

#include <cstdint>
#include <string>
#include <vector>

#include "host/Variables.h"
#include "text/Time_Text.h"
#include "values/Value.h"

namespace vornex {

// The value is the last one that a reply brought, null before the first.
struct Watched {
    Variable variable;
    Value value;  // as it is shown
    Value raw;    // as the bytes have it
    Freshness freshness = Freshness::Unknown;
    std::uint64_t changes = 0;
    Wall_Time seen{};  // when it was fresh last
};

// Takes over what the driver holds now. A variable that no reply has filled stays as it is.
void refresh(const Session& session, std::vector<Watched>& all);

std::string freshnessName(Freshness freshness);

// Shows or keeps the values of a watch. Called on the watch's own thread after each round, and when the link changes.
// May throw Output_Error; the watch then goes on without this output.
class Watch_Output {
public:
    virtual ~Watch_Output() = default;
    // `round` counts from 1.
    virtual void update(const std::vector<Watched>& all, int round) = 0;
    virtual void link(const Link_Change&) {}
    // Several times a second, whatever happens.
    virtual void tick(const std::vector<Watched>&) {}
    virtual void finish(const std::vector<Watched>&) {}
};

}  // namespace vornex

#endif
