// The parts of vornex-label that decide what a user reads and writes.
#include <stdexcept>

#include <gtest/gtest.h>

#include "../../tools/label/Completions.h"
#include "../../tools/label/Frame_View.h"
#include "../../tools/label/Known_Bytes.h"
#include "../../tools/label/Label_Names.h"
#include "../../tools/label/Status_Text.h"
#include "../../tools/label/Value_View.h"
#include "../../tools/label/Variable_Value.h"
#include "../../tools/label/Watch_Condition.h"

namespace vornex {
namespace {

TEST(LabelNames, keepsNoneOfAFileThatWouldTakeAllMemory) {
    const Label_Names names(parseLabelFile(
        R"({"format": 1, "labels": [{"name": "A", "type": "3", "at": 0},
                                    {"name": "B", "type": "1[0..2000000000]", "at": 2}]})",
        "f"));
    EXPECT_TRUE(names.tooMany());
    EXPECT_EQ(names.of(0, 2), "bytes 0 to 1");
    EXPECT_EQ(names.values(0, 2, "ab"), "");
}

TEST(ValueView, showsBytesAsTheViewSays) {
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
        {View::U64, "FF FF FF FF FF FF FF FF", "18446744073709551615", "18446744073709551615"},
        {View::S64, "00 00 00 00 00 00 00 80", "-9223372036854775808", "-9223372036854775808"},
        {View::F32, "CD CC CC 3D", "0.1", "0.1"},
        {View::F32, "00 00 C0 7F", "nan", "\"nan\""},
        {View::F64, "9A 99 99 99 99 99 B9 3F", "0.1", "0.1"},
        {View::Bool, "00 00", "false", "false"},
        {View::Bool, "00 01", "true", "true"},
        {View::Hex, "F4 01", "0x01F4", "\"0x01F4\""},
        {View::Hex, "01 02 03 04 05 06 07 08 09", "01 02 03 04 05 06 07 08 09", "\"01 02 03 04 05 06 07 08 09\""},
        {View::Bytes, "F4 01", "F4 01", "\"F4 01\""},
        {View::Text, "48 69 00 58", "Hi", "\"Hi\""},
        {View::Text, "C2 B0 43 FF 0A 22",
         "\xC2\xB0"
         "C\\xFF\\x0A\"",
         "\"\xC2\xB0"
         "C\\\\xFF\\\\x0A\\\"\""},
        {View::U32, "01 02", "01 02", "\"01 02\""},  // not the view's width: the bytes, not a guess
    };
    for (const auto& row : rows) {
        const Value value = viewValue(row.view, bytesOfHex(row.bytes));
        EXPECT_EQ(value.shown(), row.shown) << viewName(row.view) << " " << row.bytes;
        EXPECT_EQ(value.json(), row.json) << viewName(row.view) << " " << row.bytes;
    }
    EXPECT_EQ(Value().json(), "null");
}

