// What a client of vornex-sim sees of its faults.
#include <bitset>

#include "Sim_Client.h"

namespace vornex::test {
namespace {

void expectApplied(Sim_Process& sim, const std::string& kind, int times) {
    EXPECT_EQ(sim.finish(), 0) << sim.log();
    EXPECT_EQ(sim.counted(kind), times) << sim.summary();
    EXPECT_EQ(sim.counted("faults"), times) << sim.summary();
    EXPECT_EQ(sim.counted("applied"), times) << sim.summary();
    EXPECT_NE(sim.log().find("fault " + kind), std::string::npos) << sim.log();
}

struct Changed_Answer {
    const char* rule;
    const char* kind;
    const char* request;
    const char* answer;
};

// After the answer under test comes a read without a fault: its answer must be the next bytes, nothing in between.
TEST(Fault_Answers, changeTheAnswerAsTheySay) {
    const Changed_Answer rows[] = {
        {"drop@n=1,cmd=read", "drop", Read, ""},
        {"crc@n=1,cmd=read", "crc", Read, "02 06 00 41 04 00 11 22 33 44 E2 C5"},
        {"crc@n=2,cmd=write", "crc", Write, "02 00 00 40 53 5A"},
        {"short(3)@n=1,cmd=read", "short", Read, "02 06 00 41 04 00 11 22 33"},
        {"empty@n=1", "empty", Read, "02 06 00 41 2D 07"},
        {"count(2)@n=1", "count", Read, "02 06 00 41 06 00 11 22 33 44 5D B1"},
        {"swap@n=1", "swap", ReadTwo, "02 08 00 41 03 00 22 33 44 01 00 11 D2 15"},
        {"stale@n=1", "stale", Read, Ack},
        {"dup@n=1,addr=4099..9999,cmd=read", "dup", Read,
         "02 06 00 41 04 00 11 22 33 44 1D 3A 02 06 00 41 04 00 11 22 33 44 1D 3A"},
    };
    for (const Changed_Answer& row : rows) {
        SCOPED_TRACE(row.rule);
        Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", row.rule, "-o", "json"});
        Hex_Client client(sim.port());
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

TEST(Fault_Answers, randomOnesKeepTheirForm) {
    const Random_Answer rows[] = {
        {"flip(3)@n=1,cmd=read", "flip", 12, 93, 93},
        {"junk@n=1,cmd=read", "junk", 12, 0, 95},
        {"junk(7)@n=1,cmd=read", "junk", 7, 0, 55},
        {"long(2)@n=1,cmd=read", "long", 14, 96, 96},
    };
    for (const Random_Answer& row : rows) {
        SCOPED_TRACE(row.rule);
        Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", row.rule, "-o", "json"});
        Hex_Client client(sim.port());
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
TEST(Fault_Answers, headerIsSealedAgain) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "header@n=1,cmd=read", "--fault",
                     "header@n=2,cmd=read", "-o", "json"});
    Hex_Client client(sim.port());
    fill(client);
    client.send(Read);
    const std::string first = client.receive(12);
    client.send(Read);
    const std::string second = client.receive(12);
    EXPECT_EQ(first.substr(12, 17), std::string(Answer).substr(12, 17));
    EXPECT_EQ(second.substr(12, 17), std::string(Answer).substr(12, 17));
    EXPECT_NE(first.substr(0, 11), second.substr(0, 11));
    EXPECT_NE(first.substr(30), second.substr(30)) << "another header, the same check value";
    EXPECT_EQ(sim.finish(), 0) << sim.log();
    EXPECT_EQ(sim.counted("header"), 2);
}

struct Timed_Answer {
    const char* rule;
    const char* kind;
    double atLeast;  // ms from the request to the whole answer
};

TEST(Fault_Answers, timedOnesTakeTheirTime) {
    const Timed_Answer rows[] = {{"delay(120)@cmd=read", "delay", 120},
                                 {"delay(60,90)@cmd=read", "delay", 60},
                                 {"slice(5,40)@cmd=read", "slice", 80},
                                 {"stall(150)@cmd=read", "stall", 150}};
    for (const Timed_Answer& row : rows) {
        SCOPED_TRACE(row.rule);
        Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", row.rule, "-o", "json"});
        Hex_Client client(sim.port());
        fill(client);
        const double begin = clockMs();
        client.send(Read);
        EXPECT_EQ(client.receive(12), Answer);
        EXPECT_GE(clockMs() - begin, row.atLeast - 1);
        expectApplied(sim, row.kind, 1);
    }
}

TEST(Fault_Answers, heldAnswersComeWithTheNextOne) {
    for (const char* kind : {"late", "glue"}) {
        SCOPED_TRACE(kind);
        Sim_Process sim(
            {"-l", EXAMPLES_DIR "/plant.json", "--fault", std::string(kind) + "@n=1,cmd=read", "-o", "json"});
        Hex_Client client(sim.port());
        fill(client);
        client.send(Read);
        sim.waitForLog("applied to request 2");
        client.send(ReadTwo);
        EXPECT_EQ(client.receive(26), std::string(Answer) + " " + AnswerTwo);
        expectApplied(sim, kind, 1);
    }
}

TEST(Fault_Answers, stallHoldsEveryConnection) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "stall(200)@n=1,cmd=read"});
    Hex_Client first(sim.port());
    Hex_Client second(sim.port());
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
    End end;
};

TEST(Fault_Answers, endTheConnection) {
    const Ended_Connection rows[] = {
        {"rst@cmd=read", "rst", "", End::Reset},
        {"rst(5)@cmd=read", "rst", "02 06 00 41 04", End::Reset},
        {"fin@cmd=read", "fin", "", End::Closed},
        {"fin(9)@cmd=read", "fin", "02 06 00 41 04 00 11 22 33", End::Closed},
        {"refuse(1)@cmd=read", "refuse", "", End::Reset},
    };
    for (const Ended_Connection& row : rows) {
        SCOPED_TRACE(row.rule);
        Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", row.rule, "-o", "json"});
        Hex_Client client(sim.port());
        fill(client);
        client.send(Read);
        EXPECT_EQ(client.receive(bytesIn(row.answer)), row.answer);
        EXPECT_EQ(client.waitForEnd(), row.end);
        expectApplied(sim, row.kind, 1);
    }
}

TEST(Fault_Answers, refuseSparesNobody) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "refuse(3600000)@n=1,cmd=read"});
    Hex_Client client(sim.port());
    Hex_Client other(sim.port());
    fill(other);
    client.send(Read);
    EXPECT_EQ(other.waitForEnd(), End::Reset);
    EXPECT_FALSE(Hex_Client(sim.port()).isConnected());
}

TEST(Fault_Answers, refuseTakesConnectionsAgainLater) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "refuse(20)@n=1,cmd=read"});
    Hex_Client client(sim.port());
    fill(client);
    client.send(Read);
    sim.waitForLog("connections are taken again");
    Hex_Client again(sim.port());
    again.send(Read);
    EXPECT_EQ(again.receive(12), Answer);
}

TEST(Fault_Answers, killEndsTheSimulatorWithItsSummary) {
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "kill@n=2", "-o", "json"});
    Hex_Client client(sim.port());
    fill(client);
    client.send(Read);
    EXPECT_EQ(client.waitForEnd(), End::Reset);
    EXPECT_EQ(sim.finish(false), 0);
    EXPECT_EQ(sim.counted("kill"), 1) << sim.summary();
}

}  // namespace
}  // namespace vornex::test
