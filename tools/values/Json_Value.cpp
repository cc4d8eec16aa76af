#include "values/Json_Value.h"

#include <cmath>
#include <cstdint>

#include <nlohmann/json.hpp>

#include "text/Number.h"

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

}  // namespace vornex
