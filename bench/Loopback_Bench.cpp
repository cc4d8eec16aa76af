// loopback-bench LIBRARY [SIMULATOR_PORT SIMULATOR_PROCESS]: fetches data over one loopback connection in each of
// several ways, in rounds that take turns, and prints for each round the processor time of this process and the time
// that passed, in nanoseconds for one exchange. The servers are other processes: only the times that passed include
// them. Where client and server run decides what an exchange costs, so that each is kept on one core: both on the same,
// then on two. With a port, the driver also talks to the simulator that listens there.
#include <signal.h>

#include <QtCore/QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "Loopback_Contender.h"
#include "Loopback_Socket.h"
#include "Processor.h"
#include "Straightforward.h"

namespace {

enum { Rounds = 15, WarmUpRounds = 2, SlicesInRound = 25, ExchangesInSlice = 50, SettlingExchanges = 50 };

std::string labelReply() {
    std::string reply(4, '\0');
    reply += static_cast<char>(BlockBytes & 0xFF);
    reply += static_cast<char>(BlockBytes >> 8);
    for (int i = 0; i < BlockBytes; ++i)
        reply += static_cast<char>(i);
    const unsigned short check = straightforward::crc(reinterpret_cast<const unsigned char*>(reply.data()),
                                                      static_cast<unsigned short>(reply.size()));
    reply += static_cast<char>(check & 0xFF);
    reply += static_cast<char>(check >> 8);
    return reply;
}

// Transaction and protocol numbers, length, unit, function 3, byte count, then the registers.
std::string modbusReply() {
    std::string reply(ModbusReplyBytes, '\0');
    reply[5] = static_cast<char>(3 + 2 * Registers);
    reply[6] = 1;
    reply[7] = 3;
    reply[8] = static_cast<char>(2 * Registers);
    return reply;
}

struct Times {
    std::vector<double> processor;
    std::vector<double> passed;
};

// Client and server on one core, or each on one of its own.
enum Placement { OnOneCore, OnTwoCores };
const char* const placementNames[] = {"one_core", "two_cores"};

struct Entry {
    const char* name;
    int server;  // its process
    std::unique_ptr<Contender> contender;
    Times rounds[2];  // by Placement: medians of the round's slices
};
typedef std::vector<Entry> Entries;

void measureSlice(Contender& contender, Times& times) {
    const double processor = nanoseconds(CLOCK_PROCESS_CPUTIME_ID);
    const double passed = nanoseconds(CLOCK_MONOTONIC);
    contender.exchange(ExchangesInSlice);
    times.processor.push_back((nanoseconds(CLOCK_PROCESS_CPUTIME_ID) - processor) / ExchangesInSlice);
    times.passed.push_back((nanoseconds(CLOCK_MONOTONIC) - passed) / ExchangesInSlice);
}

void place(const Entries& entries, Placement placement) {
    const std::vector<int> cores = idlestCores();
    pin(0, cores[0]);
    for (const Entry& entry : entries)
        pin(entry.server, cores[placement == OnTwoCores ? 1 : 0]);
}

// The contenders take turns in short slices, so that whatever else the machine does hits them all alike.
void measureRound(Entries& entries, Placement placement, bool counts) {
    place(entries, placement);
    for (Entry& entry : entries)
        entry.contender->exchange(SettlingExchanges);
    std::vector<Times> slices(entries.size());
    for (int slice = 0; slice < SlicesInRound; ++slice)
        for (size_t i = 0; i < entries.size(); ++i)
            measureSlice(*entries[i].contender, slices[i]);
    for (size_t i = 0; i < entries.size() && counts; ++i) {
        entries[i].rounds[placement].processor.push_back(median(slices[i].processor));
        entries[i].rounds[placement].passed.push_back(median(slices[i].passed));
    }
}

void print(const char* name, const std::vector<double>& values) {
    std::printf("\"%s\": [", name);
    for (size_t i = 0; i < values.size(); ++i)
        std::printf("%s%.0f", i == 0 ? "" : ", ", values[i]);
    std::printf("]");
}

void print(const Entries& entries, const std::vector<Placement>& placements) {
    std::printf("{");
    for (size_t p = 0; p < placements.size(); ++p) {
        std::printf("%s\n \"%s\": {", p == 0 ? "" : ",", placementNames[placements[p]]);
        for (size_t i = 0; i < entries.size(); ++i) {
            std::printf("%s\n  \"%s\": {\"bytes\": %d, ", i == 0 ? "" : ",", entries[i].name,
                        entries[i].contender->bytes());
            print("cpu_ns", entries[i].rounds[placements[p]].processor);
            std::printf(", ");
            print("wall_ns", entries[i].rounds[placements[p]].passed);
            std::printf("}");
        }
        std::printf("\n }");
    }
    std::printf("\n}\n");
}

}  // namespace

void fail(const std::string& what) {
    std::fprintf(stderr, "loopback-bench: %s\n", what.c_str());
    std::exit(1);
}

int main(int argc, char** argv) {
    if (argc != 2 && argc != 4) fail("usage: loopback-bench LIBRARY [SIMULATOR_PORT SIMULATOR_PROCESS]");
    signal(SIGCHLD, SIG_IGN);  // the servers end by themselves, with their connections
    const Plain_Server driver = startPlainServer(labelReply(), false);
    const Plain_Server floor = startPlainServer(labelReply(), false);
    const Plain_Server pingPong = startPlainServer(labelReply(), false);
    const Plain_Server modbus = startPlainServer(modbusReply(), true);
    const Plain_Server serialBus = startPlainServer(modbusReply(), true);
    QCoreApplication application(argc, argv);

    Entries entries;
    entries.push_back({"driver", driver.process, makeDriverHost(argv[1], driver.port), {}});
    entries.push_back({"floor", floor.process, makeFloor(argv[1], floor.port), {}});
    entries.push_back({"ping_pong", pingPong.process, makePingPong(pingPong.port), {}});
    entries.push_back({"libmodbus", modbus.process, makeModbus(modbus.port), {}});
    entries.push_back({"qt_serialbus", serialBus.process, makeSerialBus(serialBus.port), {}});
    if (argc == 4)
        entries.push_back({"driver_simulator", std::atoi(argv[3]), makeDriverHost(argv[1], std::atoi(argv[2])), {}});

    std::vector<Placement> placements = {OnOneCore};
    if (idlestCores().size() > 1) placements.push_back(OnTwoCores);
    for (int round = 0; round < WarmUpRounds + Rounds; ++round)
        for (const Placement placement : placements)
            measureRound(entries, placement, round >= WarmUpRounds);
    print(entries, placements);
    return 0;
}
