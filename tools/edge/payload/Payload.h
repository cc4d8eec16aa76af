// Sparkplug B payloads as records, and as the bytes of a message.
#ifndef VORNEX_EDGE_PAYLOAD_PAYLOAD_H
#define VORNEX_EDGE_PAYLOAD_PAYLOAD_H

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace vornex::edge {

// The datatypes that variables of a controller have, by their numbers on the wire.
enum class Data_Type : std::uint32_t {
    Int8 = 1,
    Int16 = 2,
    Int32 = 3,
    Int64 = 4,
    UInt8 = 5,
    UInt16 = 6,
    UInt32 = 7,
    UInt64 = 8,
    Float = 9,
    Double = 10,
    Boolean = 11,
    String = 12,
};
// "Int16"; the number of one that is none of these.
std::string typeName(Data_Type type);

// A value as it is on the wire, which tells numbers of 32 and 64 bits apart but not their sign: that is the datatype's.
// Nothing: null, or a value of a kind that no variable has.
using Wire_Value = std::variant<std::monostate, std::uint32_t, std::uint64_t, float, double, bool, std::string>;

struct Property {
    std::string key;
    Data_Type type = Data_Type::String;
    Wire_Value value;
};

struct Metric {
    std::string name;
    std::optional<std::uint64_t> alias;
    std::optional<std::uint64_t> time;  // milliseconds since 1970, UTC
    std::optional<Data_Type> type;      // may be one that is not listed above, in what others send
    bool isHistorical = false;
    Wire_Value value;  // nothing: sent as null
    std::vector<Property> properties;
};

struct Payload {
    std::optional<std::uint64_t> time;
    std::vector<Metric> metrics;
    std::optional<std::uint64_t> seq;
};

// Bytes from outside that are no payload, or one that is not worth its memory. what() says why.
class Payload_Error : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A command names some metrics; what is longer is not decoded.
constexpr std::size_t LongestPayload = 1u << 20;

// Texts that are not UTF-8 are sent with U+FFFD in place of what is wrong in them: a reader drops the whole message.
std::string encode(const Payload& payload);
// Throws Payload_Error. Properties of others are not looked at.
Payload decode(std::string_view bytes);

}  // namespace vornex::edge

#endif
