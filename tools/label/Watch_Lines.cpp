// The changes of a watch, line by line.
#include "label/Watch_Display.h"

#include <cmath>

#include "host/Variable_Value.h"
#include "text/Time_Text.h"
#include "values/Comparison.h"

namespace vornex {

bool Change_Lines::differs(const Shown& last, const Watched& now) const {
    if (!last.any || last.freshness != now.freshness) return true;
    if (now.freshness != Freshness::Fresh || last.value == now.value) return false;
    const std::optional<double> before = numberOf(last.value), after = numberOf(now.value);
    // a double does not tell the largest whole numbers apart
    return deadband == 0 || !before || !after || !(std::fabs(*after - *before) <= deadband);
}

void Change_Lines::update(const std::vector<Watched>& all, int) {
    shown.resize(all.size());
    const std::string time = out.time(std::chrono::system_clock::now());
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (!differs(shown[i], all[i])) continue;
        shown[i] = {true, all[i].value, all[i].freshness};
        // The loss of the connection makes all stale at once and is told once.
        if (all[i].freshness == Freshness::Stale && out.format == Output::Format::Text) continue;
        Row row;
        row.add(key::time, time).add(key::label, all[i].variable.text).add(key::value, all[i].value);
        row.add(key::unit, all[i].variable.unit).add(key::state, freshnessName(all[i].freshness));
        out.row(row, time + "  " + assignmentText(all[i].variable, all[i].value));
    }
    out.flush();
}

void Change_Lines::link(const Link_Change& change) {
    const bool up = change.state == Link_Change::State::Up;
    if (out.format == Output::Format::Json) {
        Row row;
        row.add(key::time, out.time(change.at)).add(key::link, up ? "up" : "down").add(key::reason, change.reason);
        return out.row(row, "");
    }
    const char* const what = up                                         ? ""
                             : change.state == Link_Change::State::Down ? "; the values are stale until they come again"
                                                                        : "; waiting for the controller";
    out.note(out.time(change.at) + "  -- " + linkText(change) + what);
}

}  // namespace vornex
