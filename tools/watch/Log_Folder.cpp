#include "watch/Log_Folder.h"

namespace vornex {

namespace {

const char* endingOf(Line_Format format) {
    if (format == Line_Format::Csv) return ".csv";
    return format == Line_Format::Json ? ".jsonl" : ".influx";
}

Log_Plan planOf(const Log_Settings& settings) {
    return {settings.folder,   "watch",      endingOf(settings.format), watchHeading(settings.format),
            settings.rotation, settings.keep};
}

}  // namespace

Log_Folder::Log_Folder(const Log_Settings& logSettings, const Rotating_File::Tell& tell)
    : settings(logSettings),
      file(planOf(settings), std::chrono::system_clock::now(), tell),
      filter(settings.changesOnly.value_or(0)) {}

void Log_Folder::update(const std::vector<Watched>& all, int) {
    const Wall_Time now = std::chrono::system_clock::now();
    std::string lines;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (!settings.changesOnly || filter.isNews(i, all[i]))
            lines += watchLine(settings.format, settings.controller, all[i], now);
    }
    file.write(lines, now);
}

}  // namespace vornex
