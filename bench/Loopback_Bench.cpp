// loopback-bench LIBRARY [SIMULATOR_PORT]: fetches data over one loopback connection in each of several ways, in
// interleaved rounds, and prints for each round the processor time of this process and the time that passed, in
// nanoseconds for one exchange. The servers are other processes: only the times that passed include them. With a port,
// the driver also talks to the simulator that listens there.
#include <signal.h>

#include <QtCore/QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "Loopback_Contender.h"
#include "Loopback_Socket.h"
#include "Straightforward.h"

namespace {

enum { Rounds = 9, ExchangesInRound = 2000, WarmUp = 200 };

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

double nanoseconds(clockid_t clock) {
    timespec time;
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

struct Round {
    double processor;
    double passed;
};

Round measure(Contender& contender) {
    const double processor = nanoseconds(CLOCK_PROCESS_CPUTIME_ID);
    const double passed = nanoseconds(CLOCK_MONOTONIC);
    contender.exchange(ExchangesInRound);
    return {(nanoseconds(CLOCK_PROCESS_CPUTIME_ID) - processor) / ExchangesInRound,
            (nanoseconds(CLOCK_MONOTONIC) - passed) / ExchangesInRound};
}

struct Entry {
    const char* name;
    std::unique_ptr<Contender> contender;
    std::vector<Round> rounds;
};

void print(const std::vector<Entry>& entries) {
    std::printf("[");
    for (size_t i = 0; i < entries.size(); ++i) {
        std::printf("%s\n {\"name\": \"%s\", \"bytes\": %d, \"rounds\": [", i == 0 ? "" : ",", entries[i].name,
                    entries[i].contender->bytes());
        for (size_t r = 0; r < entries[i].rounds.size(); ++r)
            std::printf("%s{\"cpu_ns\": %.0f, \"wall_ns\": %.0f}", r == 0 ? "" : ", ", entries[i].rounds[r].processor,
                        entries[i].rounds[r].passed);
        std::printf("]}");
    }
    std::printf("\n]\n");
}

}  // namespace

void fail(const std::string& what) {
    std::fprintf(stderr, "loopback-bench: %s\n", what.c_str());
    std::exit(1);
}

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) fail("usage: loopback-bench LIBRARY [SIMULATOR_PORT]");
    signal(SIGCHLD, SIG_IGN);  // the servers end by themselves, with their connections
    const int label = startPlainServer(labelReply(), false);
    const int floor = startPlainServer(labelReply(), false);
    const int modbus = startPlainServer(modbusReply(), true);
    const int serialBus = startPlainServer(modbusReply(), true);
    QCoreApplication application(argc, argv);

    std::vector<Entry> entries;
    entries.push_back({"driver", makeDriverHost(argv[1], label), {}});
    entries.push_back({"ping_pong", makePingPong(floor), {}});
    entries.push_back({"libmodbus", makeModbus(modbus), {}});
    entries.push_back({"qt_serialbus", makeSerialBus(serialBus), {}});
    if (argc == 3) entries.push_back({"driver_simulator", makeDriverHost(argv[1], std::atoi(argv[2])), {}});
    for (Entry& entry : entries)
        entry.contender->exchange(WarmUp);
    for (int round = 0; round < Rounds; ++round)
        for (Entry& entry : entries)
            entry.rounds.push_back(measure(*entry.contender));
    print(entries);
    return 0;
}
