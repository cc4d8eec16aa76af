// Values for programs: JSON, and lines of named values as JSON or as cells.
#ifndef VORNEX_VALUES_ROW_H
#define VORNEX_VALUES_ROW_H

#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "values/Keys.h"
#include "values/Value.h"

namespace vornex {

// Numbers stay numbers where every reader of JSON gets them right: whole numbers from 2^53 on, infinities and nan
// become strings. Bytes of a text that are not UTF-8 become U+FFFD when it is printed.
nlohmann::ordered_json jsonValue(const Value& value);

// Named fields in the order of a line.
class Row {
public:
    Row& add(const Key& key, Value value) {
        fields.emplace_back(&key, std::move(value));
        return *this;
    }
    std::vector<std::pair<const Key*, Value>> fields;
};

// {"name":value,...}
std::string jsonObject(const Row& row);
// The names and the values as CSV has them, without line end; a value that is not known is empty.
std::string csvHeading(const Row& row);
std::string csvLine(const Row& row);

}  // namespace vornex

#endif
