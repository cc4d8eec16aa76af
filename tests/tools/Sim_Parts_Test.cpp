// The simulator's parts that need no connection: motions, value texts, fault rules, expectations, pattern.
#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "Control.h"
#include "Controller.h"
#include "Value_Motion.h"
#include "Value_Text.h"

namespace vornex::sim {
namespace {

template <class Call>
std::string errorOf(Call call) {
    try {
        call();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "accepted";
}

struct Motion_Row {
    const char* text;
    double time;
    std::uint64_t element;
    double value;
};

TEST(Sim_Motion, movesByTimeAndElement) {
    const Motion_Row rows[] = {
        {"const(42)", 1e9, 3, 42},         {"ramp(0,3000,500)", 0, 0, 0},     {"ramp(0,3000,500)", 250, 0, 1500},
        {"ramp(0,3000,500)", 500, 0, 0},   {"ramp(100,200,1000)", 0, 3, 130}, {"sine(0,100,1000)", 0, 0, 50},
        {"sine(0,100,1000)", 250, 0, 100}, {"sine(0,100,1000)", 750, 0, 0},   {"square(5,9,1000)", 499, 0, 5},
        {"square(5,9,1000)", 500, 0, 9},   {"toggle(100)", 99, 0, 0},         {"toggle(100)", 100, 0, 1},
        {"toggle(100)", 100, 1, 0},        {"count(10)", 95, 0, 9},           {"count(10,5,3)", 20, 2, 17},
    };
    for (const Motion_Row& row : rows) {
        EXPECT_NEAR(motionValue(parseMotion(row.text, View::U16, 2), row.time, row.element, 1), row.value, 1e-6)
            << row.text << " at " << row.time;
    }
}

TEST(Sim_Motion, randomHoldsStaysInsideAndFollowsTheSeed) {
    const Motion motion = parseMotion("random(-5,5,100)", View::S16, 2);
    EXPECT_EQ(motionValue(motion, 100, 0, 1), motionValue(motion, 199, 0, 1));
    int changes = 0;
    for (int step = 0; step < 100; ++step) {
        const double value = motionValue(motion, step * 100, 0, 7);
        EXPECT_EQ(value, motionValue(motion, step * 100, 0, 7));
        EXPECT_LE(std::fabs(value), 5);
        changes += value != motionValue(motion, step * 100 + 100, 0, 7);
    }
    EXPECT_GT(changes, 90);
}

struct Refused_Text {
    const char* text;
    View view;
    std::uint32_t bytes;
    const char* error;
};

TEST(Sim_Motion, refusesWhatMakesNoSense) {
    const Refused_Text rows[] = {
        {"ramp", View::U16, 2, "is not NAME(ARGUMENTS)"},
        {"jump(1,2)", View::U16, 2, "unknown motion 'jump'"},
        {"ramp(0,1)", View::U16, 2, "is not ramp(LOW,HIGH,PERIOD)"},
        {"ramp(0,x,5)", View::U16, 2, "'x' is not a number"},
        {"ramp(0,1,0)", View::U16, 2, "at least 1 ms"},
        {"ramp(5,1,9)", View::U16, 2, "low value is above"},
        {"ramp(0,65536,9)", View::U16, 2, "does not fit u16"},
        {"const(-129)", View::S8, 1, "does not fit s8"},
        {"const(nan)", View::F32, 4, "'nan' is not a number"},
        {"const(abcdef)", View::Text, 5, "longer than the element"},
        {"count(9)", View::Text, 5, "a text cannot move"},
    };
    for (const Refused_Text& row : rows) {
        const std::string error = errorOf([&] { parseMotion(row.text, row.view, row.bytes); });
        EXPECT_NE(error.find(row.error), std::string::npos) << row.text << ": " << error;
    }
}

struct Value_Row {
    const char* text;
    View view;
    std::uint32_t bytes;
    const char* hex;
    const char* shown;
};

TEST(Sim_Value, fromTextToBytesAndBack) {
    const Value_Row rows[] = {
        {"0x1234", View::U16, 2, "34 12", "4660"},
        {"-2", View::S16, 2, "fe ff", "-2"},
        {"18446744073709551615", View::U64, 8, "ff ff ff ff ff ff ff ff", "18446744073709551615"},
        {"-9223372036854775807", View::S64, 8, "01 00 00 00 00 00 00 80", "-9223372036854775807"},
        {"010", View::U8, 1, "0a", "10"},
        {"1e3", View::U16, 2, "e8 03", "1000"},
        {"1.5", View::F32, 4, "00 00 c0 3f", "1.5"},
        {"0.1", View::F64, 8, "9a 99 99 99 99 99 b9 3f", "0.1"},
        {"true", View::Bool, 1, "01", "true"},
        {"258", View::Hex, 2, "02 01", "02 01"},
        {"Hi", View::Text, 4, "48 69 00 00", "Hi"},
        {"a\nb\x7F", View::Text, 4, "61 0a 62 7f", "a\\x0ab\\x7f"},
        {"0a0b", View::Bytes, 3, "0a 0b 00", "0a 0b 00"},
    };
    for (const Value_Row& row : rows) {
        const Bytes bytes = parseValue(row.text, row.view, row.bytes);
        EXPECT_EQ(hexText(bytes), row.hex) << row.text;
        EXPECT_EQ(formatValue(bytes, row.view), row.shown) << row.text;
    }
    EXPECT_NE(errorOf([] { parseValue("256", View::U8, 1); }).find("does not fit"), std::string::npos);
    EXPECT_NE(errorOf([] { parseValue("1x", View::U8, 1); }).find("not a number"), std::string::npos);
}

struct Rule_Row {
    const char* rule;
    const char* hits;  // of twelve requests, 1 where the rule hits: read 100+2 and write 200+4 in turn
};

TEST(Sim_Faults, selectorsHitWhatTheySay) {
    const Rule_Row rows[] = {
        {"drop", "111111111111"},
        {"drop@n=3", "001000000000"},
        {"drop@n=5..6", "000011000000"},
        {"drop@every=4", "000100010001"},
        {"drop@cmd=write,n=2", "000100000000"},
        {"drop@cmd=read", "101010101010"},
        {"drop@addr=101..150", "101010101010"},
        {"drop@addr=203", "010101010101"},
        {"drop@addr=204", "000000000000"},
        {"drop@every=2,addr=0..150", "001000100010"},
        {"empty", "101010101010"},
        {"swap", "000000000000"},
        {"stale", "011111111111"},
        {"drop@p=0", "000000000000"},
        {"drop@p=1", "111111111111"},
    };
    const Request read = {false, {{100, 2}}, {}};
    const Request write = {true, {{200, 4}}, {1, 2, 3, 4}};
    for (const Rule_Row& row : rows) {
        Fault_Rules rules(1);
        rules.add(row.rule);
        std::string hits;
        for (int i = 0; i < 12; ++i)
            hits += rules.select(i % 2 ? write : read, i > 0).empty() ? '0' : '1';
        EXPECT_EQ(hits, row.hits) << row.rule;
    }
}

TEST(Sim_Faults, chanceFollowsTheSeed) {
    const auto hits = [](std::uint64_t seed) {
        Fault_Rules rules(seed);
        rules.add("drop@p=0.25");
        std::string text;
        for (int i = 0; i < 1000; ++i)
            text += rules.select({false, {{1, 1}}, {}}, true).empty() ? '0' : '1';
        return text;
    };
    EXPECT_EQ(hits(3), hits(3));
    EXPECT_NE(hits(3), hits(4));
    const std::string row = hits(3);
    EXPECT_NEAR(static_cast<double>(std::count(row.begin(), row.end(), '1')), 250, 60);
}

TEST(Sim_Faults, refusesRulesItDoesNotUnderstand) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "unknown fault ''"},
        {"crc(1)", "too many arguments"},
        {"delay(5", "')' is missing"},
        {"delay(x)", "'x' is not a whole number"},
        {"slice(0)", "at least 1 byte"},
        {"drop@", "unknown selector ''"},
        {"drop@n=0", "n counts from 1"},
        {"drop@n=9..5", "upside down"},
        {"drop@every=0", "every is at least 1"},
        {"drop@p=1.5", "p is from 0 to 1"},
        {"drop@cmd=both", "unknown selector 'cmd=both'"},
        {"drop@addr=4294967296", "not a whole number from 0 to 4294967295"},
    };
    for (const auto& row : rows) {
        const std::string error = errorOf([&] { parseFault(row.first); });
        EXPECT_NE(error.find(row.second), std::string::npos) << row.first << ": " << error;
    }
}

