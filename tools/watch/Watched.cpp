#include "watch/Watched.h"

#include "values/Value_Codec.h"

namespace vornex {

void refresh(const Session& session, std::vector<Watched>& all) {
    for (Watched& watched : all) {
        const Variable& variable = watched.variable;
        watched.freshness = session.freshness(variable.address, variable.bytes);
        if (watched.freshness == Freshness::Unknown) continue;
        if (watched.freshness == Freshness::Fresh) watched.seen = std::chrono::system_clock::now();
        Value value = valueOf(variable.view, session.bytes(variable.range));
        if (watched.value.kind != Value::Kind::Null && value != watched.value) ++watched.changes;
        watched.value = std::move(value);
    }
}

std::string freshnessName(Freshness freshness) {
    if (freshness == Freshness::Fresh) return "fresh";
    return freshness == Freshness::Stale ? "stale" : "unknown";
}

}  // namespace vornex
