// Variables under watch: their last values, and what these are worth.
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
    Value value;
    Freshness freshness = Freshness::Unknown;
    std::uint64_t changes = 0;
    Wall_Time seen{};  // when it was fresh last
};

// Takes over what the driver holds now. A variable that no reply has filled stays as it is.
void refresh(const Session& session, std::vector<Watched>& all);

std::string freshnessName(Freshness freshness);

}  // namespace vornex

#endif
