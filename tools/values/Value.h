// A value on its way to the reader: what JSON can tell apart, with numbers kept as the text that shows them.
#ifndef VORNEX_VALUES_VALUE_H
#define VORNEX_VALUES_VALUE_H

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace vornex {

struct Value {
    enum class Kind { Null, Bool, Number, Text, List };

    Value() = default;  // null: not known
    Value(const char* words) : kind(Kind::Text), text(words) {}
    Value(std::string words) : kind(Kind::Text), text(std::move(words)) {}
    Value(bool truth) : kind(Kind::Bool), text(truth ? "true" : "false") {}
    Value(double number);
    template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
    Value(Integer number) : kind(Kind::Number), text(std::to_string(number)) {}
    Value(std::vector<Value> values) : kind(Kind::List), items(std::move(values)) {}

    // A number as text: 0.1f stays "0.1" and does not become 0.10000000149.
    static Value number(std::string digits);

    // As people read it: null is "?", a list "[1, 2]", text as it is.
    std::string shown() const;

    bool operator==(const Value& other) const {
        return kind == other.kind && text == other.text && items == other.items;
    }
    bool operator!=(const Value& other) const { return !(*this == other); }

    Kind kind = Kind::Null;
    std::string text;
    std::vector<Value> items;
};

}  // namespace vornex

#endif
