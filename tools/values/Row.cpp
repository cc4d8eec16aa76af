#include "values/Row.h"

#include <nlohmann/json.hpp>

#include "text/Csv_Table.h"
#include "values/Json_Value.h"

namespace vornex {

std::string jsonObject(const Row& row) {
    nlohmann::ordered_json line = nlohmann::ordered_json::object();
    for (const auto& [key, value] : row.fields)
        line.emplace(key->name, jsonValue(value));
    return line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
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
                (value.kind == Value::Kind::Null ? std::string() : formatCsvCell(value.shown()));
    }
    return line;
}

}  // namespace vornex
