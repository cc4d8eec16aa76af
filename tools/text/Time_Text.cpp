#include "text/Time_Text.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <stdexcept>

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

Wall_Time timeOfText(const std::string& text) {
    const std::string pattern =
        text.size() == 29 ? "0000-00-00T00:00:00.000+00:00" : "0000-00-00T00:00:00.000000+00:00";
    const auto fits = [](char letter, char wanted) {
        if (wanted == '0') return letter >= '0' && letter <= '9';
        return letter == wanted || (wanted == '+' && letter == '-');
    };
    if (text.size() != pattern.size() || !std::equal(text.begin(), text.end(), pattern.begin(), fits))
        throw std::invalid_argument("'" + text + "' is not a time like 2026-05-17T21:40:01.123456+02:00");
    const auto number = [&text](std::size_t at, std::size_t digits) { return std::stoi(text.substr(at, digits)); };
    std::tm parts = {};
    parts.tm_year = number(0, 4) - 1900;
    parts.tm_mon = number(5, 2) - 1;
    parts.tm_mday = number(8, 2);
    parts.tm_hour = number(11, 2);
    parts.tm_min = number(14, 2);
    parts.tm_sec = number(17, 2);
    const std::size_t zone = text.size() - 6, digits = zone - 20;
    const int micros = number(20, digits) * (digits == 3 ? 1000 : 1);
    const int offset = (number(zone + 1, 2) * 60 + number(zone + 4, 2)) * (text[zone] == '-' ? -60 : 60);
    return std::chrono::system_clock::from_time_t(timegm(&parts) - offset) + std::chrono::microseconds(micros);
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
