// vornex-sim among peers who do not read, come in crowds or send without end: others are served as before, memory stays
// small, and SIGTERM ends it.
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#include "Sim_Client.h"

namespace vornex::test {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long MostGrowth = 512;  // MiB; a sanitizer keeps what was freed
#else
constexpr long MostGrowth = 24;
#endif

std::string textOf(const std::string& file) {
    std::stringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

std::string processFile(const Process& process, const std::string& name) {
    return "/proc/" + std::to_string(process.id()) + "/" + name;
}

// MiB that the process had at its largest.
long mostMemory(const Process& process) {
    const std::string status = textOf(processFile(process, "status"));
    const std::size_t at = status.find("VmHWM:");
    EXPECT_NE(at, std::string::npos);
    return at == std::string::npos ? 0 : std::atol(status.c_str() + at + 6) / 1024;
}

// ms of processor time so far.
long processorTime(const Process& process) {
    const std::string stat = textOf(processFile(process, "stat"));
    std::istringstream fields(stat.substr(stat.rfind(')') + 2));
    std::string skipped;
    for (int i = 0; i < 11; ++i)
        fields >> skipped;
    long user = 0, system = 0;
    fields >> user >> system;
    return (user + system) * 1000 / ::sysconf(_SC_CLK_TCK);
}

// No more descriptors than it has now, and two.
void limitDescriptors(const Process& process) {
    rlim_t limit = 0;
    for (int more = 2; more > 0; ++limit)
        more -= !std::filesystem::exists(processFile(process, "fd/") + std::to_string(limit));
    const rlimit limits = {limit, limit};
    ASSERT_EQ(::prlimit(process.id(), RLIMIT_NOFILE, &limits, nullptr), 0);
}

// Without reading what it has written.
bool endsByItself(const Process& process) {
    const double until = clockMs() + WaitLimit;
    while (clockMs() < until) {
        siginfo_t info = {};
        if (::waitid(P_PID, static_cast<id_t>(process.id()), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid)
            return true;
        ::poll(nullptr, 0, 5);
    }
    return false;
}

// ms from request to answer; the address is one of pattern mode or of the plant.
double exchange(Hex_Client& client) {
    const double begin = clockMs();
    client.send(Read);
    EXPECT_EQ(bytesIn(client.receive(12)), 12u);
    return clockMs() - begin;
}

// An answer as large as can be.
std::string largeRead() { return sealed(bytesOf("02 06 00 41 00 10 00 00 FD FF")); }

std::string times(std::size_t count, const std::string& text) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

TEST(Sim_Peers, controlPeersWhoDoNotReadAreDropped) {
    const std::string path = controlPath();
    Sim_Process sim({"--pattern", "--control", path});
    Hex_Client client(sim.port());
    exchange(client);
    const long before = mostMemory(sim);
    std::vector<std::unique_ptr<Control_Client>> peers;
    for (int i = 0; i < 5; ++i) {
        peers.push_back(std::make_unique<Control_Client>(path));
        EXPECT_TRUE(peers.back()->send(times(1000, "get 0 65535\n")));
    }
    for (int i = 0; i < 20; ++i)
        exchange(client);
    Control_Client reading(path);
    EXPECT_TRUE(reading.send("check 0 00\n"));
    EXPECT_EQ(reading.readLine().substr(0, 2), "ok");
    sim.waitForLog("control peer does not take its answer, connection closed");
    EXPECT_LT(mostMemory(sim) - before, MostGrowth);
    EXPECT_EQ(sim.finish(), 0) << sim.log();
    EXPECT_NE(sim.log().find("does not take its answer"), std::string::npos) << sim.log();
}

TEST(Sim_Peers, controlPeersHaveALimit) {
    const std::string path = controlPath();
    Sim_Process sim({"--pattern", "--control", path});
    std::vector<std::unique_ptr<Control_Client>> peers;
    int served = 0, refused = 0;
    for (int i = 0; i < 40; ++i) {
        peers.push_back(std::make_unique<Control_Client>(path));
        peers.back()->send("check 0 00\n");
        const std::string line = peers.back()->readLine();
        served += line.substr(0, 2) == "ok";
        refused += line == "error: 8 control peers are the limit";
    }
    EXPECT_EQ(served, 8);
    EXPECT_EQ(refused, 32);
    peers.clear();
    std::string line;
    for (const double until = clockMs() + WaitLimit; line.substr(0, 2) != "ok" && clockMs() < until;) {
        Control_Client next(path);
        next.send("check 0 00\n");
        line = next.readLine();
    }
    EXPECT_EQ(line.substr(0, 2), "ok") << "places become free again";
    EXPECT_EQ(sim.finish(), 0);
}

// One who goes on connecting costs next to nothing: today's clients are served, and the next one when there is room.
TEST(Sim_Peers, noCoreIsBurntWithoutDescriptors) {
    const std::string path = controlPath();
    for (const bool byControl : {true, false}) {
        SCOPED_TRACE(byControl ? "control peers" : "clients");
        Sim_Process sim({"--pattern", "--control", path, "--max-clients", "100", "--fault", "delay(10)"});
        Hex_Client client(sim.port());
        exchange(client);
        limitDescriptors(sim);
        {
            std::vector<std::unique_ptr<Control_Client>> peers;
            std::vector<std::unique_ptr<Hex_Client>> others;
            for (int i = 0; i < 6; ++i) {
                if (byControl) peers.push_back(std::make_unique<Control_Client>(path));
                if (!byControl) others.push_back(std::make_unique<Hex_Client>(sim.port()));
            }
            const long before = processorTime(sim);
            for (int i = 0; i < 100; ++i)
                EXPECT_GE(exchange(client), 9);
            EXPECT_LT(processorTime(sim) - before, 400) << "ms of a second or more";
        }
        Control_Client last(path);
        EXPECT_TRUE(last.send("check 0 00\n"));
        EXPECT_EQ(last.readLine().substr(0, 2), "ok");
        EXPECT_EQ(sim.finish(), 0);
        EXPECT_NE(sim.log().find(std::string("no connection of ") + (byControl ? "control peers" : "clients") +
                                 " can be taken: Too many open files"),
                  std::string::npos)
            << sim.log();
    }
}

TEST(Sim_Peers, standardOutputThatIsNotReadHoldsNobodyUp) {
    Sim_Process sim({"--pattern", "--control", "-"});
    Hex_Client client(sim.port());
    for (int i = 0; i < 10; ++i)
        sim.writeLine("get 0 65535");
    for (int i = 0; i < 20; ++i)
        exchange(client);
    sim.signal(SIGTERM);
    EXPECT_TRUE(endsByItself(sim)) << "the pipe is full, nobody reads it";
    EXPECT_EQ(sim.finish(false), 8) << "the summary could not be written";
}

TEST(Sim_Peers, logThatIsNotReadHoldsNobodyUp) {
    Sim_Process sim({"--pattern", "-v"});
    Hex_Client client(sim.port());
    for (int i = 0; i < 3000; ++i)
        exchange(client);
    sim.waitForLog("client 1: read");  // makes room
    exchange(client);
    EXPECT_EQ(sim.finish(), 0);
    EXPECT_NE(sim.log().find(" messages are missing here, nobody read them"), std::string::npos);
}

// 600 KB of requests for a gigabyte and more of answers that nobody reads.
TEST(Sim_Peers, clientsWhoDoNotReadCostLittle) {
    Sim_Process sim({"--pattern", "-o", "json"});
    Hex_Client client(sim.port());
    exchange(client);
    const long before = mostMemory(sim);
    std::vector<std::unique_ptr<Tcp_Client>> peers;
    for (int i = 0; i < 15; ++i) {
        peers.push_back(std::make_unique<Tcp_Client>(sim.port()));
        EXPECT_TRUE(peers.back()->send(times(3400, largeRead())));
    }
    double worst = 0;
    for (int i = 0; i < 200; ++i)
        worst = std::max(worst, exchange(client));
    const long growth = mostMemory(sim) - before;
    RecordProperty("worstMs", std::to_string(worst));
    RecordProperty("growthMiB", std::to_string(growth));
    EXPECT_LT(growth, MostGrowth);
    EXPECT_LT(worst, 3000) << "ms; a tenth of a second on a machine with time to spare";
    EXPECT_EQ(sim.finish(), 0);
    EXPECT_GE(sim.counted("requests"), 201 + 15);
    EXPECT_LT(sim.counted("requests"), 201 + 15 * 50) << "requests wait until their answers have room";
}

// A frame waits while its client reads slowly; no time runs meanwhile, and none is lost.
TEST(Sim_Peers, oneWhoReadsLateGetsEveryAnswer) {
    Sim_Process sim({"--pattern", "fixed:0", "--frame-time", "30", "-o", "json"});
    Tcp_Client late(sim.port());
    const std::size_t count = 100;
    ASSERT_TRUE(late.send(times(count, largeRead()) + bytesOf(Read) + "\x02"));
    Hex_Client client(sim.port());
    for (const double until = clockMs() + 100; clockMs() < until;)
        exchange(client);
    const std::string first = late.receive(65541);
    for (std::size_t i = 1; i < count; ++i)
        ASSERT_EQ(late.receive(65541) == first, true) << i;
    EXPECT_EQ(late.receive(12).size(), 12u);
    EXPECT_EQ(late.waitForEnd(), End::Closed) << "the last frame was never completed";
    EXPECT_EQ(sim.finish(), 0);
    EXPECT_EQ(sim.counted("slowFrames"), 1);
}

TEST(Sim_Peers, strayWritesEndAtTheLimitOfMemory) {
    Sim_Process sim({"-l", PLANT, "--memory", "1", "--control", "-", "-o", "json"});
    Hex_Client client(sim.port());
    client.send(Read);
    EXPECT_EQ(bytesIn(client.receive(12)), 12u);
    int written = 0;
    for (unsigned page = 16; page < 300; ++page) {
        std::string frame = bytesOf("02 07 00 40 00 00 00 00 01 00 77");
        for (int i = 0; i < 4; ++i)
            frame[4 + static_cast<std::size_t>(i)] = static_cast<char>((page << 12) >> 8 * i & 0xFF);
        client.Tcp_Client::send(sealed(frame) + bytesOf(Read));
        const std::string answer = client.receive(6);
        const bool acknowledged = answer == Ack;
        written += acknowledged;
        EXPECT_EQ(bytesIn(client.receive(acknowledged ? 12 : 6)), acknowledged ? 12u : 6u);
    }
    EXPECT_GT(written, 240);
    EXPECT_LE(written, 256);
    sim.writeLine("set 0xA0000000 77");
    EXPECT_EQ(sim.readLine(), "error: the memory is full; see --memory");
    EXPECT_EQ(sim.finish(), 0);
    EXPECT_EQ(sim.counted("memoryFull"), 284 - written);
    EXPECT_EQ(sim.counted("bytesWritten"), written);
    EXPECT_NE(sim.log().find("not carried out and not answered, the memory is full: write 1224704+1"),
              std::string::npos)
        << sim.log();
}

}  // namespace
}  // namespace vornex::test
