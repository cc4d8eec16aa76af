// Times for people and for records.
#ifndef VORNEX_TEXT_TIME_TEXT_H
#define VORNEX_TEXT_TIME_TEXT_H

#include <chrono>
#include <string>

namespace vornex {

using Wall_Time = std::chrono::system_clock::time_point;

enum class Fraction { Milli, Micro };

// "2026-05-17T21:40:01.123+02:00": ISO 8601, local time with its offset.
std::string timeText(Wall_Time time, Fraction fraction = Fraction::Milli);
// The time that timeText() wrote, with either fraction. Throws std::invalid_argument.
Wall_Time timeOfText(const std::string& text);
// "20260517T214001": for file names, local time.
std::string fileTimeText(Wall_Time time);
// Since 1970, for programs: "1779046801123456789".
std::string nanosecondsText(Wall_Time time);
// "+12.345 s"
std::string timeSinceText(Wall_Time start, Wall_Time time);
// "0.3 s", "12 s", "5 min", "3 h", "2 d"
std::string ageText(std::chrono::duration<double> age);

// Seconds of "90", "500ms", "90s", "5min" or "5m", "8h", "2d". Throws std::invalid_argument.
double secondsOf(const std::string& duration);

}  // namespace vornex

#endif
