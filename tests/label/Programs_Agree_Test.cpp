// One codec: what one program shows of a value is what every other shows, and what all of them take back.
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Sim_Process.h"
#include "Tool_Run.h"

namespace vornex::test {
namespace {

struct Agreed_Value {
    const char* label;
    int address;
    const char* bytes;
    const char* shown;
};

const Agreed_Value Values[] = {
    {"W", 0, "F4 01 00 00", "[500, 0]"},
    {"Floats", 8, "00 00 80 3F 01 00 A0 7F", "[1, nan(0x7FA00001)]"},
    {"Bo", 16, "01", "true"},
    {"Mask", 18, "F4 01", "0x01F4"},
    {"Raw", 20, "F4 01 00 00", "F4 01 00 00"},
    {"Big", 24, "FF FF FF FF FF FF FF FF", "18446744073709551615"},
    {"Real", 32, "00 50 C3 47", "100000"},
};

const char LabelFile[] = R"({"format": 1, "labels": [
{"name": "W", "type": "5", "at": 0, "view": "u16"},
{"name": "Floats", "type": "8", "at": 8, "view": "f32"},
{"name": "Bo", "type": "1", "at": 16, "view": "bool"},
{"name": "Mask", "type": "3", "at": 18, "view": "hex"},
{"name": "Raw", "type": "5", "at": 20, "view": "bytes"},
{"name": "Big", "type": "8", "at": 24},
{"name": "Real", "type": "7", "at": 32, "view": "f32"},
{"name": "Title", "type": "10", "at": 40}]})";

class Programs_Agree : public ::testing::Test {
protected:
    Programs_Agree() {
        std::ofstream(WORK_DIR "/agree.json") << LabelFile;
        sim.emplace(std::vector<std::string>{"-l", WORK_DIR "/agree.json", "-q", "--control", "-"});
    }
    std::string control(const std::string& line) {
        sim->writeLine(line);
        return sim->readLine();
    }
    Outcome tool(const std::string& arguments) {
        return run(arguments + " -l agree.json -t 127.0.0.1:" + std::to_string(sim->port()));
    }
    std::optional<Sim_Process> sim;
};

TEST_F(Programs_Agree, onWhatIsShownAndTakenBack) {
    for (const Agreed_Value& row : Values) {
        const std::string label = row.label, shown = row.shown, at = std::to_string(row.address);
        const std::string size = std::to_string((std::string(row.bytes).size() + 1) / 3);
        SCOPED_TRACE(label);
        EXPECT_EQ(control("set " + at + " " + row.bytes), "ok");
        EXPECT_EQ(control("get " + label), "ok " + shown);
        for (const std::string verb : {"read ", "watch -n 1 "}) {
            const Outcome outcome = tool(verb + label);
            EXPECT_TRUE(outcome.holds(label + " = " + shown + "\n")) << verb << outcome.text;
        }
        EXPECT_EQ(control("set " + at + " 00 00"), "ok");
        EXPECT_EQ(control("set " + label + " " + shown), "ok");
        EXPECT_EQ(control("get " + at + " " + size), std::string("ok ") + row.bytes) << "set";
        EXPECT_EQ(control("set " + at + " 00 00"), "ok");
        EXPECT_EQ(tool("write '" + label + "=" + shown + "'").code, 0);
        EXPECT_EQ(control("get " + at + " " + size), std::string("ok ") + row.bytes) << "write";
    }
}

// The driver reads texts of types 10 and 11 and does not write them.
TEST_F(Programs_Agree, onTexts) {
    EXPECT_EQ(control(R"(set Title "a \x0A")"), "ok");
    EXPECT_EQ(control("get 40 5"), "ok 61 20 0A 00 00");
    EXPECT_EQ(control("get Title"), R"(ok "a \x0A")");
    EXPECT_TRUE(tool("read Title").holds(R"(Title = "a \x0A")"));
}

TEST_F(Programs_Agree, onTheWordsForTrueAndFalse) {
    const struct {
        const char* word;
        const char* outcome;  // of the byte that held 7 before
    } rows[] = {{"on", "01"},  {"On", "01"},    {"TRUE", "01"}, {"1", "01"}, {"off", "00"},
                {"OFF", "00"}, {"False", "00"}, {"0", "00"},    {"2", "07"}, {"yes", "07"}};
    for (const auto& row : rows) {
        const bool isRefused = std::string(row.outcome) == "07";
        EXPECT_EQ(control("set 16 07"), "ok");
        EXPECT_EQ(control(std::string("set Bo ") + row.word).substr(0, 5), isRefused ? "error" : "ok") << row.word;
        EXPECT_EQ(control("get 16 1"), std::string("ok ") + row.outcome) << row.word;
        EXPECT_EQ(control("set 16 07"), "ok");
        EXPECT_EQ(tool(std::string("write Bo=") + row.word).code, isRefused ? 2 : 0) << row.word;
        EXPECT_EQ(control("get 16 1"), std::string("ok ") + row.outcome) << row.word;
    }
}

TEST_F(Programs_Agree, onAListAsLintTellsIt) {
    EXPECT_TRUE(run("labels lint agree.json")
                    .holds("view u16 has 2 bytes, an element 4; it is shown as a list of 2 "
                           "values"));
}

}  // namespace
}  // namespace vornex::test
