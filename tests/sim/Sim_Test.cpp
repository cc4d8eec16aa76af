// vornex-sim as a process: frames, limits, control lines, expectations.
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "Sim_Client.h"

namespace vornex::test {
namespace {

TEST(Sim, aRuleThatNeverFiredIsTold) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "swap", "--fault", "crc@n=9"});
    Hex_Client client(sim.port());
    fill(client);
    EXPECT_EQ(sim.finish(), 0);
    EXPECT_NE(sim.summary().find("fault swap: NEVER APPLIED, to none of 0 "), std::string::npos) << sim.summary();
    EXPECT_NE(sim.summary().find("fault crc@n=9: NEVER APPLIED, to none of 1 "), std::string::npos) << sim.summary();
}

TEST(Sim, expectationsDecideTheExitCode) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--expect", "writes>=1", "--expect", "reads>=1", "-o", "json"});
    Hex_Client client(sim.port());
    fill(client);
    EXPECT_EQ(sim.finish(), 7) << sim.log();
    const std::string summary = sim.summary();
    EXPECT_NE(summary.find(R"({"expect":"writes>=1","counted":1,"met":true})"), std::string::npos) << summary;
    EXPECT_NE(summary.find(R"({"expect":"reads>=1","counted":0,"met":false})"), std::string::npos) << summary;
    EXPECT_EQ(sim.counted("bytesWritten"), 4);
}

struct Refused_Start {
    std::vector<std::string> arguments;
    int exitCode;
    const char* message;
};

TEST(Sim, refusesWhatItDoesNotKnow) {
    const std::string doubtful = ::testing::TempDir() + "doubtful.json";
    std::ofstream(doubtful) << "{\"format\": 1, \"labels\": [],\n \"lables\": 1}";
    const Refused_Start rows[] = {
        {{"--falt", "crc", "--pattern"}, 1, "--falt"},
        {{}, 1, "--labels or --pattern is required"},
        {{"--pattern", "--fault", "crk"}, 1, "unknown fault 'crk'"},
        {{"--pattern", "--expect", "wrties>=1"}, 1, "unknown counter 'wrties'"},
        {{"--pattern", "sometimes"}, 1, "pattern 'sometimes' is not read, fixed:N"},
        {{"--pattern", "--seed", "-1"}, 1, "--seed: '-1' is not a whole number from 0 to 18446744073709551615"},
        {{"--pattern", "-p", "65536"}, 1, "--port: '65536' is not a whole number from 0 to 65535"},
        {{"--pattern", "--max-frame", "011"}, 1, "'011' is not a whole number from 12 to 65541"},
        {{"-l", "no/such.json"}, 2, "no/such.json: cannot be read"},
        {{"-l", doubtful, "--strict"}, 2, "doubtful.json:2: unknown key \"lables\"; did you mean 'labels'?"},
        {{"--pattern", "--listen", "192.0.2.1"}, 3, "cannot listen on 192.0.2.1"},
    };
    for (const Refused_Start& row : rows) {
        SCOPED_TRACE(row.message);
        Sim_Process sim(row.arguments);
        EXPECT_EQ(sim.port(), 0);
        EXPECT_EQ(sim.finish(false), row.exitCode);
        EXPECT_NE(sim.log().find(row.message), std::string::npos) << sim.log();
    }
}

// An intact frame that makes no sense is passed over; where the next one begins is known.
TEST(Sim, senselessFramesAreNotAnswered) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--max-frame", "64", "-o", "json"});
    Hex_Client client(sim.port());
    fill(client);
    client.send("02 06 00 41 00 10 00 00 04 00 11 28");        // check value
    client.send("02 00 00 42 EE 85");                          // command
    client.send("02 05 00 41 00 10 00 00 04 4A FA");           // half an item
    client.send("02 08 00 40 00 10 00 00 03 00 11 22 78 63");  // 3 bytes announced, 2 there
    client.send("02 06 00 41 00 10 00 00 3B 00 BA 3C");        // an answer over the limit
    client.send(Read);
    EXPECT_EQ(client.receive(12), Answer);
    EXPECT_EQ(sim.finish(), 0) << sim.log();
    EXPECT_EQ(sim.counted("badFrames"), 5);
    EXPECT_EQ(sim.counted("requests"), 2);
}

TEST(Sim, whatCannotBeAFrameEndsTheConnection) {
    Sim_Process sim({"--pattern", "--max-frame", "64", "--frame-time", "30", "--max-clients", "1", "-o", "json"});
    for (const char* bytes : {"03 06 00 41", "02 3B 00 41", "02 06 00"}) {
        SCOPED_TRACE(bytes);
        Hex_Client client(sim.port());
        client.send(bytes);
        EXPECT_EQ(client.waitForEnd(), End::Closed);
    }
    Hex_Client first(sim.port());
    first.send(Read);
    EXPECT_EQ(bytesIn(first.receive(12)), 12u);
    Hex_Client second(sim.port());
    EXPECT_EQ(second.waitForEnd(), End::Closed) << "one client is the limit";
    EXPECT_EQ(sim.finish(), 0) << sim.log();
    EXPECT_EQ(sim.counted("badFrames"), 2);
    EXPECT_EQ(sim.counted("slowFrames"), 1);
    EXPECT_EQ(sim.counted("clients"), 4);
    EXPECT_EQ(sim.counted("clientsRefused"), 1);
}

