// The host that docs/host-interface.md shows, built from its code blocks: it pauses between rounds, reads what it
// polls, writes what it is told, and refuses what is no answer to its question.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "Hostile_Proxy.h"
#include "Sim_Process.h"

namespace vornex::test {
namespace {

struct Host_Run {
    int exitCode = -1;
    double ms = 0;
    long exchanges = -1;
    long failed = -1;
    std::string text;
};

Host_Run runHost(int port, int rounds = 20, int pauseMs = 50) {
    Host_Run run;
    const double start = clockMs();
    const std::string command =
        HOST " " LIBRARY " " + std::to_string(port) + " " + std::to_string(rounds) + " " + std::to_string(pauseMs);
    const Outcome outcome = runCommand(".", command, [&run](const std::string& line, pid_t) {
        std::sscanf(line.c_str(), "%*d rounds of 2 requests, %ld exchanges, %ld failed", &run.exchanges, &run.failed);
    });
    run.text = outcome.text;
    run.exitCode = outcome.code;
    run.ms = clockMs() - start;
    return run;
}

TEST(Page_Host, pausesBetweenRoundsForTenSeconds) {
    constexpr int Rounds = 100, PauseMs = 100;
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "-o", "json"});
    ASSERT_NE(sim.port(), 0);
    const Host_Run run = runHost(sim.port(), Rounds, PauseMs);
    EXPECT_EQ(sim.finish(), 0);
    EXPECT_EQ(run.exitCode, 0) << run.text;
    EXPECT_NE(run.text.find("Speed = "), std::string::npos) << run.text;
    EXPECT_NE(run.text.find("Setpoint = 1234\n"), std::string::npos) << run.text;
    // both requests share a frame; one more round may have begun when the host stopped
    EXPECT_GE(sim.counted("reads"), Rounds) << sim.summary();
    EXPECT_LE(sim.counted("reads"), Rounds + 1) << sim.summary();
    EXPECT_EQ(sim.counted("writes"), 1) << sim.summary();
    EXPECT_EQ(sim.counted("requests"), run.exchanges) << run.text;
    EXPECT_EQ(run.failed, 0) << run.text;
    EXPECT_GE(run.ms, (Rounds - 2) * PauseMs);  // the write may have shortened one pause
}

TEST(Page_Host, refusesWhatIsNoAnswerAndGoesOn) {
    const std::vector<std::string> faults = {"swap@every=5,cmd=read", "crc@n=2,cmd=read", "drop@n=4,cmd=read",
                                             "rst(4)@n=9,cmd=read"};
    std::vector<std::string> arguments = {"-l", EXAMPLES_DIR "/plant.json", "-o", "json"};
    for (const std::string& fault : faults)
        arguments.insert(arguments.end(), {"--fault", fault});
    Sim_Process sim(arguments);
    ASSERT_NE(sim.port(), 0);
    const Host_Run run = runHost(sim.port());
    EXPECT_EQ(sim.finish(), 0);
    EXPECT_EQ(run.exitCode, 0) << run.text;
    EXPECT_NE(run.text.find("Setpoint = 1234\n"), std::string::npos) << run.text;
    EXPECT_GE(sim.counted("swap"), 4) << sim.summary();
    EXPECT_NE(sim.summary().find("\"neverApplied\":[]"), std::string::npos) << sim.summary();
    EXPECT_EQ(sim.counted("faults"), run.failed) << run.text << sim.summary();
}

// A gateway swallows a reply, and its next connection begins with an old one: neither is taken for a reply.
TEST(Page_Host, listensToANewConnectionBeforeItsFirstFrame) {
    const std::string gateway = "the one before to the next connection";
    Sim_Process sim({"-l", PLANT, "-q"});
    Hostile_Proxy proxy(sim.port(), 8, gateway);
    const Host_Run run = runHost(proxy.port());
    proxy.finish();
    ASSERT_GE(proxy.greetings(), 1);
    EXPECT_EQ(run.exitCode, 0) << run.text;
    EXPECT_EQ(run.failed, proxy.injected().at(gateway) + proxy.greetings()) << run.text;
}

}  // namespace
}  // namespace vornex::test
