#include "values/Row.h"

#include <nlohmann/json.hpp>

#include "values/Json_Value.h"

namespace vornex {

std::string jsonObject(const Row& row) {
    nlohmann::ordered_json line = nlohmann::ordered_json::object();
    for (const auto& [key, value] : row.fields)
        line.emplace(key->name, jsonValue(value));
    return line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace vornex
