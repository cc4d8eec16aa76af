#include "Trace.h"

#include <cerrno>
#include <cstring>
#include <ctime>

namespace vornex {

namespace {

bool endsIn(const std::string& text, const std::string& ending) {
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

}  // namespace

Trace_File::Trace_File(const std::string& name) : file(name == "-" ? stderr : std::fopen(name.c_str(), "we")) {
    if (!file) throw Tool_Error(Exit_Code::Usage, "trace file '" + name + "': " + std::strerror(errno));
}

Trace_File::~Trace_File() {
    if (file != stderr) std::fclose(file);
}

void Trace_File::write(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), file);
    std::fflush(file);
}

std::unique_ptr<Trace> openTrace(const std::string& name, Tool& tool) {
    if (endsIn(name, ".jsonl")) return openReplayTrace(name, tool);
    if (endsIn(name, ".hex")) return openHexTrace(name, tool);
    return openTextTrace(name, tool);
}

std::string timeText(Wall_Time time) {
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::microseconds>(time.time_since_epoch()).count();
    const std::time_t seconds = static_cast<std::time_t>(sinceEpoch / 1000000);
    std::tm parts;
    localtime_r(&seconds, &parts);
    char text[48];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d.%06d", parts.tm_hour, parts.tm_min, parts.tm_sec,
                  static_cast<int>(sinceEpoch % 1000000));
    return text;
}

}  // namespace vornex
