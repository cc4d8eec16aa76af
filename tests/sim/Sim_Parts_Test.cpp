// The simulator's parts that need no connection: motions, value texts, fault rules, expectations, pattern.
#include <algorithm>
#include <cmath>
#include <tuple>

#include <gtest/gtest.h>

#include "sim/Control.h"
#include "sim/Controller.h"
#include "sim/Summary.h"
#include "text/Hex.h"
#include "values/Value_Motion.h"

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
        {"ramp(0,3000,500)", 0, 0, 0},     {"ramp(0,3000,500)", 250, 0, 1500}, {"ramp(0,3000,500)", 500, 0, 0},
        {"ramp(100,200,1000)", 0, 3, 130}, {"sine(0,100,1000)", 0, 0, 50},     {"sine(0,100,1000)", 250, 0, 100},
        {"sine(0,100,1000)", 750, 0, 0},   {"square(5,9,1000)", 499, 0, 5},    {"square(5,9,1000)", 500, 0, 9},
        {"toggle(100)", 99, 0, 0},         {"toggle(100)", 100, 0, 1},         {"toggle(100)", 100, 1, 0},
        {"count(10)", 95, 0, 9},           {"count(10,5,3)", 20, 2, 17},
    };
    for (const Motion_Row& row : rows) {
        EXPECT_NEAR(motionValue(parseMotion(row.text, {View::U16, 2}), row.time, row.element, 1), row.value, 1e-6)
            << row.text << " at " << row.time;
    }
}

TEST(Sim_Motion, randomHoldsStaysInsideAndFollowsTheSeed) {
    const Motion motion = parseMotion("random(-5,5,100)", {View::S16, 2});
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
        {"ramp(0,65536,9)", View::U16, 2, "'65536' is out of the range of u16: 0 to 65535"},
        {"const(-129)", View::S8, 1, "'-129' is not a whole number from -128 to 127"},
        {"ramp(nan,1,5)", View::F32, 4, "'nan' is not a number"},
        {"const(abcdef)", View::Text, 5, "'abcdef' is longer than 5 bytes"},
        {"count(9)", View::Text, 5, "a text cannot move"},
    };
    for (const Refused_Text& row : rows) {
        const std::string error = errorOf([&] { parseMotion(row.text, {row.view, row.bytes}); });
        EXPECT_NE(error.find(row.error), std::string::npos) << row.text << ": " << error;
    }
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
    const Request write = {true, {{200, 4}}, "abcd"};
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
        {"drop@n=0", "'0' is not a whole number from 1 to"},
        {"drop@n=9..5", "upside down"},
        {"drop@every=0", "'0' is not a whole number from 1 to"},
        {"drop@p=1.5", "'1.5' is not a number from 0 to 1"},
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
        EXPECT_EQ(parseExpectation(row.first).metBy(3), row.second) << row.first;
    for (const char* text : {"writes", "writes>", "writes>=x", "writes>=-1"}) {
        EXPECT_NE(errorOf([&] { parseExpectation(text); }), "accepted") << text;
    }
}

// Values from another program.
TEST(Sim_Pattern, bytesBelongToTheirAddress) {
    EXPECT_EQ(hexBytes(patternBytes(0, 2, 0)), "00 5D");
    EXPECT_EQ(hexBytes(patternBytes(100, 2, 1)), "7A 65");
    EXPECT_EQ(hexBytes(patternBytes(0xffffffff, 2, 256)), "F4 00");
    std::uint8_t generation = 0;
    EXPECT_EQ(checkPattern(100, "\x7a\x65", generation), 2u);
    EXPECT_EQ(generation, 1);
    EXPECT_EQ(checkPattern(100, "\x7a\x66", generation), 1u);
}

Plant makePlant(const char* labels) { return Plant(parseLabelFile(labels, "f"), Pattern(), 1); }

TEST(Sim_Plant, aWriteStopsTheMotionItHits) {
    Plant plant =
        makePlant("{\"format\":1,\"labels\":[{\"name\":\"A\",\"type\":\"3[0..2]\",\"at\":10,\"sim\":\"count(10)\"}]}");
    EXPECT_EQ(hexBytes(plant.read({{10, 6}}, 100)[0].data), "0A 00 0B 00 0C 00");
    plant.write(13, "\x77", 100);
    EXPECT_EQ(hexBytes(plant.read({{10, 6}}, 200)[0].data), "14 00 0B 77 16 00");
}

TEST(Sim_Plant, aMotionGivenLaterBeginsThen) {
    Plant plant = makePlant(R"-({"format":1,"labels":[{"name":"A","type":"3","at":10,"sim":"count(10)"},
                                {"name":"B","type":"3","at":12},{"name":"C","type":"3","at":14}]})-");
    plant.setMotion(*plant.find("B"), "ramp(0,100,1000)", 500);
    EXPECT_EQ(hexBytes(plant.peek(10, 6, 500)), "32 00 00 00 00 00");
    EXPECT_EQ(hexBytes(plant.peek(10, 6, 1000)), "64 00 32 00 00 00") << "half of the ramp, beside another motion";
    plant.setMotion(*plant.find("B"), "const(7)", 1000);
    EXPECT_EQ(hexBytes(plant.peek(12, 2, 1500)), "07 00");
    EXPECT_NE(errorOf([&] { plant.setMotion(*plant.find("B"), "ramp(0,100000,1000)", 1500); }), "accepted");
    EXPECT_EQ(hexBytes(plant.peek(12, 2, 1500)), "07 00") << "a motion that is refused changes nothing";
}

