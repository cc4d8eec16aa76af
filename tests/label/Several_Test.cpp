// One watch for several controllers: joined, named, and none held up by another.
#include <signal.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "Sim_Process.h"
#include "Tool_Run.h"

namespace vornex::test {
namespace {

namespace fs = std::filesystem;

long countOf(const std::string& text, const std::string& part) {
    long found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++found;
    return found;
}

// press1 and press2 answer, away does not.
class Several : public testing::Test {
protected:
    Several() {
        fs::remove_all(folder);
        fs::create_directories(folder);
        std::ofstream(folder + "/vornex.toml")
            << "labels = '" PLANT "'\n[controllers.press1]\ntarget = '127.0.0.1:" << first.port()
            << "'\n[controllers.press2]\ntarget = '127.0.0.1:" << second.port()
            << "'\n[controllers.away]\ntarget = '127.0.0.1:1'\n";
    }
    Outcome run(const std::string& arguments) const {
        return runCommand(folder, "env -u VORNEX_LABELS -u VORNEX_TARGET " TOOL " " + arguments);
    }

    Sim_Process first{{"-l", PLANT, "-q"}};
    Sim_Process second{{"-l", PLANT, "-q"}};
    const std::string folder = WORK_DIR "/several";
};

TEST_F(Several, areWatchedAtATime) {
    const struct {
        const char* arguments;
        int code;
        std::vector<std::pair<const char*, long>> counts;  // of what stands in the output, -1: at least once
    } rows[] = {
        {"watch Setpoint -n 3 -i 1 -t press1,press2", 0, {{"press1: ", -1}, {"press2: ", -1}, {" = 1500 rpm\n", 2}}},
        {"watch Setpoint -n 3 -i 1 -t press1,press2 -o csv -q",
         0,
         {{"controller,time,label,value,raw,unit,band,state\n", 1}, {"press1,2", 1}, {"press2,2", 1}}},
        {"watch Setpoint -n 3 -i 1 -t press1,press2 -o json -q",
         0,
         {{"{\"controller\":\"press1\",", 1}, {"{\"controller\":\"press2\",", 1}}},
        {"watch Setpoint -n 3 -i 1 -t press1,press2 -o influx -q",
         0,
         {{"vornex,controller=press1,label=Setpoint,", 3}, {"vornex,controller=press2,label=Setpoint,", 3}}},
        {"watch Setpoint -n 3 -i 1 -t press1,press2 --log log -q", 0, {}},
        {"stats Setpoint -n 3 -t press2,press1", 0, {{"press1: packing: ", 1}, {"press2: packing: ", 1}}},
        // who is away holds nobody up, and is not forgotten
        {"watch Setpoint -n 3 -i 1 -t press1,away,press2 --no-wait",
         3,
         {{" = 1500 rpm\n", 2}, {"vornex-label: away: no connection to 127.0.0.1:1", 1}}},
        {"config -t press1,press2", 0, {{"press1: target ", 1}, {"press2: target ", 1}}},
        {"read Setpoint -t press1,press2", 1, {{"one controller at a time", 1}}},
        {"ls Setpoint -o csv -t press1,press2", 1, {{"'-t'", -1}}},
        {"watch Setpoint -t press1,pres2", 1, {{"no controller of", 1}}},
        {"watch Setpoint -t press1,press1", 1, {{"target 'press1' stands twice", 1}}},
        {"watch Setpoint -t press1,press2 --table", 1, {{"--table and --csv are for one controller", 2}}},
        {"watch Setpoint -t press1,press2 --trace x.txt", 1, {{"--trace is for one controller", 2}}},
        {"watch Setpoint -n 3 -i 1 -t press1,press2 > /dev/full", 8, {{"No space left", -1}}},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run(row.arguments);
        EXPECT_EQ(outcome.code, row.code) << row.arguments << "\n" << outcome.text;
        for (const auto& [part, count] : row.counts) {
            const long found = countOf(outcome.text, part);
            EXPECT_TRUE(found == count || (count < 0 && found > 0)) << row.arguments << ": " << part << "\n"
                                                                    << outcome.text;
        }
    }
    EXPECT_TRUE(fs::is_directory(folder + "/log/press1") && fs::is_directory(folder + "/log/press2"));
}

// However the one that started them ends.
TEST_F(Several, endTogether) {
    for (const int number : {SIGTERM, SIGKILL}) {
        Sim_Process one({"-l", PLANT, "-q", "-v", "--log", folder + "/one.log"});
        Sim_Process two({"-l", PLANT, "-q", "-v", "--log", folder + "/two.log"});
        const std::string targets =
            "127.0.0.1:" + std::to_string(one.port()) + ",127.0.0.1:" + std::to_string(two.port());
        Process tool({TOOL, "watch", "Setpoint", "-i", "1", "-l", PLANT, "-t", targets});
        EXPECT_NE(tool.readLine().find("Setpoint"), std::string::npos);
        EXPECT_NE(tool.readLine().find("Setpoint"), std::string::npos);
        tool.signal(number);
        // both outputs end only when nobody holds them any more
        EXPECT_EQ(tool.finish(false), number == SIGTERM ? 130 : -1);
    }
}

}  // namespace
}  // namespace vornex::test
