#include "text/Time_Text.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <stdexcept>

#include "text/Number.h"

#include "text/Number.h"

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

std::string fileTimeText(Wall_Time time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(time));
    std::tm parts;
    localtime_r(&seconds, &parts);
    char text[32];
    return std::string(text, std::strftime(text, sizeof text, "%Y%m%dT%H%M%S", &parts));
}

std::string nanosecondsText(Wall_Time time) {
    return std::to_string(std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count());
}

std::string timeSinceText(Wall_Time start, Wall_Time time) {
    const double seconds = std::chrono::duration<double>(time - start).count();
    return (seconds < 0 ? "" : "+") + fixedNumber(seconds, 3) + " s";
}

std::string ageText(std::chrono::duration<double> age) {
    const double seconds = age.count();
    if (seconds < 100) return fixedNumber(seconds, seconds < 10 ? 1 : 0) + " s";
    if (seconds < 100 * 60) return fixedNumber(seconds / 60, 0) + " min";
    if (seconds < 48 * 3600) return fixedNumber(seconds / 3600, 0) + " h";
    return fixedNumber(seconds / 86400, 0) + " d";
}

double secondsOf(const std::string& duration) {
    const struct {
        const char* name;
        double seconds;
    } units[] = {{"", 1}, {"ms", 0.001}, {"s", 1}, {"min", 60}, {"m", 60}, {"h", 3600}, {"d", 86400}};
    const std::size_t digits = duration.find_first_not_of("0123456789.");
    const std::size_t end = std::min(digits, duration.size());
    for (const auto& unit : units) {
        if (duration.substr(end) == unit.name && end > 0) return realNumber(duration.substr(0, end)) * unit.seconds;
    }
    throw std::invalid_argument("'" + duration + "' is not a duration like 90s, 5min, 8h or 2d");
}

}  // namespace vornex
