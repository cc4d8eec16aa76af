// Bytes to values and back, and what values are compared with: what a user sees and types in every program.
#include <stdexcept>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "labels/Label_Type.h"
#include "text/Hex.h"
#include "text/Text.h"
#include "text/Text_Input.h"
#include "values/Comparison.h"
#include "values/Row.h"
#include "values/Value_Codec.h"

namespace vornex {
namespace {

TEST(Value_Codec, showsWhatCanBeTypedAgain) {
    const struct {
        View view;
        const char* bytes;
        const char* shown;
        const char* json;
    } rows[] = {
        {View::U8, "FF", "255", "255"},
        {View::S8, "FF", "-1", "-1"},
        {View::U16, "01 80", "32769", "32769"},
        {View::S16, "01 80", "-32767", "-32767"},
        {View::S32, "FE FF FF FF", "-2", "-2"},
        {View::U64, "FF FF FF FF FF FF FF FF", "18446744073709551615", R"("18446744073709551615")"},
        {View::S64, "00 00 00 00 00 00 00 80", "-9223372036854775808", R"("-9223372036854775808")"},
        {View::U64, "FF FF FF FF FF FF 1F 00", "9007199254740991", "9007199254740991"},
        {View::F32, "CD CC CC 3D", "0.1", "0.1"},
        {View::F32, "00 00 00 80", "-0", "0"},
        {View::F32, "01 00 00 00", "1e-45", "1e-45"},
        {View::F32, "00 00 80 FF", "-inf", R"("-inf")"},
        {View::F32, "00 00 C0 7F", "nan", R"("nan")"},
        {View::F32, "01 00 A0 FF", "nan(0xFFA00001)", R"_("nan(0xFFA00001)")_"},
        {View::F64, "9A 99 99 99 99 99 B9 3F", "0.1", "0.1"},
        {View::F64, "01 00 00 00 00 00 F8 FF", "nan(0xFFF8000000000001)", R"_("nan(0xFFF8000000000001)")_"},
        {View::Bool, "00 00", "false", "false"},
        {View::Bool, "01 00", "true", "true"},
        {View::Hex, "F4 01", "0x01F4", R"("0x01F4")"},
        {View::Hex, "01 02 03 04 05 06 07 08 09", "01 02 03 04 05 06 07 08 09", R"("01 02 03 04 05 06 07 08 09")"},
        {View::Bytes, "F4 01", "F4 01", R"("F4 01")"},
        {View::Text, "48 69 00 00", "Hi", R"("Hi")"},
        {View::Text, "C2 B0 43 FF 0A 22", "\u00B0C\\xFF\\x0A\"", "\"\u00B0C\\\\xFF\\\\x0A\\\"\""},
        {View::Text, "C2 9B 41 C2 A0", "\\xC2\\x9BA\u00A0", "\"\\\\xC2\\\\x9BA\u00A0\""},
        {View::Text, "22 48 22 5C 78 34 31 5C", R"("H"\x5Cx41\)", R"("\"H\"\\x5Cx41\\")"},
        {View::Text, "20 61 20", " a ", R"(" a ")"},
        // wider than the view
        {View::U16, "F4 01 00 00", "[500, 0]", "[500,0]"},
        {View::S8, "FF 00 01 7F", "[-1, 0, 1, 127]", "[-1,0,1,127]"},
        {View::F32, "00 00 80 3F 00 00 00 00", "[1, 0]", "[1,0]"},
    };
    for (const auto& row : rows) {
        const std::string bytes = bytesOfHex(row.bytes);
        const Value value = valueOf(row.view, bytes);
        EXPECT_EQ(value.shown(), row.shown) << viewName(row.view) << " " << row.bytes;
        EXPECT_EQ(jsonValue(value).dump(), row.json) << viewName(row.view) << " " << row.bytes;
        EXPECT_EQ(hexBytes(bytesOf(row.view, bytes.size(), typedText(row.view, value))), row.bytes) << row.shown;
    }
    EXPECT_EQ(jsonValue(Value()).dump(), "null");
    EXPECT_EQ(valueOf(View::Text, std::string("a\0b", 3)).shown(), "a");
    EXPECT_EQ(valueOf(View::Bool, std::string("\0\2", 2)).shown(), "true");
    // no whole number of values: the bytes, not a guess
    EXPECT_EQ(valueOf(View::U32, "ab").shown(), "61 62");
    EXPECT_EQ(valueOf(View::U16, "abc").shown(), "61 62 63");
}

TEST(Value_Codec, takesWhatTheViewTakesAlone) {
    const struct {
        View view;
        std::size_t size;
        const char* text;
        const char* bytes;    // empty: refused
        const char* refusal;  // part of the reason
    } rows[] = {
        {View::U8, 1, "255", "FF", ""},
        {View::U8, 1, "256", "", "'256' is not a whole number from 0 to 255"},
        {View::U8, 1, "-1", "", "from 0 to 255"},
        {View::S8, 1, "-128", "80", ""},
        {View::S8, 1, "128", "", "from -128 to 127"},
        {View::S16, 2, "-0x8000", "00 80", ""},
        {View::U16, 2, "010", "0A 00", ""},
        {View::U16, 2, "1.5", "", "is not a whole number"},
        {View::U16, 2, "1e3", "", "is not a whole number"},
        {View::U16, 2, "", "", "is no value"},
        {View::U64, 8, "18446744073709551615", "FF FF FF FF FF FF FF FF", ""},
        {View::U64, 8, "18446744073709551616", "", "is not a whole number"},
        {View::F32, 4, "0.1", "CD CC CC 3D", ""},
        {View::F32, 4, "16777217", "00 00 80 4B", ""},
        {View::F32, 4, "1e39", "", "is not a number that a float of 4 bytes holds"},
        {View::F32, 4, "nan(0x1)", "", "is not a number"},
        {View::F64, 8, "-2", "00 00 00 00 00 00 00 C0", ""},
        {View::F64, 8, "2 m", "", "is not a number"},
        {View::Bool, 1, "1", "01", ""},
        {View::Bool, 1, "on", "01", ""},
        {View::Bool, 1, "TRUE", "01", ""},
        {View::Bool, 2, "Off", "00 00", ""},
        {View::Bool, 1, "2", "", "neither true"},
        {View::Hex, 2, "0x1F4", "F4 01", ""},
        {View::Hex, 2, "500", "F4 01", ""},
        {View::Bytes, 4, "01F4", "01 F4 00 00", ""},
        {View::Bytes, 1, "01F4", "", "longer than 1 bytes"},
        {View::Bytes, 2, "1F4", "", "half a byte"},
        {View::Text, 4, "Hi", "48 69 00 00", ""},
        {View::Text, 4, "\"Hi\"", "48 69 00 00", ""},
        {View::Text, 3, "a\\x0Ab", "61 0A 62", ""},
        {View::Text, 4, "\\x0G", "5C 78 30 47", ""},
        {View::Text, 1, "Hi", "", "longer than 1 bytes"},
        {View::U16, 4, "[500,0]", "F4 01 00 00", ""},
        {View::U16, 4, "500", "", "view u16 has 2 bytes, the element 4: write a list of 2 values"},
        {View::U16, 4, "[500]", "", "write a list of 2 values"},
        {View::U16, 4, "[500, 0, 0]", "", "write a list of 2 values"},
        {View::U16, 4, "[500, 65536]", "", "from 0 to 65535"},
        {View::U16, 4, "[500, 0", "", "no closing ]"},
        {View::U32, 2, "1", "", "view u32 has 4 bytes, the element 2"},
        {View::Text, 2, "\"a,\"", "61 2C", ""},
        {View::U16, 255, "1", "", "view u16 has 2 bytes, the element 255"},
    };
    for (const auto& row : rows) {
        std::string bytes, refusal;
        try {
            bytes = hexBytes(bytesOf(row.view, row.size, row.text));
        } catch (const std::invalid_argument& reason) {
            refusal = reason.what();
        }
        EXPECT_EQ(bytes, row.bytes) << viewName(row.view) << " " << row.text;
        EXPECT_EQ(refusal.empty(), *row.refusal == '\0') << row.text << ": " << refusal;
        EXPECT_NE(refusal.find(row.refusal), std::string::npos) << row.text << ": " << refusal;
    }
}

TEST(Value_Codec, roundsNumbersThatAreWorkedOut) {
    const struct {
        View view;
        std::size_t size;
        double number;
        const char* bytes;
    } rows[] = {
        {View::U16, 2, 2.5, "03 00"},
        {View::U16, 2, 65536 + 7, "07 00"},  // a counter that goes round
        {View::S16, 2, -2.4, "FE FF"},
        {View::S16, 4, -1, "FF FF 00 00"},  // the first value of the element
        {View::U64, 8, 1.8446744073709552e19, "00 F8 FF FF FF FF FF FF"},
        {View::S64, 8, -9.3e18, "00 00 00 00 00 00 00 80"},
        {View::F32, 4, 0.1, "CD CC CC 3D"},
        {View::Bool, 1, 0.5, "01"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(hexBytes(bytesOfNumber(row.view, row.size, row.number)), row.bytes) << row.number;
}

TEST(Views, standOnThePageOfTheLabelFile) {
    EXPECT_NE(wholeText(LABELS_PAGE).find("`" + joined(viewNames(), " ") + "`"), std::string::npos);
}

TEST(Type_Names, standOnThePageOfTheLabelFileWithCodeAndView) {
    const std::string page = wholeText(LABELS_PAGE);
    for (const Type_Name& type : typeNames()) {
        const std::string row = "| `" + std::string(type.name) + "` | " + std::to_string(type.code) + " | `" +
                                viewName(type.view) + "` | " + std::to_string(elementType(type.code).bytes) + " | " +
                                type.meaning + " |";
        EXPECT_NE(page.find(row), std::string::npos) << row;
    }
}

TEST(Comparison, comparesNumbersAndTexts) {
    const struct {
        const char* comparison;
        Value value;
        bool met;
    } rows[] = {
        {"Speed>100", 101, true},
        {"Speed > 100", 100, false},
        {"Speed>=100", 100, true},
        {"Speed<=99.5", 100, false},
        {"Grid[0,1]<-1", -2, true},
        {"Speed!=5", 5, false},
        {"Speed=5", 5, true},
        {"On==true", true, true},
        {"On==1", true, true},
        {"On==off", false, true},
        {"On>0", true, true},
        {"Drive==0x10", "0x0010", true},
        {"Count==18446744073709551614", std::uint64_t(18446744073709551615u), false},
        {"Count>9223372036854775806", std::int64_t(9223372036854775807), true},
        {"Count<-9007199254740992", std::int64_t(-9007199254740993), true},
        {"Name==Hi", "Hi", true},
        {"Name>Hi", "Hj", false},
        {"Pair==[500, 0]", std::vector<Value>{500, 0}, true},
        {"Real==nan", Value::number("nan"), true},
        {"Real<5", Value::number("nan"), false},
        {"Speed>=0", Value(), false},
        {"Speed!=5", Value(), false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseComparison(row.comparison).metBy(row.value), row.met) << row.comparison;
    for (const char* text : {"Speed", "Speed!5", ">5", "Speed>"})
        EXPECT_THROW(parseComparison(text), std::invalid_argument) << text;
}

}  // namespace
}  // namespace vornex
