// Recipes against a simulator: written whole or with a word about each value, kept, and compared.
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "Sim_Process.h"
#include "Tool_Run.h"

namespace vornex::test {
namespace {

std::string fileOf(const std::string& name, const std::string& text) {
    std::ofstream(WORK_DIR + ("/" + name)) << text;
    return name;
}

struct Step {
    std::string arguments;
    int code;
    const char* text;
};

void expectSteps(const Sim_Process& sim, const std::vector<Step>& steps) {
    for (const Step& step : steps) {
        const Outcome outcome = run(step.arguments + on(sim.port()));
        EXPECT_EQ(outcome.code, step.code) << step.arguments << "\n" << outcome.text;
        EXPECT_TRUE(outcome.holds(step.text)) << step.arguments << "\n" << outcome.text;
    }
}

// What is kept, changed and written again is as before, in each of the forms.
TEST(Recipes, leadBackToTheSnapshot) {
    Sim_Process sim({"-l", PLANT, "-q"});
    for (const char* file : {"kept.csv", "kept.json", "kept.txt"}) {
        const std::string name = file;
        const std::string labels =
            " 'Recipe*' Setpoint 'Motors[1].Axis[1].Setpoint' Enable 'Line[1].Inlet.Drive' Buf[3]";
        expectSteps(sim, {
                             {"write --verify Buf[3]=7 Setpoint=-3", 0, "verified"},
                             {"snapshot " + name + " --force" + labels, 0, "13 values in "},
                             {"snapshot " + name + labels, 1, "exists"},
                             {"compare " + name, 0, "0 of 13 values differ"},
                             {"write Recipe[2]=-7 Motors[1].Axis[1].Setpoint=0.1 Enable=0 Buf[3]=0", 0, "acknowledged"},
                             {"compare " + name, 5, "4 of 13 values differ"},
                             {"compare -o csv " + name, 5, "Motors[1].Axis[1].Setpoint,125,0.1,mm,520"},
                             {"write --verify -f " + name, 0, "Motors[1].Axis[1].Setpoint = 125 mm  verified"},
                             {"compare " + name, 0, "0 of 13 values differ"},
                         });
    }
    expectSteps(sim, {
                         {"snapshot - Setpoint -o csv" + on(sim.port()) + "| " TOOL " write -f -", 0,
                          "Setpoint = -3 rpm  acknowledged"},
                         {"snapshot kept.txt Setpoint --append", 1, "a snapshot is a whole file"},
                     });
}

TEST(Recipes, areCheckedBeforeTheFirstByteIsSent) {
    Sim_Process sim({"-l", PLANT, "-q", "-o", "json"});
    expectSteps(sim, {
                         {"write -f " + fileOf("r1", "Setpoint=5\nSpede=1\n"), 2, "r1:2: no label 'Spede' in "},
                         {"write -f " + fileOf("r2", "Setpoint=5\nEnable=2\n"), 2, "r2:2: Enable: '2' is neither true"},
                         {"write -f " + fileOf("r3", "Setpoint=5\nProduct=\"x\"\n"), 2, "r3:2: 'Product' has type 10"},
                         {"write -f r9 Setpoint=1", 2, "r9: cannot be read"},
                         {"write -f r1 Setpoint", 1, "'Setpoint' is not LABEL=VALUE"},
                         {"write", 1, "nothing to write"},
                         {"compare r1", 2, "r1:2: no label 'Spede' in "},
                         {"write --dry-run -f " + fileOf("r4", "Setpoint=5\n"), 0, "Setpoint at 104, 2 bytes"},
                     });
    EXPECT_EQ(sim.finish(), 0);
    EXPECT_EQ(sim.counted("requests"), 0);
}

// The second of three writes gets no answer: the first is told, the third is or is not tried.
TEST(Recipes, tellWhatBecameOfEachValue) {
    const std::string recipe = fileOf("three", "Setpoint=5\nRecipe[1]=6\nRecipe[2]=7\n");
    const std::string cut = " -R 0 -T 100 -f " + recipe;
    const struct {
        const char* option;
        std::vector<const char*> texts;
        long written;  // bytes; the one without an answer too
    } rows[] = {
        {"",
         {"Setpoint = 5 rpm  acknowledged\n", "Recipe[1] = 6  may not be written\n", "Recipe[2] = 7  not tried\n",
          "of 3 values 1 were acknowledged, 1 may not be written, 1 were not tried"},
         4},
        {"--keep-going",
         {"Recipe[1] = 6  may not be written\n", "Recipe[2] = 7  acknowledged\n", "2 were acknowledged, 1 may not"},
         6},
        {"--keep-going --verify",
         {"Setpoint = 5 rpm  verified\n", "Recipe[1] = 6  may not be written\n", "Recipe[2] = 7  verified\n"},
         6},
        {"--verify",
         {"Setpoint = 5 rpm  acknowledged\n", "Recipe[1] = 6  may not be written\n", "Recipe[2] = 7  not tried\n"},
         4},
    };
    for (const auto& row : rows) {
        Sim_Process sim({"-l", PLANT, "-q", "--fault", "drop@cmd=write,n=2", "-o", "json"});
        const Outcome outcome = run(std::string("write ") + row.option + cut + on(sim.port()));
        EXPECT_EQ(outcome.code, 4) << row.option << "\n" << outcome.text;
        for (const char* text : row.texts)
            EXPECT_TRUE(outcome.holds(text)) << row.option << "\n" << outcome.text;
        EXPECT_EQ(sim.finish(), 0);
        EXPECT_EQ(sim.counted("bytesWritten"), row.written) << row.option;
    }
}

TEST(Recipes, aSnapshotThatIsNotWholeIsNone) {
    Sim_Process sim({"-l", PLANT, "-q", "--fault", "drop@n=1"});
    const std::string file = WORK_DIR "/half.csv";
    std::filesystem::remove(file);
    const Outcome outcome = run("snapshot half.csv Setpoint Product -R 0 -T 100" + on(sim.port()));
    EXPECT_EQ(outcome.code, 4) << outcome.text;
    EXPECT_TRUE(outcome.holds("nothing is written")) << outcome.text;
    EXPECT_FALSE(std::filesystem::exists(file));
}

}  // namespace
}  // namespace vornex::test
