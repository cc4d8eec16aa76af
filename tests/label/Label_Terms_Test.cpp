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

TEST(Label_Terms, showsAndTakesValuesAsTheLabelFileMeansThem) {
    Sim_Process sim({"-l", PLANT, "-q", "--control", "-"});
    sim.writeLine("set Flow 161.2");
    EXPECT_EQ(sim.readLine(), "ok");
    const struct {
        const char* arguments;
        int code;
        const char* text;
    } rows[] = {
        {"read Flow", 0, "Flow = 161.2 l/min (high)\n"},
        {"read Flow -o json", 0, "\"value\":161.2,\"raw\":1612,\"unit\":\"l/min\",\"band\":\"high\""},
        {"read --raw Flow", 0, "Flow = 1612 (high)\n"},
        {"read Flow --as u16", 0, "Flow = 1612\n"},
        {"write Flow=12.34 --verify", 0, "Flow = 12.3 l/min  verified"},
        {"write --raw Flow=125", 0, "Flow = 125  acknowledged"},
        {"read Flow", 0, "Flow = 12.5 l/min\n"},
        {"write Flow=250.1", 2, "Flow: '250.1' is above the most of what may be written, 250 l/min"},
        {"write Flow=65535 --as UINT", 2, "'-0.1' is below the least"},
        {"write --raw Flow=-1", 2, "'-0.1' is below the least of what may be written, 0 l/min"},
        {"write 'Mode=by hand' --verify", 0, "Mode = by hand  verified"},
        {"write Mode=automtic", 2, "did you mean 'automatic'?"},
        {"read Mode -o csv", 0, ",Mode,by hand,1,,"},
        {"watch Mode --until 'Mode==by hand' -n 50", 0, "Mode = by hand"},
        {"watch Flow --until 'Flow<12.6' -n 50", 0, "Flow = 12.5 l/min"},
        {"watch Flow --raw -n 1 -i 1", 0, "Flow = 125\n"},
        {"read Flow Mode -o json | TOOL write -f - --verify", 0, "Mode = by hand  verified"},
        {"read --raw Flow -o json | TOOL write -f - --verify", 0, "Flow = 125  verified"},
        {"snapshot - Flow Mode", 0, "Flow=12.5\nMode=by hand\n"},
        // a bit changes alone, in whatever the others hold
        {"write Alarms=0x00010010", 0, "Alarms = 0x00010010  acknowledged"},
        {"write Alarms.Overload=on", 0, "Alarms.Overload = true  verified"},
        {"read Alarms Alarms.Overload Alarms.Door", 0,
         "Alarms = 0x00010110\nAlarms.Overload = true\nAlarms.Door = false\n"},
        {"write Alarms.Overload=off Alarms.Door=1", 0, "what the controller changes in the other bits"},
        {"read Alarms", 0, "Alarms = 0x00018010"},
        {"watch Alarms.Door -n 1 -i 1 -o json", 0, "\"label\":\"Alarms.Door\",\"value\":true,\"raw\":true"},
        {"read Alarms.Dor", 2, "'Alarms' has no bit 'Dor'; did you mean 'Door'?"},
        {"write Alarms.Door=2", 2, "neither true"},
        {"write Alarms.Door=on --dry-run", 0, "its 4 bytes at 120 are read, changed and written"},
    };
    for (const auto& row : rows) {
        std::string arguments = row.arguments;
        const std::size_t pipe = arguments.find(" |");
        arguments.insert(std::min(pipe, arguments.size()), on(sim.port()));
        const std::size_t second = pipe == std::string::npos ? pipe : arguments.find("TOOL", pipe);
        if (second != std::string::npos) arguments.replace(second, 4, TOOL) += on(sim.port());
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.code, row.code) << row.arguments << "\n" << outcome.text;
        EXPECT_TRUE(outcome.holds(row.text)) << row.arguments << "\n" << outcome.text;
    }
    sim.writeLine("get Flow");
    EXPECT_EQ(sim.readLine(), "ok 12.5");
    sim.writeLine("set Mode automatic");
    EXPECT_EQ(sim.readLine(), "ok");
    sim.writeLine("get 126 2");
    EXPECT_EQ(sim.readLine(), "ok 02 00");
}

}  // namespace
}  // namespace vornex::test
