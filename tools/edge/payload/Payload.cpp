#include "edge/payload/Payload.h"

#include <edge/payload/Payload.pb.h>  // what protoc makes of Payload.proto
#include "text/Text.h"

namespace vornex::edge {

namespace {

std::string wellFormed(const std::string& text) {
    if (isUtf8(text)) return text;
    std::string good;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = utf8Length(text, at);
        good += length > 0 ? text.substr(at, length) : "\xEF\xBF\xBD";
        at += length > 0 ? length : 1;
    }
    return good;
}

// Into a metric or a property: the fields of values have the same names in both.
template <class Message>
struct Value_Setter {
    Message& message;

    void operator()(std::monostate) const { message.set_is_null(true); }
    void operator()(std::uint32_t number) const { message.set_int_value(number); }
    void operator()(std::uint64_t number) const { message.set_long_value(number); }
    void operator()(float number) const { message.set_float_value(number); }
    void operator()(double number) const { message.set_double_value(number); }
    void operator()(bool truth) const { message.set_boolean_value(truth); }
    void operator()(const std::string& text) const { message.set_string_value(wellFormed(text)); }
};

template <class Message>
void setValue(Message& message, const Wire_Value& value) {
    std::visit(Value_Setter<Message>{message}, value);
}

void encodeMetric(const Metric& metric, wire::Metric& message) {
    if (!metric.name.empty()) message.set_name(wellFormed(metric.name));
    if (metric.alias) message.set_alias(*metric.alias);
    if (metric.time) message.set_timestamp(*metric.time);
    if (metric.type) message.set_datatype(static_cast<std::uint32_t>(*metric.type));
    if (metric.isHistorical) message.set_is_historical(true);
    setValue(message, metric.value);
    for (const Property& property : metric.properties) {
        message.mutable_properties()->add_keys(wellFormed(property.key));
        wire::PropertyValue& value = *message.mutable_properties()->add_values();
        value.set_type(static_cast<std::uint32_t>(property.type));
        setValue(value, property.value);
    }
}

Wire_Value valueOf(const wire::Metric& message) {
    if (message.is_null()) return {};
    switch (message.value_case()) {
        case wire::Metric::kIntValue: return message.int_value();
        case wire::Metric::kLongValue: return std::uint64_t(message.long_value());
        case wire::Metric::kFloatValue: return message.float_value();
        case wire::Metric::kDoubleValue: return message.double_value();
        case wire::Metric::kBooleanValue: return message.boolean_value();
        case wire::Metric::kStringValue: return message.string_value();
        case wire::Metric::kBytesValue:
        case wire::Metric::VALUE_NOT_SET: break;
    }
    return {};
}

Metric decodeMetric(const wire::Metric& message) {
    Metric metric;
    metric.name = message.name();
    if (message.has_alias()) metric.alias = message.alias();
    if (message.has_timestamp()) metric.time = message.timestamp();
    if (message.has_datatype()) metric.type = static_cast<Data_Type>(message.datatype());
    metric.isHistorical = message.is_historical();
    metric.value = valueOf(message);
    return metric;
}

}  // namespace

std::string typeName(Data_Type type) {
    static const char* const names[] = {"Int8",   "Int16",  "Int32", "Int64",  "UInt8",   "UInt16",
                                        "UInt32", "UInt64", "Float", "Double", "Boolean", "String"};
    const auto number = static_cast<std::uint32_t>(type);
    return number >= 1 && number <= 12 ? names[number - 1] : std::to_string(number);
}

std::string encode(const Payload& payload) {
    wire::Payload message;
    if (payload.time) message.set_timestamp(*payload.time);
    if (payload.seq) message.set_seq(*payload.seq);
    message.mutable_metrics()->Reserve(static_cast<int>(payload.metrics.size()));
    for (const Metric& metric : payload.metrics)
        encodeMetric(metric, *message.add_metrics());
    return message.SerializeAsString();
}

Payload decode(std::string_view bytes) {
    if (bytes.size() > LongestPayload)
        throw Payload_Error("a payload of " + counted(bytes.size(), "byte") + " is longer than any command");
    wire::Payload message;
    if (!message.ParseFromArray(bytes.data(), static_cast<int>(bytes.size())))
        throw Payload_Error(counted(bytes.size(), "byte") + " that are no payload");
    Payload payload;
    if (message.has_timestamp()) payload.time = message.timestamp();
    if (message.has_seq()) payload.seq = message.seq();
    payload.metrics.reserve(static_cast<std::size_t>(message.metrics_size()));
    for (const wire::Metric& metric : message.metrics())
        payload.metrics.push_back(decodeMetric(metric));
    return payload;
}

}  // namespace vornex::edge
