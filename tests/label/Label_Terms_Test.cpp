// Labels in people's own terms, types and values, from the file through the driver to the controller and back.
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "Sim_Process.h"
#include "Tool_Run.h"

namespace vornex::test {
namespace {

// A text of n bytes is an array of bytes to the driver; nothing of it may leak into its neighbours.
TEST(Label_Terms, readsAndWritesTextsAndTypesByTheirNames) {
    std::ofstream(WORK_DIR "/types.json") << R"json({"format": 1, "structs": {"T": {"size": 8, "members": [
        {"name": "Id", "type": "INT", "at": 0}, {"name": "Name", "type": "STRING(6)", "at": 2}]}}, "labels": [
        {"name": "Names", "type": "ARRAY [1..3] OF STRING(5)", "at": "0x10"}, {"name": "Ts", "type": "T[0..1]", "at": 64},
        {"name": "Title", "type": "STRING(12)", "at": 100, "sim": "const(Lemonade)"},
        {"name": "Level", "type": "LREAL", "at": 112}]})json";
    Sim_Process sim({"-l", WORK_DIR "/types.json", "-q"});
    const struct {
        const char* arguments;
        int code;
        const char* text;
    } rows[] = {
        {"read Title", 0, "Title = \"Lemonade\"\n"},
        {"write --verify Title=Cola Ts[1].Name=ab Ts[1].Id=-3", 0, "Title = \"Cola\"  verified"},
        {"dump 100 12", 0, "43 6F 6C 61 00 00 00 00 00 00 00 00"},  // nothing is left of the old text
        {"write Names[2]=hello --verify", 0, "Names[2] = \"hello\"  verified"},
        {"write Names[2]=hello!", 2, "'hello!' is longer than 5 bytes"},
        {"read Names", 0, "Names[1] = \"\"\nNames[2] = \"hello\"\nNames[3] = \"\"\n"},
        {"write 'Names=[\"a, b\", c, \"\"]' --verify", 0, "Names[1] = [\"a, b\", \"c\", \"\"]  verified"},
        {"read 'Names[%%]' --index 2 -o json", 0, "\"label\":\"Names[2]\",\"value\":\"c\","},
        {"read 'Ts[%%].Name' --index 1", 0, "Ts[1].Name = \"ab\""},
        {"watch Names Ts -n 1 -i 1", 0, "Ts[1].Id = -3"},
        {"read Level --as LINT", 0, "Level = 0\n"},
        {"read Level --as INTT", 1, "--as"},
        {"check --all", 0, "9 resolve, 0 do not"},
        {"check Names[3]", 0, "-> Names[3,0]  address 26  type 1"},
        {"ls Ts", 0, "  Name    STRING(6)  text"},
        {"labels convert types.json | head -n 5", 0, "label,Names,STRING(5)[1..3],16,,,,"},
    };
    const std::string options = " -l types.json -t 127.0.0.1:" + std::to_string(sim.port());
    for (const auto& row : rows) {
        const std::string arguments = row.arguments;
        const bool isOffline = arguments.compare(0, 6, "labels") == 0;
        const bool hasNoTarget = isOffline || arguments[0] == 'c' || arguments[0] == 'l';
        const Outcome outcome = run(isOffline ? arguments : arguments + (hasNoTarget ? " -l types.json" : options));
        EXPECT_EQ(outcome.code, row.code) << row.arguments << "\n" << outcome.text;
        EXPECT_TRUE(outcome.holds(row.text)) << row.arguments << "\n" << outcome.text;
    }
}

}  // namespace
}  // namespace vornex::test