TEST(Sim_Expectation, comparesAsWritten) {
    const std::pair<const char*, bool> rows[] = {{"writes>=3", true}, {"writes >= 4", false}, {"writes<=3", true},
                                                 {"writes<3", false}, {"writes=3", true},     {"writes!=3", false},
                                                 {"writes>2", true},  {"writes==2", false}};
    for (const auto& row : rows)
        EXPECT_EQ(isMet(parseExpectation(row.first), 3), row.second) << row.first;
    for (const char* text : {"writes", "writes>", "writes>=x", "writes>=-1"}) {
        EXPECT_NE(errorOf([&] { parseExpectation(text); }), "accepted") << text;
    }
}

// Values from another program.
TEST(Sim_Pattern, bytesBelongToTheirAddress) {
    EXPECT_EQ(hexText(patternBytes(0, 2, 0)), "00 5d");
    EXPECT_EQ(hexText(patternBytes(100, 2, 1)), "7a 65");
    EXPECT_EQ(hexText(patternBytes(0xffffffff, 2, 256)), "f4 00");
    std::uint8_t generation = 0;
    EXPECT_EQ(checkPattern(100, {0x7a, 0x65}, generation), 2u);
    EXPECT_EQ(generation, 1);
    EXPECT_EQ(checkPattern(100, {0x7a, 0x66}, generation), 1u);
}

