// Type texts: what each means, how it is written again, and which are refused.
#include <stdexcept>

#include <gtest/gtest.h>

#include "labels/Label_File.h"

namespace vornex {
namespace {

TEST(Label_Type, typesComeBackAsWritten) {
    for (const char* text : {"3", "11", "4[0..2,0..3]", "1[0..31]/16", "MotorT", "MotorT[-4..-1]"}) {
        EXPECT_EQ(formatType(parseType(text)), text);
    }
    EXPECT_EQ(formatType(parseType("4[0..2]/10")), "4[0..2]");
}

TEST(Label_Type, typesByTheirNamesAreACodeAndAView) {
    const struct {
        const char* text;
        const char* written;
        int code;
        View view;
        std::uint32_t bytes;  // of one element
        std::uint64_t elements;
    } rows[] = {
        {"BOOL", "BOOL", 1, View::Bool, 1, 1},
        {"int", "INT", 4, View::S16, 2, 1},
        {" Real ", "REAL", 7, View::F32, 4, 1},
        {"LREAL[1..3]", "LREAL[1..3]", 9, View::F64, 8, 3},
        {"REAL*8", "REAL[0..7]", 7, View::F32, 4, 8},
        {"7 * 2", "7[0..1]", 7, View::U32, 4, 2},
        {"ARRAY [1..4, -1..2] OF DWORD", "DWORD[1..4,-1..2]", 5, View::Hex, 4, 16},
        {"array[0..31]of byte/16", "BYTE[0..31]/16", 1, View::Hex, 1, 32},
        {"ARRAY [1..2] OF ARRAY [0..3] OF 4", "4[1..2,0..3]", 4, View::U16, 2, 8},
        {"ARRAY [1..2] OF MotorT", "MotorT[1..2]", 12, View::Default, 0, 2},
        {"STRING", "STRING", 10, View::Text, 255, 1},
        {"string( 20 )", "STRING(20)", 1, View::Text, 20, 1},
        {"ARRAY [1..2] OF STRING(8)", "STRING(8)[1..2]", 1, View::Text, 8, 2},
        {"Arrayed", "Arrayed", 12, View::Default, 0, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        Label label;
        label.type = parseType(row.text);
        EXPECT_EQ(formatType(label.type), row.written);
        EXPECT_EQ(formatType(parseType(row.written)), row.written);
        EXPECT_EQ(label.type.code, row.code);
        EXPECT_EQ(elementBytes(Label_File(), label.type), row.bytes);
        EXPECT_EQ(elementCount(label.type), row.elements);
        if (row.code != 12) {
            EXPECT_EQ(viewOf(label), row.view);
        }
    }
    for (const char* text : {"ARRAY", "ARRAY OF INT", "ARRAY [1..2] INT", "ARRAY [1..2] OF", "STRING()", "STRING(0)",
                             "STRING(256)", "INT(3)", "REAL*0", "REAL*", "INT[1..2]*3", "INT/16", "0", "12", ""}) {
        EXPECT_THROW(parseType(text), std::invalid_argument) << text;
    }
}

}  // namespace
}  // namespace vornex
