// Whatever the tools print or keep, on a full disk: told with its name and exit code 8, and what was complete stays.
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Sim_Process.h"
#include "Tool_Run.h"

namespace vornex::test {
namespace {

const std::string Folder = WORK_DIR "/full-disk";

void begin() {
    ::mkdir(Folder.c_str(), 0777);
    for (const std::string form : {"csv", "txt", "jsonl", "hex"}) {
        ::unlink((Folder + "/full." + form).c_str());
        ASSERT_EQ(::symlink("/dev/full", (Folder + "/full." + form).c_str()), 0);
    }
}

void expectEnd(const std::string& what, const Outcome& outcome, int code, const std::string& text) {
    EXPECT_EQ(outcome.code, code) << what << "\n" << outcome.text;
    EXPECT_TRUE(outcome.holds(text)) << what << " should tell: " << text << "\n" << outcome.text;
}

TEST(Full_Disk, everyVerbTellsThatStandardOutputIsNotWhole) {
    begin();
    Sim_Process sim({"-l", PLANT, "-q"});
    const std::string record = Folder + "/whole.jsonl";
    ASSERT_EQ(run("read Speed --force --trace " + record + on(sim.port())).code, 0);
    const std::string rows[] = {"read '*'",
                                "read Setpoint -o json",
                                "read Setpoint -o csv",
                                "write Setpoint=3",
                                "write Setpoint=3 --verify",
                                "snapshot - Speed",
                                "watch Speed -n 2 -i 1",
                                "watch Speed -n 2 -i 1 -o json",
                                "watch Speed -n 2 -i 1 --table",
                                "stats Speed -n 2",
                                "bench Speed -d 1",
                                "dump 100 16",
                                "ls",
                                "check Speed",
                                "config",
                                "info",
                                "decode 02060041680000000200B7D5",
                                "replay " + record,
                                "labels convert " PLANT,
                                "labels names " PLANT,
                                "read --help",
                                "--version"};
    for (const std::string& row : rows)
        expectEnd(row, run("-l " PLANT " -t 127.0.0.1:" + std::to_string(sim.port()) + " " + row + " > /dev/full"), 8,
                  "standard output: No space left on device");
}

TEST(Full_Disk, aFileThatIsNotWholeIsToldAndTheRunGoesOn) {
    begin();
    Sim_Process sim({"-l", PLANT, "-q"});
    const std::pair<const char*, const char*> rows[] = {
        {"--csv", "csv"}, {"--trace", "txt"}, {"--trace", "jsonl"}, {"--trace", "hex"}};
    for (const auto& [option, form] : rows) {
        const std::string file = Folder + "/full." + form;
        const Outcome outcome = run(std::string("watch Speed -n 3 -i 1 ") + option + " " + file + on(sim.port()));
        expectEnd(form, outcome, 8, file + ": No space left on device; 0 lines are written");
        expectEnd(form, outcome, 8, "3 rounds");
        expectEnd(form, outcome, 8, " rpm\n");
    }
}

// The kernel writes what fits below the limit of a file's size and refuses the rest.
TEST(Full_Disk, aRecordEndsWithItsLastCompleteLineAndIsPlayed) {
    begin();
    Sim_Process sim({"-l", PLANT, "-q"});
    const std::string record = Folder + "/cut.jsonl";
    ::unlink(record.c_str());
    const std::string limited = "/bin/sh -c 'ulimit -f 128; trap \"\" XFSZ; exec \"$@\"' limited ";
    const Outcome outcome = run("watch '*' -n 200 -i 0 --trace " + record + on(sim.port()), nullptr, limited);
    expectEnd("watch", outcome, 8, record + ": File too large; ");
    std::ifstream lines(record);
    const std::string text((std::istreambuf_iterator<char>(lines)), {});
    ASSERT_GT(text.size(), 10000u);
    EXPECT_EQ(text.back(), '\n');
    expectEnd("replay", run("replay " + record), 0, "");
}

}  // namespace
}  // namespace vornex::test
