// vornex-sim as a process, seen by a client that knows nothing but bytes.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <bitset>
#include <cstdlib>

#include <gtest/gtest.h>

#include "Sim_Process.h"

namespace vornex::test {
namespace {

// Frames and answers with check values made by another program.
const char* const Write = "02 0a 00 40 00 10 00 00 04 00 11 22 33 44 e7 bb";  // 11 22 33 44 to 4096
const char* const Ack = "02 00 00 40 ac a5";
const char* const Read = "02 06 00 41 00 10 00 00 04 00 11 29";  // 4 bytes from 4096
const char* const Answer = "02 06 00 41 04 00 11 22 33 44 1d 3a";
const char* const ReadTwo = "02 0c 00 41 00 10 00 00 01 00 01 10 00 00 03 00 6a e5";  // 1 from 4096, 3 from 4097
const char* const AnswerTwo = "02 08 00 41 01 00 11 03 00 22 33 44 9b 56";

std::size_t bytesIn(const std::string& hex) { return (hex.size() + 1) / 3; }

// The summary of a simulator that was started with "-o json".
std::string summaryOf(Sim_Process& sim, int exitCode = 0) {
    EXPECT_EQ(sim.finish(), exitCode) << sim.log();
    return sim.summary();
}

// The number behind a key, -1 when there is none.
int numberIn(const std::string& json, const std::string& key) {
    const std::size_t at = json.find("\"" + key + "\":");
    return at == std::string::npos ? -1 : std::atoi(json.c_str() + at + key.size() + 3);
}

// Writes the bytes that the answers above hold.
void fill(Raw_Client& client) {
    ASSERT_TRUE(client.isConnected());
    client.send(Write);
    ASSERT_EQ(client.receive(bytesIn(Ack)), Ack);
}

void expectApplied(Sim_Process& sim, const std::string& kind, int times) {
    const std::string summary = summaryOf(sim);
    EXPECT_EQ(numberIn(summary, kind), times) << summary;
    EXPECT_EQ(numberIn(summary, "faults"), times) << summary;
    EXPECT_EQ(numberIn(summary, "applied"), times) << summary;
    EXPECT_NE(sim.log().find("fault " + kind), std::string::npos) << sim.log();
}

struct Changed_Answer {
    const char* rule;
    const char* kind;
    const char* request;
    const char* answer;
};

// After the answer under test comes a read without a fault: its answer must be the next bytes, nothing in between.
TEST(Sim_Faults, changeTheAnswerAsTheySay) {
    const Changed_Answer rows[] = {
        {"drop@n=1,cmd=read", "drop", Read, ""},
        {"crc@n=1,cmd=read", "crc", Read, "02 06 00 41 04 00 11 22 33 44 e2 c5"},
        {"crc@n=2,cmd=write", "crc", Write, "02 00 00 40 53 5a"},
        {"short(3)@n=1,cmd=read", "short", Read, "02 06 00 41 04 00 11 22 33"},
        {"empty@n=1", "empty", Read, "02 06 00 41 2d 07"},
        {"count(2)@n=1", "count", Read, "02 06 00 41 06 00 11 22 33 44 5d b1"},
        {"swap@n=1", "swap", ReadTwo, "02 08 00 41 03 00 22 33 44 01 00 11 d2 15"},
        {"stale@n=1", "stale", Read, Ack},
        {"dup@n=1,addr=4099..9999,cmd=read", "dup", Read,
         "02 06 00 41 04 00 11 22 33 44 1d 3a 02 06 00 41 04 00 11 22 33 44 1d 3a"},
    };
    for (const Changed_Answer& row : rows) {
        SCOPED_TRACE(row.rule);
        Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", row.rule, "-o", "json"});
        Raw_Client client(sim.port());
        fill(client);
        client.send(row.request);
        EXPECT_EQ(client.receive(bytesIn(row.answer)), row.answer);
        client.send(ReadTwo);
        EXPECT_EQ(client.receive(bytesIn(AnswerTwo)), AnswerTwo);
        expectApplied(sim, row.kind, 1);
    }
}

struct Random_Answer {
    const char* rule;
    const char* kind;
    std::size_t bytes;
    std::size_t fewestSame;  // bits that agree with the right answer
    std::size_t mostSame;
};

TEST(Sim_Faults, randomOnesKeepTheirForm) {
    const Random_Answer rows[] = {
        {"flip(3)@n=1,cmd=read", "flip", 12, 93, 93},
        {"junk@n=1,cmd=read", "junk", 12, 0, 95},
        {"junk(7)@n=1,cmd=read", "junk", 7, 0, 55},
        {"long(2)@n=1,cmd=read", "long", 14, 96, 96},
    };
    for (const Random_Answer& row : rows) {
        SCOPED_TRACE(row.rule);
        Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", row.rule, "-o", "json"});
        Raw_Client client(sim.port());
        fill(client);
        client.send(Read);
        const std::string got = client.receive(row.bytes);
        ASSERT_EQ(bytesIn(got), row.bytes);
        std::size_t same = 0;
        for (std::size_t i = 0; i + 1 < std::min(got.size(), std::string(Answer).size()); i += 3) {
            const unsigned difference = static_cast<unsigned>(std::stoi(got.substr(i, 2), nullptr, 16) ^
                                                              std::stoi(std::string(Answer).substr(i, 2), nullptr, 16));
            same += 8 - std::bitset<8>(difference).count();
        }
        EXPECT_GE(same, row.fewestSame) << got;
        EXPECT_LE(same, row.mostSame) << got;
        client.send(ReadTwo);
        EXPECT_EQ(client.receive(bytesIn(AnswerTwo)), AnswerTwo);
        expectApplied(sim, row.kind, 1);
    }
}

// The driver must not care about the header; everything behind it is right.
TEST(Sim_Faults, headerIsSealedAgain) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "header@n=1,cmd=read", "--fault",
                     "header@n=2,cmd=read", "-o", "json"});
    Raw_Client client(sim.port());
    fill(client);
    client.send(Read);
    const std::string first = client.receive(12);
    client.send(Read);
    const std::string second = client.receive(12);
    EXPECT_EQ(first.substr(12, 17), std::string(Answer).substr(12, 17));
    EXPECT_EQ(second.substr(12, 17), std::string(Answer).substr(12, 17));
    EXPECT_NE(first.substr(0, 11), second.substr(0, 11));
    EXPECT_NE(first.substr(30), second.substr(30)) << "another header, the same check value";
    EXPECT_EQ(numberIn(summaryOf(sim), "header"), 2);
}

