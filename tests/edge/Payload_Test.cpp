// Payloads, their values and the names in them. The bytes were made by the npm package sparkplug-payload 1.0.3, but
// for UInt32, which that one writes as a long.
#include <algorithm>
#include <limits>

#include <gtest/gtest.h>

#include "Test_Bytes.h"
#include "edge/payload/Metric_Names.h"
#include "edge/payload/Payload.h"
#include "edge/payload/Wire_Value.h"
#include "labels/Label_Type.h"

namespace vornex::edge {
namespace {

using test::bytesOf;
using test::hexOf;
using T = Data_Type;

Metric metric(const std::string& name, T type, Wire_Value value, std::optional<std::uint64_t> time = std::nullopt) {
    Metric made;
    made.name = name;
    made.type = type;
    made.value = std::move(value);
    made.time = time;
    return made;
}

struct Golden {
    const char* name;
    Payload payload;
    const char* hex;
};

std::vector<Golden> goldenPayloads() {
    const std::uint64_t time = 1700000000000;
    Metric absent = metric("T", T::Int16, {}, 2);
    absent.isHistorical = true;
    absent.properties = {{"engUnit", T::String, std::string("rpm")}, {"high", T::Double, 90.0}};
    const std::vector<Metric> allTypes = {
        metric("a", T::Int8, 0xFFFFFFFFu),   metric("b", T::Int16, 0xFFFF8000u),
        metric("c", T::Int32, 0x80000000u),  metric("d", T::Int64, std::uint64_t(1) << 63),
        metric("e", T::UInt8, 255u),         metric("f", T::UInt16, 65535u),
        metric("g", T::UInt32, 4294967295u), metric("h", T::UInt64, std::numeric_limits<std::uint64_t>::max()),
        metric("i", T::Float, 1.5f),         metric("j", T::Double, -0.1),
        metric("k", T::Boolean, true),       metric("l", T::String, std::string("Gr\xC3\xBCn"))};
    return {
        {"birth",
         {time,
          {metric("bdSeq", T::Int64, std::uint64_t(7), time), metric("Node Control/Rebirth", T::Boolean, false, time)},
          0},
         "0880d095ffbc3112120a0562645365711880d095ffbc312004580712210a144e6f646520436f6e74726f6c2f526562697274681880"
         "d095ffbc31200b70001800"},
        {"every type",
         {time + 1, allTypes, 255},
         "0881d095ffbc31120b0a0161200150ffffffff0f120b0a01622002508080feff0f120b0a0163200350808080800812100a01642004"
         "588080808080808080800112080a0165200550ff0112090a0166200650ffff03120b0a0167200750ffffffff0f12100a01682008"
         "58ffffffffffffffffff01120a0a01692009650000c03f120e0a016a200a699a9999999999b9bf12070a016b200b7001120c0a01"
         "6c200c7a054772c3bc6e18ff01"},
        {"null, historical, with properties",
         {1, {absent}, 1},
         "080112320a015418022002280138014a250a07656e67556e69740a04686967681207080c420372706d120b080a3100000000008056"
         "401801"}};
}

TEST(Payloads, areTheBytesThatOthersMake) {
    for (const Golden& row : goldenPayloads()) {
        EXPECT_EQ(hexOf(encode(row.payload)), hexOf(bytesOf(row.hex))) << row.name;
    }
}

TEST(Payloads, comeBackAsTheyWereSent) {
    const std::vector<std::string> typed = {"-1",  "-32768", "-2147483648", "-9223372036854775808",
                                            "255", "65535",  "4294967295",  "18446744073709551615",
                                            "1.5", "-0.1",   "true",        "Gr\xC3\xBCn"};
    const Payload payload = decode(bytesOf(goldenPayloads()[1].hex));
    ASSERT_EQ(payload.metrics.size(), typed.size());
    EXPECT_EQ(payload.seq, 255u);
    EXPECT_EQ(payload.time, 1700000000001u);
    for (std::size_t i = 0; i < typed.size(); ++i) {
        const Metric& found = payload.metrics[i];
        EXPECT_EQ(typedText(*found.type, found.value), typed[i]) << found.name;
    }
    const Metric absent = decode(bytesOf(goldenPayloads()[2].hex)).metrics.at(0);
    EXPECT_TRUE(absent.isHistorical);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(absent.value));
    EXPECT_EQ(absent.time, 2u);
}

// What others send: more fields than ours, fields of a wrong kind, bytes that end too early.
TEST(Payloads, ofOthersAreTakenOrRefused) {
    struct {
        const char* name;
        const char* hex;
        int metrics;  // -1: refused
    } const rows[] = {
        {"nothing", "", 0},
        {"an alias and a data set", "1207 1005 8a01 02 1800", 1},
        {"body and uuid", "2203 616263 2a02 0102 1804", 0},
        {"a metric that is longer than the payload", "120a 0a01 61", -1},
        {"a number without end", "08 ffffffffffffffffffffff", -1},
        {"field 0", "0001", -1},
        {"a group that never ends", "0b 08 01", -1},
        {"a name that is no UTF-8 is a name", "1204 0a02 fffe", 1},
    };
    for (const auto& row : rows) {
        std::string hex = row.hex;
        hex.erase(std::remove(hex.begin(), hex.end(), ' '), hex.end());
        int metrics = -1;
        try {
            metrics = static_cast<int>(decode(bytesOf(hex)).metrics.size());
        } catch (const Payload_Error&) {
        }
        EXPECT_EQ(metrics, row.metrics) << row.name;
    }
    EXPECT_THROW(decode(std::string(LongestPayload + 1, '\0')), Payload_Error);
    EXPECT_EQ(decode(encode({{}, {metric("a\xFFz", T::String, std::string("\xC3"))}, {}})).metrics.at(0).name,
              "a\xEF\xBF\xBDz");
}

TEST(Wire_Values, followTheView) {
    struct {
        View view;
        std::uint32_t bytes;
        bool scaled;
        T type;
        Value value;
        Wire_Value wire;
    } const rows[] = {
        {View::S16, 2, false, T::Int16, Value(-2), 0xFFFFFFFEu},
        {View::S64, 8, false, T::Int64, Value(-2), ~std::uint64_t(1)},
        {View::U64, 8, false, T::UInt64, Value::number("18446744073709551615"), ~std::uint64_t(0)},
        {View::Hex, 4, false, T::UInt64, Value::number("0xFFFFFFFF"), std::uint64_t(0xFFFFFFFF)},
        {View::Hex, 16, false, T::String, Value("01 F4"), std::string("01 F4")},
        {View::F32, 4, false, T::Float, Value::number("0.1"), 0.1f},
        {View::F32, 8, false, T::String, Value(std::vector<Value>{Value(1), Value(2)}), std::string("[1, 2]")},
        {View::S16, 2, true, T::Double, Value::number("2.5"), 2.5},
        {View::Bool, 1, false, T::Boolean, Value(true), true},
        {View::Text, 255, false, T::String, Value("Lemonade"), std::string("Lemonade")},
        {View::U8, 1, false, T::UInt8, Value(), {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(typeName(dataTypeOf(row.view, row.bytes, row.scaled)), typeName(row.type)) << viewName(row.view);
        EXPECT_TRUE(wireValue(row.type, row.value) == row.wire) << viewName(row.view) << " " << row.value.shown();
    }
}

TEST(Wire_Values, ofCommandsAreOfTheirTypeOrRefused) {
    struct {
        T type;
        Wire_Value value;
        const char* typed;  // "": refused
    } const rows[] = {
        {T::Int8, 0xFFFFFF80u, "-128"},
        {T::Int8, 0xFFFFFF7Fu, ""},
        {T::Int8, 127u, "127"},
        {T::Int8, 128u, ""},
        {T::UInt8, 256u, ""},
        {T::UInt16, 65536u, ""},
        {T::UInt16, 5.0, ""},
        {T::UInt16, std::uint64_t(5), ""},
        {T::UInt32, std::uint64_t(5), "5"},
        {T::UInt32, std::uint64_t(1) << 32, ""},
        {T::Int64, 5u, ""},
        {T::Float, 0.1f, "0.1"},
        {T::Float, 0.1, ""},
        {T::Boolean, 1u, ""},
        {T::String, std::string("7"), "7"},
        {T::Double, std::string("7"), ""},
        {T::Double, {}, ""},
    };
    for (const auto& row : rows) {
        std::string typed;
        try {
            typed = typedText(row.type, row.value);
        } catch (const std::invalid_argument&) {
        }
        EXPECT_EQ(typed, row.typed) << typeName(row.type) << " as alternative " << row.value.index();
    }
}

TEST(Metric_Names, areTakenOnce) {
    EXPECT_EQ(metricNames({"Speed", "Motors[2].Axis[1].Setpoint", "Grid[1,3]", "Buf[1f]"}),
              (std::vector<std::string>{"Speed", "Motors/2/Axis/1/Setpoint", "Grid/1/3", "Buf/1f"}));
    struct {
        std::vector<std::string> labels;
        const char* named;  // in the refusal
    } const rows[] = {{{"A", "Speed", "speed"}, "labels 'Speed' and 'speed'"},
                      {{"M[1].A", "M/1/A"}, "labels 'M[1].A' and 'M/1/A'"},
                      {{"G[1,2]", "G[1].2"}, "labels 'G[1,2]' and 'G[1].2'"}};
    for (const auto& row : rows) {
        try {
            metricNames(row.labels);
            ADD_FAILURE() << row.named;
        } catch (const std::invalid_argument& refusal) {
            EXPECT_EQ(std::string(refusal.what()).rfind(row.named, 0), 0u) << refusal.what();
        }
    }
}

}  // namespace
}  // namespace vornex::edge