TEST(ValueView, parsesWithinTheRangeOfTheViewAlone) {
    const struct {
        View view;
        std::size_t size;
        const char* text;
        const char* bytes;  // or the reason for the refusal
    } rows[] = {
        {View::U8, 1, "255", "FF"},
        {View::U8, 1, "256", "out of range: 0 to 255"},
        {View::U8, 1, "-1", "out of range"},
        {View::S8, 1, "-128", "80"},
        {View::S8, 1, "128", "out of range: -128 to 127"},
        {View::S16, 2, "-0x8000", "00 80"},
        {View::U16, 2, "010", "0A 00"},
        {View::U16, 2, "1.5", "is not a whole number"},
        {View::U16, 2, "12x", "is not a whole number"},
        {View::U16, 2, "", "is no value"},
        {View::U64, 8, "18446744073709551615", "FF FF FF FF FF FF FF FF"},
        {View::U64, 8, "18446744073709551616", "out of range"},
        {View::S64, 8, "-9223372036854775808", "00 00 00 00 00 00 00 80"},
        {View::F32, 4, "0.1", "CD CC CC 3D"},
        {View::F32, 4, "1e39", "out of range of a float"},
        {View::F32, 4, "inf", "00 00 80 7F"},
        {View::F64, 8, "-2", "00 00 00 00 00 00 00 C0"},
        {View::F64, 8, "2 m", "is not a number"},
        {View::Bool, 1, "on", "01"},
        {View::Bool, 1, "2", "neither true"},
        {View::Hex, 2, "0x1F4", "F4 01"},
        {View::Bytes, 4, "01 F4", "01 F4 00 00"},
        {View::Bytes, 1, "01F4", "longer than 1 bytes"},
        {View::Bytes, 2, "1F4", "half a byte"},
        {View::Text, 4, "Hi", "48 69 00 00"},
        {View::Text, 1, "Hi", "longer than 1 bytes"},
    };
    for (const auto& row : rows) {
        std::string outcome;
        try {
            outcome = hexBytes(parseValue(row.view, row.size, row.text));
        } catch (const std::invalid_argument& refusal) {
            outcome = refusal.what();
        }
        const std::string expected = row.bytes;
        const bool reason = expected.find_first_of("ghijklmnopqrstuvwxyz") != std::string::npos;
        if (reason)
            EXPECT_NE(outcome.find(expected), std::string::npos) << row.text << ": " << outcome;
        else
            EXPECT_EQ(outcome, expected) << row.text;
    }
}

TEST(VariableValue, fitsWhatIsWrittenIntoTheArray) {
    Variable words;
    words.text = "Grid[0]";
    words.bytes = 2;
    words.elements = 3;
    Variable letters;
    letters.text = "Buf[0]";
    letters.bytes = 1;
    letters.elements = 4;
    const struct {
        const Variable& variable;
        View view;
        bool wholeArray;
        const char* text;
        const char* bytes;  // empty: refused
    } rows[] = {
        {words, View::U16, false, "7", "07 00"},
        {words, View::U16, true, "7", ""},
        {words, View::U16, true, "[1, 2,3]", "01 00 02 00 03 00"},
        {words, View::U16, false, "[1,2,3,4]", ""},
        {words, View::U16, false, "[1,,2]", ""},
        {words, View::U16, false, "[1", ""},
        {words, View::U16, false, "\"ab\"", ""},
        {words, View::U16, false, "@/nonexistent", ""},
        {words, View::F32, false, "1", ""},
        {letters, View::U8, true, "\"Hi\"", "48 69 00 00"},
        {letters, View::U8, false, "\"Hi\"", "48 69"},
        {letters, View::U8, false, "\"Hello\"", ""},
    };
    for (const auto& row : rows) {
        std::string bytes;
        try {
            bytes = hexBytes(bytesOfValue(row.variable, row.view, row.wholeArray, row.text));
        } catch (const std::invalid_argument&) {
        }
        EXPECT_EQ(bytes, row.bytes) << row.variable.text << "=" << row.text;
    }
    EXPECT_EQ(valueOfRun(words, View::U16, std::string("\1\0\2\0", 4)).shown(), "[1, 2]");
    EXPECT_EQ(valueOfRun(letters, View::F32, std::string("\0\0\x80\x3F", 4)).shown(), "1");
    EXPECT_THROW(valueOfRun(letters, View::F32, "abc"), Tool_Error);
}

TEST(KnownBytes, tellUnknownStaleAndFreshApart) {
    Known_Bytes known;
    known.fill(100, 10);
    known.fill(120, 10);
    EXPECT_EQ(known.of(100, 10), Freshness::Fresh);
    EXPECT_EQ(known.of(105, 16), Freshness::Unknown);  // the gap
    EXPECT_EQ(known.of(99, 1), Freshness::Unknown);
    EXPECT_EQ(known.of(129, 2), Freshness::Unknown);
    known.age();
    EXPECT_EQ(known.of(100, 10), Freshness::Stale);
    known.fill(104, 20);  // over the end of one run, the gap and the start of the other
    EXPECT_EQ(known.of(104, 20), Freshness::Fresh);
    EXPECT_EQ(known.of(103, 2), Freshness::Stale);
    EXPECT_EQ(known.of(123, 2), Freshness::Stale);
    EXPECT_EQ(known.of(100, 30), Freshness::Stale);
    known.fill(0xFFFFFFF0, 16);
    EXPECT_EQ(known.of(0xFFFFFFF0, 16), Freshness::Fresh);
}

