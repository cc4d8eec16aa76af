#include "values/Row.h"

#include <cmath>
#include <cstdint>

#include <nlohmann/json.hpp>

#include "text/Csv_Table.h"
#include "text/Json_Tree.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex {

namespace {

using Json = nlohmann::ordered_json;

const double LargestExact = 9007199254740992;  // many readers keep numbers as doubles

Json numberJson(const std::string& text) {
    const std::optional<double> number = readReal<double>(text);
    const bool isWhole = text.find_first_not_of("0123456789-") == std::string::npos;
    if (!number || !std::isfinite(*number) || (isWhole && std::fabs(*number) >= LargestExact)) return text;
    return isWhole ? Json(wholeNumber<std::int64_t>(text)) : Json(*number);
}

}  // namespace

Json jsonValue(const Value& value) {
    switch (value.kind) {
        case Value::Kind::Null: return nullptr;
        case Value::Kind::Bool: return value.text == "true";
        case Value::Kind::Number: return numberJson(value.text);
        case Value::Kind::Text: return value.text;
        case Value::Kind::List: break;
    }
    Json list = Json::array();
    for (const Value& item : value.items)
        list.push_back(jsonValue(item));
    return list;
}

std::string jsonObject(const Row& row) {
    nlohmann::ordered_json line = nlohmann::ordered_json::object();
    for (const auto& [key, value] : row.fields)
        line.emplace(key->name, jsonValue(value));
    return escapedControls(line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

std::string csvHeading(const Row& row) {
    std::string line;
    for (const auto& [key, value] : row.fields)
        line += (line.empty() ? "" : ",") + formatCsvCell(key->name);
    return line;
}

std::string csvLine(const Row& row) {
    std::string line;
    for (const auto& [key, value] : row.fields) {
        line += (key == row.fields.front().first ? "" : ",") +
                (value.kind == Value::Kind::Null ? std::string() : formatCsvCell(harmless(value.shown())));
    }
    return line;
}

}  // namespace vornex
