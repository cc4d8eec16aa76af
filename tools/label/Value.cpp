#include "Value.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <nlohmann/json.hpp>

namespace vornex {

namespace {

// Tries precisions until `same` accepts the text; the last one always reads back.
template <class Same>
std::string shortest(double number, int lowest, int highest, Same same) {
    char text[40];
    for (int precision = lowest; precision <= highest; ++precision) {
        std::snprintf(text, sizeof text, "%.*g", precision, number);
        if (same(text)) break;
    }
    return text;
}

bool isJsonNumber(const std::string& text) {
    const auto last = text.find_last_not_of("0123456789+-.eE");
    return last == std::string::npos && !text.empty();
}

}  // namespace

std::string shortestNumber(double number) {
    return shortest(number, 6, 17, [number](const char* text) { return std::strtod(text, nullptr) == number; });
}

std::string shortestNumber(float number) {
    return shortest(static_cast<double>(number), 6, 9,
                    [number](const char* text) { return std::strtof(text, nullptr) == number; });
}

Value::Value(double number) : kind(Kind::Number), text(shortestNumber(number)) {}

Value Value::number(std::string digits) {
    Value value;
    value.kind = Kind::Number;
    value.text = std::move(digits);
    return value;
}

std::string Value::shown() const {
    if (kind == Kind::Null) return "?";
    if (kind != Kind::List) return text;
    std::string list;
    for (const Value& item : items)
        list += (list.empty() ? "" : ", ") + item.shown();
    return "[" + list + "]";
}

std::string Value::json() const {
    switch (kind) {
        case Kind::Null: return "null";
        case Kind::Bool: return text;
        case Kind::Number: return isJsonNumber(text) ? text : jsonString(text);
        case Kind::Text: return jsonString(text);
        case Kind::List: break;
    }
    std::string list;
    for (const Value& item : items)
        list += (list.empty() ? "" : ",") + item.json();
    return "[" + list + "]";
}

std::string jsonString(const std::string& text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace vornex
