// The parts of the host that decide what a user reads and writes.
#include <stdexcept>

#include <gtest/gtest.h>

#include "host/Known_Bytes.h"
#include "host/Variable_Value.h"
#include "host/link/Completions.h"
#include "host/link/Exchange.h"
#include "labels/Label_Names.h"
#include "text/Hex.h"
#include "values/Named_Values.h"

namespace vornex {
namespace {

TEST(Label_Names, keepsNoneOfAFileThatWouldTakeAllMemory) {
    const Label_Names names(parseLabelFile(
        R"({"format": 1, "labels": [{"name": "A", "type": "3", "at": 0},
                                    {"name": "B", "type": "1[0..2000000000]", "at": 2}]})",
        "f"));
    EXPECT_TRUE(names.tooMany());
    EXPECT_EQ(names.of(0, 2), "bytes 0 to 1");
    EXPECT_EQ(namedValues(names, 0, 2, "ab"), "");
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
    Variable doubleWord;
    doubleWord.text = "Pair[0]";
    doubleWord.bytes = 4;
    doubleWord.elements = 2;
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
        {doubleWord, View::U16, false, "[500, 0]", "F4 01 00 00"},
        {doubleWord, View::U16, false, "[1,2,3,4]", "01 00 02 00 03 00 04 00"},
        {doubleWord, View::U16, false, "[500]", ""},
        {doubleWord, View::U16, false, "500", ""},
        {letters, View::U8, true, "\"Hi\"", "48 69 00 00"},
        {letters, View::U8, false, "\"Hi\"", "48 69"},
        {letters, View::U8, false, "\"Hello\"", ""},
        {letters, View::U8, false, "\"a\\x0A\"", "61 0A"},
    };
    for (const auto& row : rows) {
        std::string bytes;
        try {
            Variable variable = row.variable;
            variable.view = row.view;
            bytes = hexBytes(bytesOfValue(variable, row.wholeArray, row.text));
        } catch (const std::invalid_argument&) {
        }
        EXPECT_EQ(bytes, row.bytes) << row.variable.text << "=" << row.text;
    }
    words.view = View::U16;
    EXPECT_EQ(rawValue(words, std::string("\1\0\2\0", 4)).shown(), "[1, 2]");
    letters.view = View::F32;
    EXPECT_EQ(rawValue(letters, std::string("\0\0\x80\x3F", 4)).shown(), "1");
    EXPECT_EQ(rawValue(letters, "abc").shown(), "61 62 63");  // no whole number of floats
}

TEST(Known_Bytes, tellUnknownStaleAndFreshApart) {
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

TEST(Globs, leaveIndexBracketsAlone) {
    EXPECT_TRUE(globMatches("Motors[*].Speed", "Motors[12].Speed"));
    EXPECT_TRUE(globMatches("*[?]*d", "Motors[2].Axis[1].Speed"));
    EXPECT_FALSE(globMatches("Motors[1]", "Motors1"));
    EXPECT_FALSE(globMatches("*Speed", "Speed.x"));
}

TEST(Status_Text, namesBandAndType) {
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
    EXPECT_TRUE(completions.anyQueued());
    completions.interrupt();
    EXPECT_EQ(completions.wait(late).state, Completion::State::Interrupted);
}

TEST(Completions, endTheWaitWhenTheExchangeStandsStill) {
    Completions completions;
    completions.allowSilence(Milliseconds(10));
    EXPECT_EQ(completions.wait(completions.open()).state, Completion::State::Stalled);
}

}  // namespace
}  // namespace vornex
