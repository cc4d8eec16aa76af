// vornex-edge between a simulated controller and a real broker.
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include <gtest/gtest.h>

#include "Plant.h"
#include "Sim_Process.h"

namespace vornex::test {
namespace {

namespace fs = std::filesystem;

const char DeviceCommand[] = "spBv1.0/plant/DCMD/line3/press3";
const char NodeCommand[] = "spBv1.0/plant/NCMD/line3";

struct Edge_Online : ::testing::Test {
    Edge_Online() : folder(made(WORK_DIR "/edge-" + std::to_string(getpid()))), broker(folder), sim(simOn(0)) {}
    ~Edge_Online() override { fs::remove_all(folder); }

    static std::string made(const std::string& folder) {
        fs::remove_all(folder);
        fs::create_directories(folder);
        return folder;
    }
    static std::unique_ptr<Sim_Process> simOn(int port) {
        return std::make_unique<Sim_Process>(std::vector<std::string>{"-l", PLANT, "-q", "--control", "-"}, port);
    }
    std::unique_ptr<Process> edge() const {
        return std::make_unique<Process>(std::vector<std::string>{EDGE,
                                                                  "-l",
                                                                  PLANT,
                                                                  "-t",
                                                                  "127.0.0.1:" + std::to_string(sim->port()),
                                                                  "-T",
                                                                  "5000",
                                                                  "--broker",
                                                                  "127.0.0.1:" + std::to_string(broker.port()),
                                                                  "--group",
                                                                  "plant",
                                                                  "--node",
                                                                  "line3",
                                                                  "--device",
                                                                  "press3",
                                                                  "--poll",
                                                                  "Cycles Motors*.Speed @ 20; Setpoint Flow Mode @ 20",
                                                                  "--writable",
                                                                  "Setpoint;Flow",
                                                                  "--state",
                                                                  folder + "/state"});
    }
    static void expectRules(const Plant_Host& host) {
        EXPECT_EQ(brokenRules(host.heard), std::vector<std::string>()) << host.heard.size() << " messages";
    }