struct Timed_Answer {
    const char* rule;
    const char* kind;
    double atLeast;  // ms from the request to the whole answer
};

TEST(Sim_Faults, timedOnesTakeTheirTime) {
    const Timed_Answer rows[] = {{"delay(120)@cmd=read", "delay", 120},
                                 {"delay(60,90)@cmd=read", "delay", 60},
                                 {"slice(5,40)@cmd=read", "slice", 80},
                                 {"stall(150)@cmd=read", "stall", 150}};
    for (const Timed_Answer& row : rows) {
        SCOPED_TRACE(row.rule);
        Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", row.rule, "-o", "json"});
        Raw_Client client(sim.port());
        fill(client);
        const double begin = clockMs();
        client.send(Read);
        EXPECT_EQ(client.receive(12), Answer);
        EXPECT_GE(clockMs() - begin, row.atLeast - 1);
        expectApplied(sim, row.kind, 1);
    }
}

TEST(Sim_Faults, heldAnswersComeWithTheNextOne) {
    for (const char* kind : {"late", "glue"}) {
        SCOPED_TRACE(kind);
        Sim_Process sim(
            {"-l", EXAMPLES_DIR "/plant.json", "--fault", std::string(kind) + "@n=1,cmd=read", "-o", "json"});
        Raw_Client client(sim.port());
        fill(client);
        client.send(Read);
        sim.waitForLog("applied to request 2");
        client.send(ReadTwo);
        EXPECT_EQ(client.receive(26), std::string(Answer) + " " + AnswerTwo);
        expectApplied(sim, kind, 1);
    }
}