TEST(FrameView, takesOnlyWhatBelongsTogether) {
    const std::string frame = bytesOfHex("02 0C 00 41 00 01 00 00 02 00 00 02 00 00 0A 00 8A 1F");
    const std::string reply = bytesOfHex("00 00 00 00 02 00 AA BB 0A 00 01 02 03 04 05 06 07 08 09 0A FB 0D");
    const auto request = viewRequest(frame);
    ASSERT_TRUE(request);
    ASSERT_EQ(request->items.size(), 2u);
    EXPECT_EQ(request->items[1].address, 0x200u);
    EXPECT_EQ(request->items[1].length, 10u);
    ASSERT_TRUE(viewReply(*request, reply));
    EXPECT_EQ(hexBytes(viewReply(*request, reply)->at(0)), "AA BB");
    const struct {
        const char* fault;
        std::size_t at;
        char byte;
    } rows[] = {{"first count too large", 4, 3}, {"second count too small", 8, 9}, {"count beyond the end", 5, 1}};
    for (const auto& row : rows) {
        std::string broken = reply;
        broken[row.at] = row.byte;
        EXPECT_FALSE(viewReply(*request, broken)) << row.fault;
    }
    EXPECT_FALSE(viewRequest(frame.substr(0, frame.size() - 1)));
    const auto write = viewRequest(bytesOfHex("02 08 00 40 00 01 00 00 02 00 12 34 72 BD"));
    ASSERT_TRUE(write);
    EXPECT_EQ(hexBytes(write->data), "12 34");
}

TEST(WatchCondition, comparesNumbersAndTexts) {
    const struct {
        const char* condition;
        Value value;
        bool met;
    } rows[] = {
        {"Speed>100", 101, true},   {"Speed > 100", 100, false},     {"Speed>=100", 100, true},
        {"Grid[0,1]<-1", -2, true}, {"Speed!=5", 5, false},          {"On==true", true, true},
        {"On==1", true, true},      {"Drive==0x10", "0x0010", true}, {"Name==Hi", "Hi", true},
        {"Name>Hi", "Hj", false},   {"Speed>=0", Value(), false},    {"Speed!=5", Value(), false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(parseCondition(row.condition).metBy(row.value), row.met) << row.condition << " " << row.value.shown();
    }
    for (const char* text : {"Speed", "Speed=5", ">5", "Speed>"}) {
        EXPECT_THROW(parseCondition(text), std::invalid_argument) << text;
    }
}

TEST(Globs, leaveIndexBracketsAlone) {
    EXPECT_TRUE(globMatches("Motors[*].Speed", "Motors[12].Speed"));
    EXPECT_TRUE(globMatches("*[?]*d", "Motors[2].Axis[1].Speed"));
    EXPECT_FALSE(globMatches("Motors[1]", "Motors1"));
    EXPECT_FALSE(globMatches("*Speed", "Speed.x"));
}

TEST(StatusText, namesBandAndType) {
    EXPECT_EQ(statusText(44), "no reply (code 44, type 3)");
    EXPECT_EQ(statusText(11), "bad reply (code 11)");
    EXPECT_EQ(statusText(82), "reply of the wrong length (code 82, type 11)");
    EXPECT_EQ(statusBand(23), 23);
}

TEST(Completions, findWhatTheDriverDropped) {
    Completions completions;
    const int lost = completions.open(), late = completions.open();
    completions.queued(lost);
    const int mark = completions.mark();
    completions.queued(late);  // after the driver was asked: its silence says nothing of this one
    completions.loseUpTo(mark);
    EXPECT_EQ(completions.wait(lost).state, Completion::State::Lost);
    EXPECT_TRUE(completions.anyPending());
    completions.interrupt();
    EXPECT_EQ(completions.wait(late).state, Completion::State::Interrupted);
}

}  // namespace
}  // namespace vornex