    const std::string folder;
    Broker broker;
    std::unique_ptr<Sim_Process> sim;
};

std::uint64_t birthNumberOf(const Heard* message) {
    const edge::Metric* const metric = message ? message->find("bdSeq") : nullptr;
    return metric ? std::get<std::uint64_t>(metric->value) : 999;
}

TEST_F(Edge_Online, isBornSendsChangesTakesCommandsAndDies) {
    Plant_Host host(broker.port());
    const std::unique_ptr<Process> program = edge();
    ASSERT_TRUE(host.waitFor("NBIRTH"));
    const Heard* const birth = host.waitFor("DBIRTH");
    ASSERT_TRUE(birth);
    EXPECT_EQ(birth->topic, "spBv1.0/plant/DBIRTH/line3/press3");
    EXPECT_EQ(birth->payload.metrics.size(), 8u);
    ASSERT_TRUE(birth->find("Setpoint") && birth->find("Motors/4/Speed"));
    EXPECT_TRUE(birth->find("Setpoint")->value == edge::Wire_Value(1500u));
    EXPECT_EQ(birth->find("Setpoint")->type, edge::Data_Type::Int16);
    EXPECT_TRUE(host.waitFor("DDATA", [](const Heard& message) { return message.find("Cycles") != nullptr; }));

    host.command(DeviceCommand, "Cycles", std::uint64_t(1));
    host.command(DeviceCommand, "Setpoint", 40000u);
    program->waitForLog("the command for \"Cycles\" is refused: not writable");
    program->waitForLog("the command for \"Setpoint\" is refused: value");
    host.command(DeviceCommand, "Setpoint", 0xFFFFFF9Cu);
    EXPECT_TRUE(host.waitFor("DDATA", [](const Heard& message) {
        return message.find("Setpoint") && message.find("Setpoint")->value == edge::Wire_Value(0xFFFFFF9Cu);
    }));
    program->waitForLog("'Setpoint' is written and read back");

    host.command(NodeCommand, "Node Control/Rebirth", true);
    EXPECT_EQ(birthNumberOf(host.waitFor("NBIRTH")), 0u);
    const Heard* const again = host.waitFor("DBIRTH");
    ASSERT_TRUE(again && again->find("Setpoint"));
    EXPECT_TRUE(again->find("Setpoint")->value == edge::Wire_Value(0xFFFFFF9Cu));

    EXPECT_EQ(program->finish(), 0) << program->log();
    EXPECT_EQ(birthNumberOf(host.waitFor("NDEATH")), 0u);
    expectRules(host);
}

TEST_F(Edge_Online, tellsOfALostControllerAndOfItsReturn) {
    Plant_Host host(broker.port());
    const std::unique_ptr<Process> program = edge();
    ASSERT_TRUE(host.waitFor("DBIRTH"));
    const int port = sim->port();
    sim->signal(SIGKILL);
    sim->finish(false);
    ASSERT_TRUE(host.waitFor("DDEATH"));
    sim = simOn(port);
    ASSERT_EQ(sim->port(), port);
    EXPECT_TRUE(host.waitFor("DBIRTH"));
    EXPECT_TRUE(host.waitFor("DDATA"));
    expectRules(host);
}

// What is shown as 42.3 l/min is 423 in the controller.
TEST_F(Edge_Online, publishesAndTakesScaledValues) {
    Plant_Host host(broker.port());
    const std::unique_ptr<Process> program = edge();
    const Heard* const birth = host.waitFor("DBIRTH");
    ASSERT_TRUE(birth && birth->find("Flow") && birth->find("Mode"));
    EXPECT_EQ(birth->find("Flow")->type, edge::Data_Type::Double);
    EXPECT_EQ(birth->find("Mode")->type, edge::Data_Type::UInt16);
    EXPECT_TRUE(birth->find("Mode")->value == edge::Wire_Value(2u));

    host.command(DeviceCommand, "Flow", 250.1);
    program->waitForLog(
        "the command for 'Flow' is refused: '250.1' is above the most of what may be written, 250 l/min");
    host.command(DeviceCommand, "Flow", 42.3);
    program->waitForLog("'Flow' is written and read back");
    EXPECT_TRUE(host.waitFor("DDATA", [](const Heard& message) {
        return message.find("Flow") && message.find("Flow")->value == edge::Wire_Value(42.3);
    }));
    sim->writeLine("get Flow");
    EXPECT_EQ(sim->readLine(), "ok 42.3");

    Process check(
        {EDGE, "-l", PLANT, "--group", "g", "--node", "n", "--device", "d", "--poll", "Flow Mode @ 20", "--check"});
    EXPECT_EQ(check.finish(false), 0) << check.log();
    EXPECT_EQ(check.output(),
              "spBv1.0/g/DBIRTH/n/d\n"
              "  Flow  Double  engUnit=l/min  description=into the tank  engLow=0  engHigh=250  high=150\n"
              "  Mode  UInt16  engHigh=2  states=0 = off, 1 = by hand, 2 = automatic\n");
    EXPECT_EQ(program->finish(), 0) << program->log();
    expectRules(host);
}

// Killed, it dies by its will; its successor has the next number, and a third one is refused.
TEST_F(Edge_Online, diesByItsWillAndCountsItsConnections) {
    Plant_Host host(broker.port());
    std::unique_ptr<Process> program = edge();
    ASSERT_TRUE(host.waitFor("DDATA"));
    program->signal(SIGKILL);
    program->finish(false);
    EXPECT_EQ(birthNumberOf(host.waitFor("NDEATH")), 0u);
    program = edge();
    EXPECT_EQ(birthNumberOf(host.waitFor("NBIRTH")), 1u);
    const std::unique_ptr<Process> second = edge();
    EXPECT_EQ(second->finish(false), 8);
    EXPECT_NE(second->log().find("another process uses it"), std::string::npos) << second->log();
    expectRules(host);
}

// What changed while there was no broker comes afterwards, as historical, with its own times and in order.
TEST_F(Edge_Online, keepsWhatChangesWhileTheBrokerIsAway) {
    const auto cycles = [](const Heard& message, bool isHistorical) -> const edge::Metric* {
        const edge::Metric* const metric = message.find("Cycles");
        return metric && metric->isHistorical == isHistorical ? metric : nullptr;
    };
    std::uint64_t before = 0;
    std::unique_ptr<Process> program;
    {
        Plant_Host host(broker.port());
        program = edge();
        const Heard* const live = host.waitFor("DDATA", [&](const Heard& message) { return cycles(message, false); });
        ASSERT_TRUE(live);
        before = *live->find("Cycles")->time;
    }
    broker.kill();
    program->waitForLog("no connection to the broker");
    const auto kept = [this] {
        std::uintmax_t bytes = 0;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder + "/state"))
            bytes += entry.path().extension() == ".records" ? entry.file_size() : 0;
        return bytes;
    };
    for (const double end = clockMs() + WaitLimit; kept() < 2000 && clockMs() < end;)
        usleep(1000);
    ASSERT_GE(kept(), 2000u);
    broker.start();
    Plant_Host host(broker.port());
    host.command(NodeCommand, "Node Control/Rebirth", true);  // in case the births came before this host
    ASSERT_TRUE(host.waitFor("DBIRTH"));
    // the last one that came may not be known to have come: it comes twice then, with one time
    std::uint64_t time = before - 1, value = 0;
    int count = 0;
    const Heard* found = nullptr;
    do {
        found = host.waitFor("DDATA", [&](const Heard& message) { return message.find("Cycles") != nullptr; });
        if (!found) break;
        const edge::Metric* const metric = cycles(*found, true);
        if (!metric) continue;
        EXPECT_GT(*metric->time, time);
        EXPECT_GT(std::get<std::uint64_t>(metric->value), value);
        time = *metric->time;
        value = std::get<std::uint64_t>(metric->value);
        ++count;
    } while (count < 3);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(program->finish(), 0) << program->log();
}

}  // namespace
}  // namespace vornex::test