TEST(Sim_Faults, stallHoldsEveryConnection) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "stall(200)@n=1,cmd=read"});
    Raw_Client first(sim.port());
    Raw_Client second(sim.port());
    fill(second);
    const double begin = clockMs();
    first.send(Read);
    sim.waitForLog("fault stall");
    second.send(ReadTwo);
    EXPECT_EQ(second.receive(14), AnswerTwo);
    EXPECT_GE(clockMs() - begin, 199);
}

struct Ended_Connection {
    const char* rule;
    const char* kind;
    const char* answer;
    Raw_Client::End end;
};

TEST(Sim_Faults, endTheConnection) {
    const Ended_Connection rows[] = {
        {"rst@cmd=read", "rst", "", Raw_Client::End::Reset},
        {"rst(5)@cmd=read", "rst", "02 06 00 41 04", Raw_Client::End::Reset},
        {"fin@cmd=read", "fin", "", Raw_Client::End::Closed},
        {"fin(9)@cmd=read", "fin", "02 06 00 41 04 00 11 22 33", Raw_Client::End::Closed},
        {"refuse(1)@cmd=read", "refuse", "", Raw_Client::End::Reset},
    };
    for (const Ended_Connection& row : rows) {
        SCOPED_TRACE(row.rule);
        Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", row.rule, "-o", "json"});
        Raw_Client client(sim.port());
        fill(client);
        client.send(Read);
        EXPECT_EQ(client.receive(bytesIn(row.answer)), row.answer);
        EXPECT_EQ(client.waitForEnd(), row.end);
        expectApplied(sim, row.kind, 1);
    }
}

TEST(Sim_Faults, refuseSparesNobody) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "refuse(3600000)@n=1,cmd=read"});
    Raw_Client client(sim.port());
    Raw_Client other(sim.port());
    fill(other);
    client.send(Read);
    EXPECT_EQ(other.waitForEnd(), Raw_Client::End::Reset);
    EXPECT_FALSE(Raw_Client(sim.port()).isConnected());
}

TEST(Sim_Faults, refuseTakesConnectionsAgainLater) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "refuse(20)@n=1,cmd=read"});
    Raw_Client client(sim.port());
    fill(client);
    client.send(Read);
    sim.waitForLog("connections are taken again");
    Raw_Client again(sim.port());
    again.send(Read);
    EXPECT_EQ(again.receive(12), Answer);
}

TEST(Sim_Faults, killEndsTheSimulatorWithItsSummary) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "kill@n=2", "-o", "json"});
    Raw_Client client(sim.port());
    fill(client);
    client.send(Read);
    EXPECT_EQ(client.waitForEnd(), Raw_Client::End::Reset);
    EXPECT_EQ(sim.finish(false), 0);
    EXPECT_EQ(numberIn(sim.summary(), "kill"), 1) << sim.summary();
}

TEST(Sim, aRuleThatNeverFiredIsTold) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "swap", "--fault", "crc@n=9"});
    Raw_Client client(sim.port());
    fill(client);
    EXPECT_EQ(sim.finish(), 0);
    EXPECT_NE(sim.summary().find("fault swap: NEVER APPLIED, to none of 0 "), std::string::npos) << sim.summary();
    EXPECT_NE(sim.summary().find("fault crc@n=9: NEVER APPLIED, to none of 1 "), std::string::npos) << sim.summary();
}

TEST(Sim, expectationsDecideTheExitCode) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--expect", "writes>=1", "--expect", "reads>=1", "-o", "json"});
    Raw_Client client(sim.port());
    fill(client);
    const std::string summary = summaryOf(sim, 7);
    EXPECT_NE(summary.find(R"({"expect":"writes>=1","value":1,"met":true})"), std::string::npos) << summary;
    EXPECT_NE(summary.find(R"({"expect":"reads>=1","value":0,"met":false})"), std::string::npos) << summary;
    EXPECT_EQ(numberIn(summary, "bytesWritten"), 4);
}

struct Refused_Start {
    std::vector<std::string> arguments;
    int exitCode;
    const char* message;
};

