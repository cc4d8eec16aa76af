// Numbers, characters and columns, as every program reads and aligns them.
#include <cmath>
#include <cstring>
#include <stdexcept>

#include <gtest/gtest.h>

#include "text/Hex.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex {
namespace {

template <class Read>
std::string outcomeOf(Read read) {
    try {
        return std::to_string(read());
    } catch (const std::invalid_argument& refusal) {
        return refusal.what();
    }
}

TEST(Number, isTheSameToTheLastDigit) {
    const struct {
        const char* a;
        const char* b;
        bool same;
    } rows[] = {
        {"0.1", "0.10", true},
        {"1e-1", "0.1", true},
        {"+100", "1E+2", true},
        {"0x77359400", "2e+09", true},
        {"-0", "0.0", false},
        {"0e5", "0", true},
        {"-1.5", "1.5", false},
        {"00.0125", "1.25e-2", true},
        {"16777217", "16777216", false},
        {"9007199254740993", "9007199254740992", false},
        {"0.30000000000000001", "0.3", false},
        {"1000", "100", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(sameNumber(row.a, row.b), row.same) << row.a << " and " << row.b;
}

TEST(Number, isTheWholeTextWithinItsRange) {
    const struct {
        const char* text;
        const char* asByte;   // unsigned, to 255
        const char* asSmall;  // signed, -128 to 127
    } rows[] = {
        {"0", "0", "0"},
        {"010", "10", "10"},
        {"0x1F", "31", "31"},
        {"0X1f", "31", "31"},
        {"127", "127", "127"},
        {"255", "255", ""},
        {"256", "", ""},
        {"-1", "", "-1"},
        {"+1", "", "1"},
        {"-0x80", "", "-128"},
        {"-129", "", ""},
        {"18446744073709551616", "", ""},
        {"-18446744073709551615", "", ""},
        {"", "", ""},
        {"0x", "", ""},
        {"0x-1", "", ""},
        {"--1", "", ""},
        {" 1", "", ""},
        {"1 ", "", ""},
        {"1e2", "", ""},
        {"1.0", "", ""},
        {"0b1", "", ""},
    };
    for (const auto& row : rows) {
        const std::string quoted = "'" + std::string(row.text) + "' is not a whole number from ";
        EXPECT_EQ(outcomeOf([&] { return wholeNumber<std::uint8_t>(row.text); }),
                  *row.asByte ? row.asByte : quoted + "0 to 255");
        EXPECT_EQ(outcomeOf([&] { return wholeNumber<std::int8_t>(row.text); }),
                  *row.asSmall ? row.asSmall : quoted + "-128 to 127");
    }
    EXPECT_EQ(wholeNumber<std::int64_t>("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(wholeNumber<std::uint64_t>("18446744073709551615"), std::numeric_limits<std::uint64_t>::max());
}

TEST(Number, realOnesAreReadWholeToo) {
    const struct {
        const char* text;
        const char* shown;  // empty: refused
    } rows[] = {
        {"1.5", "1.5"}, {"-1e3", "-1000"}, {"+.5", "0.5"}, {"1e+05", "100000"}, {"1234567", "1234567"},
        {"0x10", "16"}, {"0.1", "0.1"},    {"-0", "-0"},   {"inf", "inf"},      {"1e-45", "1e-45"},
        {"1e39", ""},   {"1.5 ", ""},      {" 1", ""},     {"1,5", ""},         {"", ""},
        {"+", ""},      {"+-1", ""},       {"1.5f", ""},
    };
    for (const auto& row : rows) {
        const std::optional<float> number = readReal<float>(row.text);
        EXPECT_EQ(number ? shortestNumber(*number) : "", row.shown) << row.text;
    }
    EXPECT_THROW(realNumber("nan", 0, 1), std::invalid_argument);
    EXPECT_THROW(realNumber("-0.1", 0, 1), std::invalid_argument);
}

// Of every exponent, some numbers: the text has the fewest digits that lead back. Below a power of two the next double
// is only half as far as the one above it: there a text rounded to that many digits can be its neighbour's.
TEST(Number, theShortestTextLeadsBack) {
    for (int exponent = -1074; exponent < 1024; ++exponent) {
        const double number = std::ldexp(1, exponent);
        const std::string text = shortestNumber(number);
        ASSERT_EQ(readReal<double>(text), number) << text;
        ASSERT_EQ(std::strtod(text.c_str(), nullptr), number) << text;
    }
    for (std::uint32_t bits = 0; bits < 0x7F800000; bits += 104729) {
        float number = 0;
        std::memcpy(&number, &bits, sizeof number);
        const std::string text = shortestNumber(number);
        ASSERT_EQ(readReal<float>(text), number) << text;
        ASSERT_EQ(std::strtof(text.c_str(), nullptr), number) << text;
    }
}

TEST(Text, columnsAreThoseOfATerminal) {
    const struct {
        const char* text;
        std::size_t columns;
    } rows[] = {
        {"", 0},
        {"Speed", 5},
        {"\xC2\xB0"
         "C",
         2},                              // degree sign
        {"\xE6\xB8\xA9\xE5\xBA\xA6", 4},  // two ideographs
        {"\xEF\xBC\xA1", 2},              // full-width A
        {"e\xCC\x81", 1},                 // with a combining accent
        {"\xF0\x9F\x94\xA5", 2},          // beyond 16 bits
        {"\xFF", 1},                      // no UTF-8: shown as some mark
    };
    for (const auto& row : rows)
        EXPECT_EQ(displayWidth(row.text), row.columns) << row.text;
    EXPECT_EQ(padded("\xE6\xB8\xA9", 4) + "|", "\xE6\xB8\xA9  |");
    EXPECT_EQ(padded("ab", 4, Align::Right), "  ab");
    EXPECT_EQ(padded("abcde", 4), "abcde");
}

TEST(Text, onlyWellFormedCharactersCount) {
    for (const char* text : {"", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x94\xA5"})
        EXPECT_TRUE(isUtf8(text)) << text;
    for (const char* text : {"\x80", "\xC0\x80", "\xC3", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF5"})
        EXPECT_FALSE(isUtf8(text)) << hexBytes(text);
}

TEST(Text, hexIsWholeBytes) {
    EXPECT_EQ(hexBytes(bytesOfHex("01f400 ff 0A")), "01 F4 00 FF 0A");
    EXPECT_EQ(hexDigits(500, 4), "01F4");
    for (const char* text : {"1", "012", "0 1", "0x01", "zz"})
        EXPECT_THROW(bytesOfHex(text), std::invalid_argument) << text;
}

}  // namespace
}  // namespace vornex
