// Values as JSON.
#ifndef VORNEX_VALUES_JSON_VALUE_H
#define VORNEX_VALUES_JSON_VALUE_H

#include <nlohmann/json_fwd.hpp>

#include "values/Value.h"

namespace vornex {

// Numbers stay numbers where every reader of JSON gets them right: whole numbers from 2^53 on, infinities and nan
// become strings. Bytes of a text that are not UTF-8 become U+FFFD when it is printed.
nlohmann::ordered_json jsonValue(const Value& value);

}  // namespace vornex

#endif