TEST(Sim, requestsInPiecesAndTogetherAreAnsweredInOrder) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json"});
    Hex_Client client(sim.port());
    fill(client);
    const std::string both = std::string(Read) + " " + ReadTwo;
    client.send(both.substr(0, 14));
    client.send(both.substr(15));
    EXPECT_EQ(client.receive(26), std::string(Answer) + " " + AnswerTwo);
}

TEST(Sim, patternShowsTheNextGenerationInEveryRead) {
    Sim_Process sim({"--pattern", "--control", "-"});
    Hex_Client client(sim.port());
    fill(client);
    for (const char* generation : {"1", "2"}) {
        client.send(Read);
        const std::string data = client.receive(12).substr(18, 11);
        sim.writeLine("check 4096 " + data);
        EXPECT_EQ(sim.readLine(), std::string("ok generation ") + generation);
        sim.writeLine("check 4097 " + data);
        EXPECT_EQ(sim.readLine().substr(0, 6), "error:") << "bytes of another address";
    }
}

TEST(Sim, controlOnStandardInput) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--control", "-", "-q"});
    Hex_Client client(sim.port());
    fill(client);
    sim.writeLine("get 4096 4");
    EXPECT_EQ(sim.readLine(), "ok 11 22 33 44");
    sim.writeLine("set 4096 aabb");
    EXPECT_EQ(sim.readLine(), "ok");
    sim.writeLine("fault add short(6)");
    EXPECT_EQ(sim.readLine(), "ok");
    client.send(Read);
    EXPECT_EQ(client.receive(6), "02 06 00 41 04 00");
    sim.writeLine("fault clear");
    EXPECT_EQ(sim.readLine(), "ok");
    client.send(Read);
    EXPECT_EQ(client.receive(12).substr(0, 29), "02 06 00 41 04 00 AA BB 33 44");
    sim.writeLine("quit");
    EXPECT_EQ(sim.readLine(), "ok");
    EXPECT_EQ(sim.finish(false), 0);
}

TEST(Sim, controlOnAUnixSocket) {
    const std::string path = controlPath();
    Sim_Process sim({"--pattern", "fixed:7", "--control", path});
    Control_Client peer(path);
    ASSERT_TRUE(peer.send("get 0 1\nquit\n"));
    EXPECT_EQ(sim.finish(false), 0);
    EXPECT_EQ(peer.readLine(), "ok 07");
    EXPECT_EQ(peer.readLine(), "ok");
    EXPECT_NE(::access(path.c_str(), F_OK), 0) << "the socket file is left behind";
}

TEST(Sim_Control_Socket, aDeadControlSocketIsReplaced) {
    const std::string path = controlPath();
    Sim_Process killed({"--pattern", "--control", path});
    killed.signal(SIGKILL);
    EXPECT_EQ(killed.finish(false), -1);
    EXPECT_TRUE(std::filesystem::is_socket(path));
    Sim_Process next({"--pattern", "--control", path});
    Control_Client peer(path);
    EXPECT_TRUE(peer.send("check 0 00\n"));
    EXPECT_EQ(peer.readLine().substr(0, 2), "ok");
    EXPECT_EQ(next.finish(), 0) << next.log();
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(Sim_Control_Socket, whatIsNoDeadControlSocketIsLeftAlone) {
    const std::string path = controlPath(), file = path + ".txt", link = path + ".link";
    std::ofstream(file) << "kept";
    Sim_Process live({"--pattern", "--control", path});
    std::filesystem::create_symlink(path, link);
    const std::pair<std::string, const char*> rows[] = {{path, "somebody listens there"},
                                                        {file, "what is there is no socket"},
                                                        {link, "what is there is no socket"},
                                                        {file + "/x", "Not a directory"}};
    for (const auto& [place, reason] : rows) {
        Sim_Process refused({"--pattern", "--control", place});
        EXPECT_EQ(refused.port(), 0);
        EXPECT_EQ(refused.finish(false), 3);
        EXPECT_NE(refused.log().find("cannot listen on " + place + ": " + reason), std::string::npos) << refused.log();
    }
    std::string kept;
    std::ifstream(file) >> kept;
    EXPECT_EQ(kept, "kept");
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    Control_Client peer(path);
    EXPECT_TRUE(peer.send("check 0 00\n"));
    EXPECT_EQ(peer.readLine().substr(0, 2), "ok");
    EXPECT_EQ(live.finish(), 0);
    std::filesystem::remove(file);
    std::filesystem::remove(link);
}

// A log on a full disk is told and counted, and the simulator goes on; it does not start to nobody.
TEST(Sim, tellsThatItsOutputsCannotBeWritten) {
    Sim_Process sim({"-l", PLANT, "-v", "--log", "/dev/full"});
    Hex_Client client(sim.port());
    client.send("02 06 00 41 68 00 00 00 02 00 B7 D5");
    EXPECT_EQ(bytesIn(client.receive(10)), 10u);
    EXPECT_EQ(sim.finish(), 8);
    EXPECT_NE(sim.log().find("/dev/full: No space left on device"), std::string::npos) << sim.log();
    EXPECT_EQ(runCommand(".", VORNEX_SIM " -l " PLANT " -p 0 > /dev/full").code, 8);
    EXPECT_EQ(runCommand(".", VORNEX_SIM " -l " PLANT " -p 0 --log " PLANT).code, 1);
}

}  // namespace
}  // namespace vornex::test
