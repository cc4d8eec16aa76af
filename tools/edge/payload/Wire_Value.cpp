#include "edge/payload/Wire_Value.h"

#include <stdexcept>

#include "text/Number.h"

namespace vornex::edge {

namespace {

std::uint32_t numberOf(Data_Type type) { return static_cast<std::uint32_t>(type); }
bool isSigned(Data_Type type) { return numberOf(type) <= numberOf(Data_Type::Int64); }
bool isWhole(Data_Type type) { return numberOf(type) <= numberOf(Data_Type::UInt64); }
// 8, 16, 32 or 64, of a whole number.
unsigned bitsOf(Data_Type type) { return 8u << (numberOf(type) - 1) % 4; }

// Readers do not agree in which field a UInt32 is sent, and take 0 or null from the other one: 32 bits go as UInt64.
Data_Type unsignedOf(std::uint32_t bytes) {
    if (bytes == 1) return Data_Type::UInt8;
    return bytes == 2 ? Data_Type::UInt16 : Data_Type::UInt64;
}

Data_Type signedOf(std::uint32_t bytes) {
    if (bytes == 1) return Data_Type::Int8;
    if (bytes == 2) return Data_Type::Int16;
    return bytes == 4 ? Data_Type::Int32 : Data_Type::Int64;
}

template <class Float>
Wire_Value floatValue(const std::string& text) {
    if (const std::optional<Float> number = readReal<Float>(text)) return *number;
    return {};
}

// Bits of the number, of either sign, in the wire's width.
Wire_Value wholeValue(Data_Type type, const std::string& text) {
    try {
        const std::uint64_t bits = isSigned(type) ? static_cast<std::uint64_t>(wholeNumber<std::int64_t>(text))
                                                  : wholeNumber<std::uint64_t>(text);
        if (bitsOf(type) == 64) return bits;
        return static_cast<std::uint32_t>(bits);
    } catch (const std::invalid_argument&) {
        return {};
    }
}

// Nothing when the wire's bits are no number of the type.
std::optional<std::string> digitsOf(Data_Type type, const Wire_Value& value) {
    const unsigned bits = bitsOf(type);
    if (bits == 64) {
        const auto* const found = std::get_if<std::uint64_t>(&value);
        if (!found) return std::nullopt;
        return isSigned(type) ? std::to_string(static_cast<std::int64_t>(*found)) : std::to_string(*found);
    }
    const auto* const asLong = std::get_if<std::uint64_t>(&value);
    // some hosts send 32 bits without sign as a long
    if (asLong && type == Data_Type::UInt32 && *asLong >> 32 == 0) return std::to_string(*asLong);
    const auto* const found = std::get_if<std::uint32_t>(&value);
    if (!found) return std::nullopt;
    const std::int64_t limit = std::int64_t(1) << (isSigned(type) ? bits - 1 : bits);
    const std::int64_t number = isSigned(type) ? static_cast<std::int32_t>(*found) : std::int64_t(*found);
    if (number >= limit || (isSigned(type) && number < -limit)) return std::nullopt;
    return std::to_string(number);
}

}  // namespace

Data_Type dataTypeOf(View view, std::uint32_t bytes, bool isScaled) {
    const View_Entry& entry = viewEntry(view);
    if (entry.width != 0 && entry.width != bytes) return Data_Type::String;
    if (isScaled) return Data_Type::Double;
    switch (entry.kind) {
        case View_Entry::Kind::Unsigned: return unsignedOf(bytes);
        case View_Entry::Kind::Signed: return signedOf(bytes);
        case View_Entry::Kind::Float: return bytes == 4 ? Data_Type::Float : Data_Type::Double;
        case View_Entry::Kind::Bool: return Data_Type::Boolean;
        case View_Entry::Kind::Hex:
            return bytes == 1 || bytes == 2 || bytes == 4 || bytes == 8 ? unsignedOf(bytes) : Data_Type::String;
        case View_Entry::Kind::Text:
        case View_Entry::Kind::Bytes: break;
    }
    return Data_Type::String;
}

Wire_Value wireValue(Data_Type type, const Value& value) {
    if (value.kind == Value::Kind::Null) return {};
    if (type == Data_Type::String) return value.shown();
    if (type == Data_Type::Boolean) {
        if (value.kind == Value::Kind::Bool) return value.text == "true";
        return {};
    }
    if (value.kind == Value::Kind::List) return {};
    if (type == Data_Type::Float) return floatValue<float>(value.text);
    if (type == Data_Type::Double) return floatValue<double>(value.text);
    return wholeValue(type, value.text);
}

std::string typedText(Data_Type type, const Wire_Value& value) {
    if (std::holds_alternative<std::monostate>(value)) throw std::invalid_argument("no value");
    std::optional<std::string> text;
    if (isWhole(type)) {
        text = digitsOf(type, value);
    } else if (type == Data_Type::Float) {
        if (const float* const found = std::get_if<float>(&value)) text = shortestNumber(*found);
    } else if (type == Data_Type::Double) {
        if (const double* const found = std::get_if<double>(&value)) text = shortestNumber(*found);
    } else if (type == Data_Type::Boolean) {
        if (const bool* const found = std::get_if<bool>(&value)) text = *found ? "true" : "false";
    } else if (const std::string* const found = std::get_if<std::string>(&value)) {
        text = *found;
    }
    if (!text) throw std::invalid_argument("not a value of type " + typeName(type));
    return *text;
}

}  // namespace vornex::edge
