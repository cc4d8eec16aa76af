#include "values/Shown_Value.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <stdexcept>

#include "text/Nearest_Word.h"
#include "text/Number.h"
#include "text/Text.h"
#include "values/Value_Codec.h"

namespace vornex {
namespace {

using Kind = View_Entry::Kind;

constexpr int MostDigits = 17;      // a double has no more
constexpr int MostOwnDecimals = 6;  // a scale with more is the result of a division, and says nothing of the display
const double LargestFixed = 1e15;   // larger numbers are written with an exponent
const char RawMark[] = "raw(";

bool isFloat(const Value_Form& form) { return viewEntry(form.view).kind == Kind::Float; }
std::uint32_t widthOf(const Value_Form& form) {
    return viewEntry(form.view).width != 0 ? viewEntry(form.view).width : form.bytes;
}

double scaleOf(const Value_Form& form) { return form.meaning->scale.value_or(1); }
double offsetOf(const Value_Form& form) { return form.meaning->offset.value_or(0); }

// The text of a raw value in one form: decimal digits for whole numbers, 1 and 0 for bool.
std::string plainText(const Value& raw) {
    if (raw.kind == Value::Kind::Bool) return raw.text == "true" ? "1" : "0";
    if (raw.text.compare(0, 2, "0x") != 0) return raw.text;
    return std::to_string(wholeNumber<std::uint64_t>(raw.text));
}

// "-3.50" to "-3.5", "2.00" to "2", "-0" to "0".
std::string withoutZeros(std::string text) {
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') text.pop_back();
    }
    return text;
}

int decimalsIn(double number) {
    const std::string text = shortestNumber(number);
    const std::size_t point = text.find('.');
    if (text.find('e') != std::string::npos) return MostDigits;
    return point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1);
}

// With how many decimals the search for a text begins: the product of a whole number has no more than scale and offset.
int firstDecimals(const Value_Form& form) {
    if (form.meaning->decimals) return *form.meaning->decimals;
    const int own = std::max(decimalsIn(scaleOf(form)), decimalsIn(offsetOf(form)));
    return own <= MostOwnDecimals ? own : 0;
}

bool leadsBack(const Value_Form& form, const std::string& text, const std::string& plain) {
    try {
        return rawText(form, text) == plain;
    } catch (const std::invalid_argument&) {
        return false;
    }
}

std::string withDigits(double number, int digits) {
    char text[48];
    std::snprintf(text, sizeof text, "%.*e", digits - 1, number);
    return shortestNumber(*readReal<double>(text));
}

// Empty when no decimal text leads back.
std::string scaledText(const Value_Form& form, const std::string& plain) {
    const double number = shownNumber(form, *readReal<double>(plain));
    if (!std::isfinite(number)) return "";
    const bool isWished = form.meaning->decimals.has_value();
    if (std::fabs(number) < LargestFixed && (isWished || !isFloat(form))) {
        for (int decimals = firstDecimals(form); decimals <= MostDigits; ++decimals) {
            std::string text = fixedNumber(number, decimals);
            if (!isWished) text = withoutZeros(text);
            const bool isZero = text.find_first_not_of("-0.") == std::string::npos;
            if (isZero && text[0] == '-' && !isFloat(form)) text.erase(0, 1);
            if (leadsBack(form, text, plain)) return text;
        }
    }
    for (int digits = 1; digits <= MostDigits; ++digits) {
        std::string text = withDigits(number, digits);
        if (leadsBack(form, text, plain)) return text;
    }
    return "";
}

// The number that people read, for limits: 0.3, not 0.30000000000000004. Nan when there is none.
double judgedNumber(Value_Form form, const Value& raw) {
    form.isRaw = false;
    const std::string plain = plainText(raw);
    const std::string text = form.meaning->isScaled() ? scaledText(form, plain) : plain;
    const std::optional<double> number = readReal<double>(plain);
    if (!number) return std::numeric_limits<double>::quiet_NaN();
    return readReal<double>(text).value_or(shownNumber(form, *number));
}

