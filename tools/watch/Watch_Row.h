// A value of a watch as a line for files and other programs.
#ifndef VORNEX_WATCH_WATCH_ROW_H
#define VORNEX_WATCH_WATCH_ROW_H

#include <string>

#include "values/Row.h"
#include "watch/Watched.h"

namespace vornex {

enum class Line_Format { Csv, Json, Influx };

// time, label, value, unit, state
Row watchRow(const std::string& time, const Watched& watched);

// With its line end. The line protocol of InfluxDB has no values but fresh ones: the line is then empty.
//
//   vornex,controller=press3,label=Motors[1].Speed,unit=rpm value=1450.5 1779046801123456789
//
// Fields, each of one type wherever it stands: value, a float: any number; integer: also, when it is a whole number
// that a float may not hold; bool; text: everything else, lists too, and numbers that no field can hold. In tags a
// backslash becomes /, a line end a blank: the protocol cannot have them there.
std::string watchLine(Line_Format format, const std::string& controller, const Watched& watched, Wall_Time now);
// What stands above such lines in a file, with its line end: the heading of CSV, nothing otherwise.
std::string watchHeading(Line_Format format);

}  // namespace vornex

#endif
