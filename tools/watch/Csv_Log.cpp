#include "watch/Csv_Log.h"

#include "text/Csv_Table.h"
#include "text/Time_Text.h"

namespace vornex {

Csv_Log::Csv_Log(const std::string& path, const Output_Policy& policy, const std::vector<Watched>& all)
    : file(path, policy), heading("time") {
    for (const Watched& watched : all) {
        const std::string& unit = watched.variable.unit;
        heading += "," + formatCsvCell(watched.variable.text + (unit.empty() ? "" : " (" + unit + ")"));
    }
    if (file.firstLine().empty()) return;
    if (file.firstLine() != heading) {
        throw Output_Error(Output_Error::Kind::Unusable,
                           path + ": has other columns than this run; --force replaces it");
    }
    heading.clear();
}

void Csv_Log::update(const std::vector<Watched>& all, int) {
    std::string line = heading.empty() ? "" : heading + "\n";
    heading.clear();
    line += timeText(std::chrono::system_clock::now());
    for (const Watched& watched : all) {
        line += ",";
        if (watched.freshness == Freshness::Fresh) line += formatCsvCell(watched.value.shown());
    }
    file.write(line + "\n");
    file.flush();
}

void Csv_Log::finish(const std::vector<Watched>&) { file.close(); }

}  // namespace vornex