[[noreturn]] void refuseRange(const Value_Form& form, const std::string& typed) {
    const bool isSigned = viewEntry(form.view).kind == Kind::Signed;
    const double most = std::ldexp(1, static_cast<int>(8 * widthOf(form)) - (isSigned ? 1 : 0));
    double lowest = shownNumber(form, isSigned ? -most : 0), highest = shownNumber(form, most - 1);
    if (lowest > highest) std::swap(lowest, highest);
    throw std::invalid_argument("'" + typed + "' is out of range: " + withDigits(lowest, 9) + " to " +
                                withDigits(highest, 9));
}

std::string wholeText(const Value_Form& form, const std::string& typed, double raw) {
    const double rounded = std::round(raw);
    const double past = std::ldexp(1, 63);  // the first number beyond the signed ones
    if (rounded >= -past && rounded < past) return std::to_string(static_cast<std::int64_t>(rounded));
    if (rounded > 0 && rounded < 2 * past) return std::to_string(static_cast<std::uint64_t>(rounded));
    refuseRange(form, typed);
}

[[noreturn]] void refuseWord(const Value_Form& form, const std::string& typed) {
    const std::vector<std::string> names = namesOf(form.meaning->states);
    if (names.empty()) throw std::invalid_argument("'" + typed + "' is not a number");
    throw std::invalid_argument("'" + typed + "' is neither a number nor one of the states " + joined(names) +
                                didYouMean(typed, names));
}

bool takesRaw(const Value_Form& form, const std::string& text) {
    try {
        bytesOf(form.view, widthOf(form), text);
        return true;
    } catch (const std::invalid_argument&) {
        return false;
    }
}

std::string unscaled(const Value_Form& form, const std::string& typed) {
    const std::optional<double> number = readReal<double>(typed);
    const bool isNan = typed.compare(0, 3, "nan") == 0;
    if (isFloat(form) && (isNan || (number && !std::isfinite(*number)))) return typed;
    if (!number) refuseWord(form, typed);
    if (!std::isfinite(*number)) refuseRange(form, typed);
    const double raw = rawNumber(form, *number);
    std::string text;
    if (!isFloat(form)) {
        text = wholeText(form, typed, raw);
    } else {
        text = widthOf(form) == 4 ? shortestNumber(static_cast<float>(raw)) : shortestNumber(raw);
    }
    if (!std::isfinite(isFloat(form) ? *readReal<double>(text) : 0) || !takesRaw(form, text)) refuseRange(form, typed);
    return text;
}

}  // namespace

double rawNumber(const Value_Form& form, double shown) {
    return form.changes() ? (shown - offsetOf(form)) / scaleOf(form) : shown;
}

double shownNumber(const Value_Form& form, double raw) {
    return form.changes() ? raw * scaleOf(form) + offsetOf(form) : raw;
}

std::string rawText(const Value_Form& form, const std::string& typed) {
    if (!form.meaning) return typed;
    const std::string text = trimmed(typed);
    const bool isMarked = text.compare(0, sizeof RawMark - 1, RawMark) == 0 && text.back() == ')';
    if (isMarked) return text.substr(sizeof RawMark - 1, text.size() - sizeof RawMark);
    if (!form.changes()) return typed;
    if (const Named_Number* const state = findName(form.meaning->states, text)) return std::to_string(state->number);
    const bool isBool = viewEntry(form.view).kind == Kind::Bool;
    if (isBool && !truthOf(text)) refuseWord(form, text);
    if (isBool) return *truthOf(text) ? "1" : "0";
    if (form.meaning->isScaled()) return unscaled(form, text);
    if (!readReal<double>(text)) refuseWord(form, text);
    return typed;
}

