// The changes of a watch, line by line.
#include "label/Watch_Display.h"

#include "host/Variable_Value.h"
#include "text/Time_Text.h"
#include "watch/Watch_Row.h"

namespace vornex {

void Change_Lines::update(const std::vector<Watched>& all, int) {
    const std::string time = out.time(std::chrono::system_clock::now());
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (!filter.isNews(i, all[i])) continue;
        // The loss of the connection makes all stale at once and is told once.
        if (all[i].freshness == Freshness::Stale && out.format == Output::Format::Text) continue;
        const std::string band = bandOf(formOf(all[i].variable), all[i].raw);
        out.row(watchRow(time, all[i]), time + "  " + assignmentText(all[i].variable, all[i].value, band));
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

void Point_Lines::update(const std::vector<Watched>& all, int) {
    const Wall_Time now = std::chrono::system_clock::now();
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (changesOnly && !filter.isNews(i, all[i])) continue;
        out.block(watchLine(Line_Format::Influx, controller, all[i], now));
    }
    out.flush();
}

}  // namespace vornex
