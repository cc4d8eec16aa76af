#include "trace/Record_Json.h"

#include <stdexcept>

namespace vornex {

std::int64_t numberIn(const nlohmann::json& value, const std::string& name, std::int64_t low, std::int64_t high) {
    const bool fits =
        value.is_number_unsigned()
            ? value.get<std::uint64_t>() <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())
            : value.is_number_integer();
    if (fits && value.get<std::int64_t>() >= low && value.get<std::int64_t>() <= high) return value.get<std::int64_t>();
    throw std::invalid_argument("\"" + name + "\" is not a whole number from " + std::to_string(low) + " to " +
                                std::to_string(high));
}

int intOf(const nlohmann::json& event, const Key& key, std::int64_t low, std::int64_t high) {
    return static_cast<int>(numberIn(event.at(key.name), key.name, low, high));
}

std::uint32_t addressOf(const nlohmann::json& event) {
    return static_cast<std::uint32_t>(
        numberIn(event.at(key::address.name), key::address.name, 0, std::numeric_limits<std::uint32_t>::max()));
}

}  // namespace vornex