TEST(Sim, refusesWhatItDoesNotKnow) {
    const Refused_Start rows[] = {
        {{"--falt", "crc", "--pattern"}, 1, "--falt"},
        {{}, 1, "--labels or --pattern is required"},
        {{"--pattern", "--fault", "crk"}, 1, "unknown fault 'crk'"},
        {{"--pattern", "--expect", "wrties>=1"}, 1, "unknown counter 'wrties'"},
        {{"--pattern", "sometimes"}, 1, "pattern 'sometimes' is not read, fixed:N"},
        {{"-l", "no/such.json"}, 2, "no/such.json: cannot be read"},
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
    Raw_Client client(sim.port());
    fill(client);
    client.send("02 06 00 41 00 10 00 00 04 00 11 28");        // check value
    client.send("02 00 00 42 ee 85");                          // command
    client.send("02 05 00 41 00 10 00 00 04 4a fa");           // half an item
    client.send("02 08 00 40 00 10 00 00 03 00 11 22 78 63");  // 3 bytes announced, 2 there
    client.send("02 06 00 41 00 10 00 00 3b 00 ba 3c");        // an answer over the limit
    client.send(Read);
    EXPECT_EQ(client.receive(12), Answer);
    const std::string summary = summaryOf(sim);
    EXPECT_EQ(numberIn(summary, "badFrames"), 5);
    EXPECT_EQ(numberIn(summary, "requests"), 2);
}

TEST(Sim, whatCannotBeAFrameEndsTheConnection) {
    Sim_Process sim({"--pattern", "--max-frame", "64", "--frame-time", "30", "--max-clients", "1", "-o", "json"});
    for (const char* bytes : {"03 06 00 41", "02 3b 00 41", "02 06 00"}) {
        SCOPED_TRACE(bytes);
        Raw_Client client(sim.port());
        client.send(bytes);
        EXPECT_EQ(client.waitForEnd(), Raw_Client::End::Closed);
    }
    Raw_Client first(sim.port());
    first.send(Read);
    EXPECT_EQ(bytesIn(first.receive(12)), 12u);
    Raw_Client second(sim.port());
    EXPECT_EQ(second.waitForEnd(), Raw_Client::End::Closed) << "one client is the limit";
    const std::string summary = summaryOf(sim);
    EXPECT_EQ(numberIn(summary, "badFrames"), 2);
    EXPECT_EQ(numberIn(summary, "slowFrames"), 1);
    EXPECT_EQ(numberIn(summary, "clients"), 4);
    EXPECT_EQ(numberIn(summary, "clientsRefused"), 1);
}

TEST(Sim, requestsInPiecesAndTogetherAreAnsweredInOrder) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json"});
    Raw_Client client(sim.port());
    fill(client);
    const std::string both = std::string(Read) + " " + ReadTwo;
    client.send(both.substr(0, 14));
    client.send(both.substr(15));
    EXPECT_EQ(client.receive(26), std::string(Answer) + " " + AnswerTwo);
}

TEST(Sim, patternShowsTheNextGenerationInEveryRead) {
    Sim_Process sim({"--pattern", "--control", "-"});
    Raw_Client client(sim.port());
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
    Raw_Client client(sim.port());
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
    EXPECT_EQ(client.receive(12).substr(0, 29), "02 06 00 41 04 00 aa bb 33 44");
    sim.writeLine("quit");
    EXPECT_EQ(sim.readLine(), "ok");
    EXPECT_EQ(sim.finish(false), 0);
}

TEST(Sim, controlOnAUnixSocket) {
    const std::string path = ::testing::TempDir() + "vornex-sim-test." + std::to_string(::getpid());
    Sim_Process sim({"--pattern", "fixed:7", "--control", path});
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    path.copy(address.sun_path, path.size());
    ASSERT_EQ(::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    const std::string lines = "get 0 1\nquit\n";
    ASSERT_EQ(::write(socket, lines.data(), lines.size()), static_cast<ssize_t>(lines.size()));
    EXPECT_EQ(sim.finish(false), 0);
    char answer[64] = {};
    EXPECT_GT(::read(socket, answer, sizeof answer - 1), 0);
    EXPECT_STREQ(answer, "ok 07\nok\n");
    ::close(socket);
    EXPECT_NE(::access(path.c_str(), F_OK), 0) << "the socket file is left behind";
}

}  // namespace
}  // namespace vornex::test
