// Bare addresses in place of labels, with a label file and without one.
#include <string>

#include <gtest/gtest.h>

#include "Sim_Process.h"
#include "Tool_Run.h"

namespace vornex::test {
namespace {

TEST(Raw_Labels, areReadWrittenAndRefused) {
    Sim_Process sim({"-l", PLANT, "-q"});
    const std::string target = " -t 127.0.0.1:" + std::to_string(sim.port());
    const struct {
        const char* arguments;
        int code;
        const char* text;
    } rows[] = {
        {"write --verify @104:INT=-5", 0, "@104:INT = -5  verified"},
        {"read @0x68:int", 0, "@104:INT = -5\n"},
        {"read @104", 0, "@104:UINT = 65531\n"},
        {"read @104:WORD", 0, "@104:WORD = 0xFFFB\n"},
        {"read @104:BYTE*2", 0, "@104:BYTE[1] = 0xFF\n"},
        {"write --verify '@200:INT*3=[1, 2, 3]'", 0, "verified"},
        {"write --verify @200:INT*3=1", 2, "begins an array of 3 elements"},
        {"read '@200:ARRAY [1..3] OF INT'", 0, "@200:INT[3] = 3\n"},
        {"read '@2000:STRING(8)'", 0, "@2000:STRING(8) = \"Lemonade\"\n"},
        {"read -l " PLANT " Setpoint @104:INT", 0, "Setpoint = -5 rpm\n@104:INT = -5\n"},
        {"watch @104:INT -n 1 --until '@104:INT<0'", 0, "@104:INT = -5\n"},
        {"stats @104:INT*50 -n 2", 0, "packing: 50 variables of 100 bytes"},
        {"snapshot - @104:INT", 0, "@104:INT=-5\n"},
        {"read @4294967294", 0, "@4294967294:UINT = "},
        {"read @4294967295", 2, "'@4294967295': it ends behind the last address"},
        {"read @4294967296", 2, "'@4294967296': address '4294967296' is not a whole number from 0 to 4294967295"},
        {"read @", 2, "'@': address '' is not a whole number"},
        {"read @1OO:INT", 2, "'@1OO:INT': address '1OO'"},
        {"read @100:", 2, "'@100:': "},
        {"read @100:MotorT", 2, "'MotorT' is no elementary type"},
        {"read @100:INT*2 @100:INT", 2, "'@100:INT' is of another length already"},
        {"write @100:INT=40000", 2, "@100:INT: '40000' is not a whole number from -32768 to 32767"},
        {"read @100:INT --trace raw.jsonl", 1, "which has no '@100:INT'"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run(row.arguments + target);
        EXPECT_EQ(outcome.code, row.code) << row.arguments << "\n" << outcome.text;
        EXPECT_TRUE(outcome.holds(row.text)) << row.arguments << "\n" << outcome.text;
    }
}

}  // namespace
}  // namespace vornex::test
