// What stands in the lines of a record, taken out of their JSON with limits.
#ifndef VORNEX_TRACE_RECORD_JSON_H
#define VORNEX_TRACE_RECORD_JSON_H

#include <array>
#include <limits>
#include <string>

#include <nlohmann/json.hpp>

#include "labels/Label_File.h"
#include "values/Keys.h"

namespace vornex {

constexpr std::int64_t MostUnits = LongestValue / 2;  // of one variable, in the host's counts

// How a record tells the state of the link, in the order of Link_Change::State.
constexpr std::array<const char*, 3> LinkWords = {"up", "down", "still down"};

// All throw std::invalid_argument with the reason; nlohmann::json::exception for a key that is not there.
// The whole number of a key or in a list, from `low` to `high`.
std::int64_t numberIn(const nlohmann::json& value, const std::string& name, std::int64_t low, std::int64_t high);
int intOf(const nlohmann::json& event, const Key& key, std::int64_t low = std::numeric_limits<int>::min(),
          std::int64_t high = std::numeric_limits<int>::max());
std::uint32_t addressOf(const nlohmann::json& event);

}  // namespace vornex

#endif
