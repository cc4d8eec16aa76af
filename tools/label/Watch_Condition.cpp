#include "Watch_Condition.h"

#include <cstdlib>
#include <stdexcept>

#include "Value_View.h"

namespace vornex {

namespace {

bool textAsNumber(const std::string& text, double& number) {
    if (text == "true" || text == "false") {
        number = text == "true" ? 1 : 0;
        return true;
    }
    char* end = nullptr;
    number = std::strtod(text.c_str(), &end);
    return end != text.c_str() && *end == '\0';
}

bool compare(double a, const std::string& comparison, double b) {
    if (comparison == ">") return a > b;
    if (comparison == ">=") return a >= b;
    if (comparison == "<") return a < b;
    if (comparison == "<=") return a <= b;
    return (a == b) == (comparison == "==");
}

}  // namespace

bool asNumber(const Value& value, double& number) {
    const bool candidate = value.kind == Value::Kind::Number || value.kind == Value::Kind::Bool ||
                           (value.kind == Value::Kind::Text && value.text.compare(0, 2, "0x") == 0);
    return candidate && textAsNumber(value.text, number);
}

bool Watch_Condition::metBy(const Value& value) const {
    if (value.kind == Value::Kind::Null) return false;
    double left = 0, right = 0;
    if (asNumber(value, left) && textAsNumber(operand, right)) return compare(left, comparison, right);
    if (comparison == "==") return value.text == operand;
    return comparison == "!=" && value.text != operand;
}

Watch_Condition parseCondition(const std::string& text) {
    const std::size_t at = text.find_first_of("<>=!");
    if (at == std::string::npos) throw std::invalid_argument("'" + text + "' has none of > >= < <= == !=");
    Watch_Condition condition;
    const std::size_t width = at + 1 < text.size() && text[at + 1] == '=' ? 2 : 1;
    condition.label = trimmed(text.substr(0, at));
    condition.comparison = text.substr(at, width);
    condition.operand = trimmed(text.substr(at + width));
    if (condition.comparison == "=" || condition.comparison == "!") {
        throw std::invalid_argument("'" + condition.comparison + "' does not compare; use == or !=");
    }
    if (condition.label.empty()) throw std::invalid_argument("'" + text + "' names no label");
    if (condition.operand.empty()) throw std::invalid_argument("'" + text + "' compares with nothing");
    return condition;
}

}  // namespace vornex
