#include "Watch_View.h"

#include <cerrno>
#include <cmath>
#include <cstring>

#include "Trace.h"
#include "Variable_Value.h"
#include "Watch_Condition.h"

namespace vornex {

std::string freshnessName(Freshness freshness) {
    if (freshness == Freshness::Fresh) return "fresh";
    return freshness == Freshness::Stale ? "stale" : "unknown";
}

bool Change_Lines::differs(const Shown& last, const Watched& now) const {
    if (!last.any || last.freshness != now.freshness) return true;
    if (now.freshness != Freshness::Fresh || last.value == now.value) return false;
    double before = 0, after = 0;
    if (!asNumber(last.value, before) || !asNumber(now.value, after)) return true;
    return !(std::fabs(after - before) <= deadband);
}

void Change_Lines::update(const std::vector<Watched>& all) {
    shown.resize(all.size());
    const std::string time = timeText(std::chrono::system_clock::now());
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (!differs(shown[i], all[i])) continue;
        shown[i] = {true, all[i].value, all[i].freshness};
        // The loss of the connection makes all stale at once and is told once.
        if (all[i].freshness == Freshness::Stale && out.format == Output::Format::Text) continue;
        Row row;
        row.add("time", time).add("label", all[i].variable.text).add("value", all[i].value);
        row.add("unit", all[i].variable.unit).add("state", freshnessName(all[i].freshness));
        out.row(row, time + "  " + assignmentText(all[i].variable, all[i].value));
    }
}

void Change_Lines::link(const Link_Change& change) {
    const bool up = change.state == Link_Change::State::Up;
    if (out.format == Output::Format::Json) {
        Row row;
        row.add("time", timeText(change.at)).add("link", up ? "up" : "down").add("reason", change.reason);
        return out.row(row, "");
    }
    out.note(timeText(change.at) +
             (up ? "  -- connected"
                 : "  -- connection lost: " + change.reason + "; the values are stale until they come again"));
}

Csv_Log::Csv_Log(const std::string& path) : file(std::fopen(path.c_str(), "we")) {
    if (!file) throw Tool_Error(Exit_Code::Usage, "file '" + path + "': " + std::strerror(errno));
}

Csv_Log::~Csv_Log() { std::fclose(file); }

void Csv_Log::update(const std::vector<Watched>& all) {
    std::string line;
    if (!headed) {
        line = "time";
        for (const Watched& watched : all) {
            const std::string& unit = watched.variable.unit;
            line += "," + csvField(watched.variable.text + (unit.empty() ? "" : " (" + unit + ")"));
        }
        line += "\n";
        headed = true;
    }
    line += timeText(std::chrono::system_clock::now());
    for (const Watched& watched : all) {
        line += ",";
        if (watched.freshness == Freshness::Fresh) line += csvField(watched.value.shown());
    }
    std::fputs((line + "\n").c_str(), file);
    std::fflush(file);
}

}  // namespace vornex