TEST(Sim_Plant, aConstIsWrittenAsItWouldBeSet) {
    const struct {
        const char* type;
        const char* view;
        const char* value;
        std::size_t bytes;
        const char* memory;
    } rows[] = {
        {"8", "u64", "18446744073709551615", 8, "FF FF FF FF FF FF FF FF"},
        {"1", "bool", "On", 1, "01"},
        {"5", "u16", "[500, 0]", 4, "F4 01 00 00"},
        {"10", "text", " Hi", 4, "20 48 69 00"},
    };
    for (const auto& row : rows) {
        Plant plant = makePlant((R"({"format":1,"labels":[{"name":"A","at":0,"type":")" + std::string(row.type) +
                                 R"(","view":")" + row.view + R"(","sim":"const()" + row.value + ")\"}]}")
                                    .c_str());
        EXPECT_EQ(hexBytes(plant.peek(0, row.bytes, 5)), row.memory) << row.value;
    }
}

TEST(Sim_Plant, aWriteWithoutRoomChangesNothing) {
    const std::string labels =
        "{\"format\":1,\"labels\":[{\"name\":\"A\",\"type\":\"3\",\"at\":4094,\"sim\":\"count(10)\"}]}";
    Plant plant(parseLabelFile(labels, "f"), Pattern(), 1, 8192);
    const std::tuple<std::uint32_t, std::size_t, bool> rows[] = {
        {4090, 4, true}, {4096, 4096, true}, {4094, 4099, false}, {0xffffffff, 2, false}, {0, 8192, true}};
    for (const auto& [address, bytes, stored] : rows) {
        EXPECT_EQ(plant.write(address, std::string(bytes, '\x77'), 0), stored) << address;
        const std::string there = plant.peek(address, bytes, 50);
        EXPECT_EQ(there == std::string(bytes, '\x77'), stored) << address;
        if (!stored && address == 4094) {
            EXPECT_EQ(hexBytes(there.substr(0, 2)), "05 00") << "the motion was stopped";
        }
    }
    EXPECT_EQ(errorOf([&] { Plant(parseLabelFile(labels, "f"), Pattern(), 1, 4095); }),
              "f:1: label 'A': sim: the memory is full");
}

TEST(Sim_Plant, mistakesInMotionsNameFileLineAndLabel) {
    EXPECT_EQ(
        errorOf([] {
            makePlant("{\"format\":1,\n\"labels\":[\n{\"name\":\"A\",\"type\":\"3\",\"at\":0,\"sim\":\"x(1)\"}]}");
        }),
        "f:3: label 'A': sim: unknown motion 'x'; it is const, ramp, sine, square, toggle, random or count");
}

TEST(Sim_Control, answersEveryLine) {
    Controller controller(makePlant(R"({"format":1,"labels":[{"name":"A","type":"4[1..2]","at":10,"view":"s16"},
                                                      {"name":"F","type":"7","at":20,"view":"f32"}]})"),
                          Fault_Rules(1), [](const std::string&) {});
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {"# a note", ""},
        {"set A[2] -3", "ok"},
        {"set F 0.123456789", "ok, '0.123456789' is stored as 0.12345679, the nearest number that 4 bytes hold"},
        {"get A[2]", "ok -3"},
        {"get 10 4", "ok 00 00 FD FF"},
        {"set 0xb 7f 80", "ok"},
        {"get 10 4\r\n", "ok 00 7F 80 FF"},
        {"get A", "error: no element is called 'A'"},
        {"get A\033[m", "error: no element is called 'A\\x1B[m'"},
        {"get A[3]", "error: no element is called 'A[3]'"},
        {"set A[1] 40000", "error: '40000' is not a whole number from -32768 to 32767"},
        {"set 10", "error: bytes in hex are missing"},
        {"set 10 0", "error: '0' ends in half a byte"},
        {"get 4294967296 1", "error: '4294967296' is not a whole number from 0 to 4294967295"},
        {"fault add crc@n=2", "ok"},
        {"fault list", "crc@n=2 applied 0 of 0\nok"},
        {"fault add crk", "error: fault 'crk': unknown fault"},
        {"fault add crc@n=2", "ok"},
        {"fault add drop", "ok"},
        {"fault remove crc@n=2", "ok"},
        {"fault list", "crc@n=2 applied 0 of 0\ndrop applied 0 of 0\nok"},
        {"fault remove crc", "error: no such rule: 'crc'"},
        {"fault kinds", "drop             no answer\ndelay(MS"},
        {"fault clear", "ok"},
        {"fault list", "ok"},
        {"fault", "error: fault add RULE, remove RULE, list, clear or kinds"},
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
