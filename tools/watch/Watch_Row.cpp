#include "watch/Watch_Row.h"

#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

#include "host/Variable_Value.h"
#include "text/Number.h"
#include "values/Comparison.h"

namespace vornex {

namespace {

const double LargestExact = 9007199254740992;  // 2^53

std::string tag(const char* name, const std::string& value) {
    if (value.empty()) return "";
    std::string text = std::string(",") + name + "=";
    for (const char letter : value) {
        if (letter == ',' || letter == '=' || letter == ' ') text += '\\';
        if (letter == '\n' || letter == '\r')
            text += "\\ ";
        else
            text += letter == '\\' ? '/' : letter;
    }
    return text;
}

std::string textField(const std::string& value) {
    std::string text = "text=\"";
    for (const char letter : value) {
        if (letter == '"' || letter == '\\') text += '\\';
        text += letter;
    }
    return text + '"';
}

// The digits of a whole number that a float may not hold and 64 bits with a sign do; nothing for others.
std::optional<std::string> largeInteger(const std::string& digits) {
    if (digits.find_first_not_of("0123456789-") != std::string::npos) return std::nullopt;
    try {
        return std::to_string(wholeNumber<std::int64_t>(digits)) + "i";
    } catch (const std::invalid_argument&) {
        return std::nullopt;
    }
}

std::string fields(const Value& value) {
    if (value.kind == Value::Kind::Bool) return "bool=" + value.text;
    const std::optional<double> number = numberOf(value);
    if (!number || !std::isfinite(*number)) return textField(value.shown());
    std::string text = "value=" + shortestNumber(*number);
    if (std::fabs(*number) < LargestExact || value.kind != Value::Kind::Number) return text;
    const std::optional<std::string> integer = largeInteger(value.text);
    if (integer) return text + ",integer=" + *integer;
    return value.text.find_first_of(".e") == std::string::npos ? text + "," + textField(value.text) : text;
}

std::string influxLine(const std::string& controller, const Watched& watched, Wall_Time now) {
    if (watched.freshness != Freshness::Fresh || watched.value.kind == Value::Kind::Null) return "";
    const Variable& variable = watched.variable;
    // a state by its name has its number beside it
    const bool isNamed = watched.value.kind == Value::Kind::Text && watched.raw.kind == Value::Kind::Number;
    const std::string text =
        isNamed ? fields(watched.raw) + "," + textField(watched.value.text) : fields(watched.value);
    return "vornex" + tag("controller", controller) + tag("label", variable.text) + tag("unit", variable.unit) + " " +
           text + " " + nanosecondsText(now) + "\n";
}

}  // namespace

Row watchRow(const std::string& time, const Watched& watched) {
    Row row;
    row.add(key::time, time).add(key::label, watched.variable.text).add(key::value, watched.value);
    row.add(key::raw, watched.raw).add(key::unit, watched.variable.unit);
    row.add(key::band, bandOf(formOf(watched.variable), watched.raw)).add(key::state, freshnessName(watched.freshness));
    return row;
}

std::string watchLine(Line_Format format, const std::string& controller, const Watched& watched, Wall_Time now) {
    if (format == Line_Format::Influx) return influxLine(controller, watched, now);
    const Row row = watchRow(timeText(now), watched);
    return (format == Line_Format::Csv ? csvLine(row) : jsonObject(row)) + "\n";
}

std::string watchHeading(Line_Format format) {
    return format == Line_Format::Csv ? csvHeading(watchRow("", Watched())) + "\n" : "";
}

}  // namespace vornex
