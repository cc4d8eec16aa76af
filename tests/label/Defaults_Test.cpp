// Where a value comes from that the command line leaves out: environment, vornex.toml, label file.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "Process.h"

namespace vornex::test {
namespace {

namespace fs = std::filesystem;

// line3/vornex.toml for who stands in line3/deep/, own/vornex/vornex.toml for who stands beside it.
class Settings_File : public testing::Test {
protected:
    Settings_File() {
        fs::remove_all(root);
        for (const char* folder : {"line3/deep", "beside", "own/vornex"})
            fs::create_directories(root / folder);
        fs::copy_file(PLANT, root / "line3/plant.json");
        write("own/vornex/vornex.toml", "target = '10.9.9.9:2000'\n");
    }
    void write(const char* file, const std::string& text) const { std::ofstream(root / file) << text; }
    Outcome runIn(const char* folder, const std::string& environment, const std::string& command) const {
        return runCommand((root / folder).string(), "env -u VORNEX_LABELS -u VORNEX_TARGET XDG_CONFIG_HOME=" +
                                                        (root / "own").string() + " " + environment + " " + command);
    }

    const fs::path root = fs::path(WORK_DIR) / "defaults";
    const std::string line3 = (root / "line3").string();
};

TEST_F(Settings_File, theCommandLineBeatsTheEnvironmentAndThatTheFile) {
    write("line3/vornex.toml",
          "# the line\nlabels = \"plant.json\"\ntarget = press3   # the one that runs\nretries = 4\n\n"
          "[controllers.press3]\ntarget = \"10.0.0.3:2000\"\ntimeout = 3000\n[controllers.press4] # spare\n"
          "target = 'plc4:2000'\nlabels = /labels/4.json\nretries = 0\n");
    const std::string file = line3 + "/vornex.toml";
    const struct {
        const char* folder;
        const char* environment;
        const char* arguments;
        std::string line;  // as -o csv has it
    } rows[] = {
        {"line3/deep", "", "", "labels," + line3 + "/plant.json," + file + ":2"},
        {"line3/deep", "", "", "target,10.0.0.3:2000," + file + ":7"},
        {"line3", "", "", "timeout,3000," + file + ":8"},
        {"line3", "", "", "retries,4," + file + ":4"},
        {"line3", "", "", "max-bytes,240,built in"},
        {"line3", "", "", "controllers.press4,plc4:2000," + file + ":10"},
        {"line3", "", "-t press4", "target,plc4:2000," + file + ":10"},
        {"line3", "", "-t press4", "labels,/labels/4.json," + file + ":11"},
        {"line3", "", "-t press4", "retries,0," + file + ":12"},
        {"line3", "", "-t press4", "timeout,1000,built in"},
        {"line3", "", "-t 1.2.3.4:5", "target,1.2.3.4:5,command line"},
        {"line3", "", "-t 1.2.3.4:5 -T 7", "timeout,7,command line"},
        {"line3", "VORNEX_TARGET=press4", "", "retries,0," + file + ":12"},
        {"line3", "VORNEX_TARGET=1.1.1.1:1", "", "target,1.1.1.1:1,VORNEX_TARGET"},
        {"line3", "VORNEX_TARGET=1.1.1.1:1", "-t press3", "target,10.0.0.3:2000," + file + ":7"},
        {"line3", "VORNEX_LABELS=x.json", "-t press4", "labels,x.json,VORNEX_LABELS"},
        {"line3", "VORNEX_LABELS=x.json", "-l y.json", "labels,y.json,command line"},
        {"beside", "", "", "labels,,nowhere"},
        {"beside", "", "", "target,10.9.9.9:2000," + (root / "own/vornex/vornex.toml").string() + ":1"},
        {"beside", "XDG_CONFIG_HOME=/nowhere", "-l ../line3/plant.json", "target,127.0.0.1:2000,../line3/plant.json"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = runIn(row.folder, row.environment, std::string(TOOL " -o csv config ") + row.arguments);
        EXPECT_EQ(outcome.code, 0) << row.line << "\n" << outcome.text;
        EXPECT_TRUE(outcome.holds("\n" + row.line + "\n")) << row.line << "\n" << outcome.text;
    }
}

TEST_F(Settings_File, mistakesNameThePlace) {
    const struct {
        const char* file;
        const char* arguments;
        const char* text;
    } rows[] = {
        {"labels\n", "config", "vornex.toml:1: 'labels' is not NAME = VALUE"},
        {"\nlables = x\n", "config", "vornex.toml:2: 'lables' cannot be set; did you mean 'labels'?"},
        {"labels =\n", "config", "vornex.toml:1: "},
        {"labels = 'a # b'\n", "config", "vornex.toml:1: the quotes are not closed; a value cannot hold #"},
        {"labels = a\nlabels = b\n", "config", "vornex.toml:2: 'labels' stands twice"},
        {"[presses.p1]\n", "config", "vornex.toml:1: section 'presses.p1' is not [controllers.NAME]"},
        {"[controllers.p 1]\n", "config", "is not [controllers.NAME] with a name of letters"},
        {"[controllers.p1\n", "config", "vornex.toml:1: '[controllers.p1' is no section"},
        {"[controllers.p1]\ntimeout = 5\n", "config", "controller 'p1' has no target"},
        {"timeout = soon\n", "config", "vornex.toml:1: --timeout: 'soon' is not a whole number from 1 to 600000"},
        {"[controllers.press1]\ntarget = 'h:1'\n", "-t pres1 read Speed", "did you mean 'press1'?"},
        {"", "-t press1 read Speed", "'press1' is not HOST:PORT: there is no port, and no controller of "},
        {"target = 'h:port'\n", "read Speed", "vornex.toml:1: target 'h:port' is not HOST:PORT: a port is a number"},
    };
    for (const auto& row : rows) {
        write("line3/vornex.toml", row.file);
        const Outcome outcome = runIn("line3", "", std::string(TOOL " ") + row.arguments);
        EXPECT_EQ(outcome.code, 1) << row.file << "\n" << outcome.text;
        EXPECT_TRUE(outcome.holds(row.text)) << row.file << "\n" << outcome.text;
    }
    EXPECT_EQ(runIn("line3", "", TOOL " --help").code, 0);  // what is wrong there stops nobody from reading about it
}

TEST_F(Settings_File, isUsedByVerbsTheSimulatorAndTheTabKey) {
    const struct {
        const char* environment;
        const char* command;
        const char* text;
    } rows[] = {
        {"VORNEX_LABELS=plant.json", TOOL " ls Speed", "Speed"},
        {"VORNEX_LABELS=plant.json", VORNEX_SIM " -p 0 --listen nowhere.invalid", "cannot listen"},
        {"VORNEX_LABELS=gone.json", VORNEX_SIM " -p 0", "gone.json"},
        {"VORNEX_LABELS=gone.json", VORNEX_SIM " --pattern=never -p 0", "never"},
        {"VORNEX_LABELS=plant.json", TOOL " --complete 'vornex-label read Hea'", "Heartbeat"},
    };
    write("line3/vornex.toml", "[controllers.press3]\ntarget = 'h:1'\nlabels = plant.json\n");
    for (const auto& row : rows) {
        const Outcome outcome = runIn("line3", row.environment, row.command);
        EXPECT_TRUE(outcome.holds(row.text)) << row.command << "\n" << outcome.text;
    }
    for (const char* line : {"read -t press3 Hea", "-t press3 read Hea"}) {
        EXPECT_TRUE(runIn("line3", "", TOOL " --complete 'vornex-label " + std::string(line) + "'").holds("Heartbeat"));
    }
    EXPECT_TRUE(runIn("line3", "", TOOL " --complete 'vornex-label read -t pr'").holds("press3"));
}

// It would choose the controller that others write to.
TEST_F(Settings_File, ofSomebodyElseIsPassedOver) {
    write("line3/vornex.toml", "target = '10.0.0.3:2000'\n");
    if (chown((line3 + "/vornex.toml").c_str(), 12345, -1) != 0) GTEST_SKIP() << "only root can give a file away";
    const Outcome outcome = runIn("line3/deep", "", TOOL " config");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(outcome.holds("vornex.toml is passed over: it belongs to somebody else")) << outcome.text;
    EXPECT_TRUE(outcome.holds("10.9.9.9:2000")) << outcome.text;
}

}  // namespace
}  // namespace vornex::test
