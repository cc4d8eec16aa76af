#include "text/Time_Text.h"

#include <cstdio>
#include <ctime>

namespace vornex {

std::string timeText(Wall_Time time, Fraction fraction) {
    const auto sinceEpoch = std::chrono::floor<std::chrono::microseconds>(time.time_since_epoch()).count();
    const std::time_t seconds = static_cast<std::time_t>(sinceEpoch / 1000000 - (sinceEpoch % 1000000 < 0 ? 1 : 0));
    const int micros = static_cast<int>(sinceEpoch - static_cast<std::int64_t>(seconds) * 1000000);
    std::tm parts;
    localtime_r(&seconds, &parts);
    char text[64];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    const bool micro = fraction == Fraction::Micro;
    std::snprintf(text + length, sizeof text - length, ".%0*d", micro ? 6 : 3, micro ? micros : micros / 1000);
    char zone[8];
    std::strftime(zone, sizeof zone, "%z", &parts);  // "+0200"
    return std::string(text) + std::string(zone, 3) + ":" + std::string(zone + 3);
}

std::string timeSinceText(Wall_Time start, Wall_Time time) {
    char text[48];
    std::snprintf(text, sizeof text, "%+.3f s", std::chrono::duration<double>(time - start).count());
    return text;
}

std::string ageText(std::chrono::duration<double> age) {
    const struct {
        double below, unit;
        const char* name;
    } steps[] = {{100, 1, "s"}, {100 * 60, 60, "min"}, {48 * 3600, 3600, "h"}, {1e300, 86400, "d"}};
    char text[48];
    for (const auto& step : steps) {
        if (age.count() >= step.below) continue;
        const bool isShort = age.count() < 10;
        std::snprintf(text, sizeof text, isShort ? "%.1f %s" : "%.0f %s", age.count() / step.unit, step.name);
        break;
    }
    return text;
}

}  // namespace vornex
