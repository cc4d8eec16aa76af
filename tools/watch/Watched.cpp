#include "watch/Watched.h"

#include "host/Variable_Value.h"

namespace vornex {

void refresh(const Session& session, std::vector<Watched>& all) {
    for (Watched& watched : all) {
        const Variable& variable = watched.variable;
        watched.freshness = session.freshness(variable.address, variable.bytes);
        if (watched.freshness == Freshness::Unknown) continue;
        if (watched.freshness == Freshness::Fresh) watched.seen = std::chrono::system_clock::now();
        Value raw = rawValue(variable, session.bytes(variable.range));
        const bool isKnown = watched.raw.kind != Value::Kind::Null;
        if (isKnown && raw == watched.raw) continue;
        if (isKnown) ++watched.changes;
        watched.value = shownValue(formOf(variable), raw);
        watched.raw = std::move(raw);
    }
}

std::string freshnessName(Freshness freshness) {
    if (freshness == Freshness::Fresh) return "fresh";
    return freshness == Freshness::Stale ? "stale" : "unknown";
}

}  // namespace vornex
