#include "values/Comparison.h"

#include <stdexcept>

#include "text/Number.h"
#include "text/Text.h"
#include "values/Value_Codec.h"

namespace vornex {
namespace {

// The text with words for 1 and 0 as numbers.
std::string numeral(const std::string& text) {
    const std::optional<bool> truth = truthOf(text);
    return truth ? (*truth ? "1" : "0") : text;
}

bool isNumeric(const Value& value) {
    return value.kind == Value::Kind::Number || value.kind == Value::Kind::Bool ||
           (value.kind == Value::Kind::Text && value.text.compare(0, 2, "0x") == 0);
}

}  // namespace

std::optional<double> numberOf(const Value& value) {
    if (!isNumeric(value)) return std::nullopt;
    return readReal<double>(numeral(value.text));
}

bool Comparison::metBy(const Value& value) const {
    if (value.kind == Value::Kind::Null) return false;
    const std::optional<int> order =
        isNumeric(value) ? compareNumbers(numeral(value.text), numeral(operand)) : std::nullopt;
    const bool isSame = order ? *order == 0 : value.shown() == operand;
    if (sign == "==") return isSame;
    if (sign == "!=") return !isSame;
    if (!order) return false;
    return (isSame && sign.size() == 2) || (sign[0] == '<' ? *order < 0 : *order > 0);
}

Comparison parseComparison(const std::string& text) {
    const std::size_t at = text.find_first_of("<>=!");
    if (at == std::string::npos) throw std::invalid_argument("'" + text + "' has none of > >= < <= == !=");
    Comparison comparison;
    const std::size_t width = at + 1 < text.size() && text[at + 1] == '=' ? 2 : 1;
    comparison.text = text;
    comparison.subject = trimmed(text.substr(0, at));
    comparison.sign = text.substr(at, width);
    comparison.operand = trimmed(text.substr(at + width));
    if (comparison.sign == "=") comparison.sign = "==";
    if (comparison.sign == "!") throw std::invalid_argument("'!' does not compare; use !=");
    if (comparison.subject.empty()) throw std::invalid_argument("'" + text + "' names nothing to compare");
    if (comparison.operand.empty()) throw std::invalid_argument("'" + text + "' compares with nothing");
    return comparison;
}

void fitComparison(Comparison& comparison, const Value_Form& form) {
    const View view = form.view;
    if (form.changes() && !form.meaning->states.empty()) {
        comparison.ofRaw = true;
        comparison.operand = rawText(form, comparison.operand);
        if (form.meaning->scale.value_or(1) < 0 && comparison.sign[0] != '=' && comparison.sign[0] != '!')
            comparison.sign[0] = comparison.sign[0] == '<' ? '>' : '<';
    }
    const bool isText = view == View::Text || view == View::Bytes;
    const bool isEquality = comparison.sign == "==" || comparison.sign == "!=";
    const std::string what = "'" + comparison.subject + "' is shown as " + viewName(view);
    if (isText && !isEquality) throw std::invalid_argument(what + " and compares by == and != alone");
    if (!isText && !readReal<double>(numeral(comparison.operand))) {
        throw std::invalid_argument(what + ", and '" + comparison.operand + "' is no number");
    }
}

}  // namespace vornex