Value shownValue(const Value_Form& form, const Value& raw) {
    if (!form.changes() || raw.kind == Value::Kind::Null) return raw;
    if (raw.kind == Value::Kind::List) {
        std::vector<Value> items;
        items.reserve(raw.items.size());
        for (const Value& item : raw.items)
            items.push_back(shownValue(form, item));
        return items;
    }
    const bool isReal = isFloat(form);
    const std::optional<double> number = readReal<double>(plainText(raw));
    if (!number || !std::isfinite(*number)) return raw;  // nan, or bytes that make no value
    const std::string plain = plainText(raw);
    if (!isReal && number < 0x1p63) {
        const Named_Number* const state = findNumber(form.meaning->states, wholeNumber<std::int64_t>(plain));
        if (state && leadsBack(form, state->name, plain)) return state->name;
    }
    if (!form.meaning->isScaled()) {
        const std::string shown = raw.shown();
        return raw.kind != Value::Kind::Bool || leadsBack(form, shown, plain) ? raw : Value(RawMark + plain + ")");
    }
    const std::string text = scaledText(form, plain);
    return text.empty() ? Value(RawMark + plain + ")") : Value::number(text);
}

Value shownOf(const Value_Form& form, const std::string& bytes) { return shownValue(form, valueOf(form.view, bytes)); }

std::string bytesOfShown(const Value_Form& form, const std::string& typed) {
    if (!typed.empty() && typed.front() == '[' && form.meaning) {
        std::string bytes = bytesOfShownList(form, typed);
        if (bytes.size() == form.bytes) return bytes;
    }
    return bytesOf(form.view, form.bytes, rawText(form, typed));
}

std::string bytesOfShownList(const Value_Form& form, const std::string& typed) {
    if (!form.meaning) return bytesOfList(form.view, form.bytes, typed);
    std::string bytes;
    for (const std::string& item : itemsOfList(typed))
        bytes += bytesOf(form.view, widthOf(form), rawText(form, item));
    return bytes;
}

std::string inexactRemark(const Value_Form& form, const std::string& typed) {
    if (!form.meaning || typed.empty()) return inexactRemark(form.view, typed);
    for (const std::string& item : typed.front() == '[' ? itemsOfList(typed) : std::vector<std::string>{typed}) {
        const std::string raw = rawText(form, item);
        std::string remark = form.changes() ? "" : inexactRemark(form.view, raw);
        if (!remark.empty()) return remark;
        if (!form.changes() || !readReal<double>(item)) continue;
        const std::string stored = shownOf(form, bytesOf(form.view, widthOf(form), raw)).shown();
        const std::optional<double> number = readReal<double>(stored);
        if (number && *number != *readReal<double>(item))
            return std::string("'").append(item).append("' is stored as ").append(stored).append(", the nearest");
    }
    return "";
}

void checkLimits(const Value_Form& form, const std::string& bytes) {
    if (!form.meaning || (!form.meaning->min && !form.meaning->max)) return;
    const std::string unit = form.meaning->unit.empty() ? "" : " " + form.meaning->unit;
    const std::uint32_t width = widthOf(form);
    for (std::size_t at = 0; at + width <= bytes.size(); at += width) {
        const double number = judgedNumber(form, valueOf(form.view, bytes.substr(at, width)));
        const auto refuse = [&](const char* side, double limit) {
            throw std::invalid_argument("'" + shortestNumber(number) + "' is " + side + " what may be written, " +
                                        shortestNumber(limit) + unit);
        };
        if (form.meaning->min && !(number >= *form.meaning->min)) refuse("below the least of", *form.meaning->min);
        if (form.meaning->max && !(number <= *form.meaning->max)) refuse("above the most of", *form.meaning->max);
    }
}

std::string bandOf(const Value_Form& form, const Value& raw) {
    if (!form.meaning || (!form.meaning->low && !form.meaning->high) || raw.kind == Value::Kind::Null) return "";
    for (const Value& item : raw.items) {
        std::string band = bandOf(form, item);
        if (!band.empty()) return band;
    }
    if (raw.kind == Value::Kind::List) return "";
    const double number = judgedNumber(form, raw);
    if (form.meaning->low && number < *form.meaning->low) return "low";
    return form.meaning->high && number > *form.meaning->high ? "high" : "";
}

}  // namespace vornex
