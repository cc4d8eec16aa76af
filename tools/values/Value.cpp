#include "values/Value.h"

#include "text/Number.h"

namespace vornex {

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

}  // namespace vornex