Plant makePlant(const char* labels) { return Plant(parseLabelFile(labels, "f"), Pattern(), 1); }

TEST(Sim_Plant, aWriteStopsTheMotionItHits) {
    Plant plant =
        makePlant("{\"format\":1,\"labels\":[{\"name\":\"A\",\"type\":\"3[0..2]\",\"at\":10,\"sim\":\"count(10)\"}]}");
    EXPECT_EQ(hexText(plant.read({{10, 6}}, 100)[0].data), "0a 00 0b 00 0c 00");
    plant.write(13, {0x77}, 100);
    EXPECT_EQ(hexText(plant.read({{10, 6}}, 200)[0].data), "14 00 0b 77 16 00");
}

TEST(Sim_Plant, mistakesInMotionsNameFileLineAndLabel) {
    EXPECT_EQ(
        errorOf([] {
            makePlant("{\"format\":1,\n\"labels\":[\n{\"name\":\"A\",\"type\":\"3\",\"at\":0,\"sim\":\"x(1)\"}]}");
        }),
        "f:3: label 'A': sim: unknown motion 'x'; it is const, ramp, sine, square, toggle, random or count");
}

TEST(Sim_Control, answersEveryLine) {
    Controller controller(makePlant(R"({"format":1,"labels":[{"name":"A","type":"4[1..2]","at":10,"view":"s16"}]})"),
                          Fault_Rules(1), [](const std::string&) {});
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {"# a note", ""},
        {"set A[2] -3", "ok"},
        {"get A[2]", "ok -3"},
        {"get 10 4", "ok 00 00 fd ff"},
        {"set 0xb 7f 80", "ok"},
        {"get 10 4\r\n", "ok 00 7f 80 ff"},
        {"get A", "error: no element is called 'A'"},
        {"get A[3]", "error: no element is called 'A[3]'"},
        {"set A[1] 40000", "error: 40000.000000 does not fit s16 in 2 bytes"},
        {"set 10 0", "error: '0' is not hex bytes"},
        {"get 4294967296 1", "error: '4294967296' is not a whole number from 0 to 4294967295"},
        {"fault add crc@n=2", "ok"},
        {"fault list", "crc@n=2 applied 0 of 0\nok"},
        {"fault add crk", "error: fault 'crk': unknown fault"},
        {"fault clear", "ok"},
        {"fault list", "ok"},
        {"fault", "error: fault add RULE, fault list or fault clear"},
        {"stats", "ok {}"},
        {"stop", "error: unknown command 'stop'"},
    };
    for (const auto& row : rows) {
        const std::string answer =
            runControlLine(row.first, controller, {[] { return 0.0; }, [] { return "{}"; }, [] {}});
        EXPECT_EQ(answer.substr(0, std::string(row.second).size()), row.second) << row.first;
        EXPECT_EQ(answer.empty(), std::string(row.second).empty()) << row.first;
    }
}

}  // namespace
}  // namespace vornex::sim
