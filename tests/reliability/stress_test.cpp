// What the driver and a host that keeps its rules promise under faults of the link and of the controller.
#include <csignal>
#include <cstdlib>
#include <memory>

#include <dirent.h>
#include <unistd.h>

#include "Driver_Fixture.h"
#include "Sim_Process.h"
#include "Tcp_Host.h"

namespace {

using vornex::test::clockMs;
using vornex::test::Sim_Process;

// Exchanges of a run: few in CI, 10^6 in the long one.
long wantedExchanges() {
    const char* const wanted = std::getenv("VORNEX_STRESS_EXCHANGES");
    return wanted != nullptr ? std::atol(wanted) : 3000;
}

// Every kind of fault but the controller's death, together at 5 of 100 requests. Prime periods mix them all.
const std::vector<std::string> EveryFault = {
    "drop@every=347",  "delay(5,40)@every=349", "late(3)@every=353", "crc@every=359",        "flip@every=367",
    "short@every=373", "long@every=379",        "empty@every=383",   "junk@every=389",       "header@every=397",
    "count@every=401", "swap@every=409",        "stale@every=419",   "dup@every=421",        "slice(90,1)@every=431",
    "glue@every=433",  "rst(5)@every=439",      "fin(7)@every=443",  "refuse(20)@every=449", "stall(40)@every=457"};

std::vector<std::string> withFaults(std::vector<std::string> arguments, const std::vector<std::string>& faults) {
    for (const std::string& fault : faults)
        arguments.insert(arguments.end(), {"--fault", fault});
    return arguments;
}

// The byte that pattern mode keeps at an address in generation 0; the generation is mixed in by exclusive-or.
unsigned char patternByte(quint32 address) {
    quint32 mixed = address * 2654435761u;
    mixed ^= mixed >> 15;
    mixed *= 2246822519u;
    mixed ^= mixed >> 13;
    return static_cast<unsigned char>(mixed >> 24);
}

class Stress : public Driver_Fixture {
protected:
    // Polls blocks of bytes that lie too far apart to share a request.
    void poll(const QList<int>& lengths) {
        QList<Label_Type_Info> labels;
        QList<HOST_VAR> definitions;
        for (int i = 0; i < lengths.size(); ++i) {
            labels << makeLabel(qPrintable(blockName(i)), 1, addressOf(i), {10, 0, 1000});
            HOST_VAR definition;
            definition.label = blockName(i) + text("[0]");
            definition.count = lengths.at(i);
            definitions << definition;
        }
        PassVarName_2(&labels);
        settings.maxBytesPerRequest = 400;
        ASSERT_EQ(lengths.size(), ReCreatReadVarList(&definitions));
        blocks = lengths;
    }
    static QString blockName(int i) { return QString(text("B%1")).arg(i); }
    static quint32 addressOf(int i) { return 1000 + 1000 * static_cast<quint32>(i); }

    // Blocks shown now that hold a byte of another address or of two generations. Blocks never read are all zero.
    int foreignBlocks() {
        int foreign = 0;
        for (int i = 0; i < blocks.size(); ++i) {
            QByteArray shown;
            GetRegisterData(blockName(i) + text("[0]"), 0, QString(), 0, &shown, blocks.at(i));
            if (shown == QByteArray(shown.size(), '\0')) continue;
            const int generation = static_cast<unsigned char>(shown.at(0)) ^ patternByte(addressOf(i));
            for (int at = 0; at < shown.size(); ++at) {
                const int here = patternByte(addressOf(i) + static_cast<quint32>(at)) ^ generation;
                if (here == static_cast<unsigned char>(shown.at(at))) continue;
                ++foreign;
                break;
            }
        }
        return foreign;
    }

    // How many exchanges ended with a foreign byte on show.
    long run(Tcp_Host& host, long exchanges) {
        long wrong = 0;
        for (long i = 0; i < exchanges; ++i) {
            const int status = host.exchange();
            if (status == ResultGood) ++good;
            if (status > ResultGood) ++givenUp;
            if (status == ResultGood && foreignBlocks() > 0) ++wrong;
        }
        return wrong;
    }

    QList<int> blocks;
    long good = 0;
    long givenUp = 0;
};

TEST_F(Stress, NoForeignByteIsShownUnderAnyFault) {
    QList<int> lengths;
    for (int i = 0; i < 24; ++i)
        lengths << 30 + 9 * i;  // unlike: an answer to another request has other counts
    poll(lengths);
    Sim_Process sim(withFaults({"--pattern", "read", "-q", "-o", "json"}, EveryFault));
    ASSERT_NE(0, sim.port());
    Tcp_Host host(sim.port(), 30);
    EXPECT_EQ(0, run(host, wantedExchanges()));
    sim.finish();
    EXPECT_GT(good, host.exchanges / 2);
    EXPECT_GT(host.failures, 0);
    EXPECT_NE(std::string::npos, sim.summary().find("\"neverApplied\":[]")) << sim.summary();
    std::printf("%ld exchanges, %ld good, %ld failed, %ld given up\n%s\n", host.exchanges, good, host.failures, givenUp,
                sim.summary().c_str());
}

// Frames of one shape: only the order on the wire tells their replies apart.
TEST_F(Stress, AHostThatKeepsTheConnectionAfterATimeOutShowsForeignBytes) {
    const std::vector<std::string> faults = {"late(1)@every=17", "delay(25,60)@every=23", "dup@every=29"};
    for (const bool startAfresh : {true, false}) {
        poll({333, 333, 333, 333, 333, 333});
        Sim_Process sim(withFaults({"--pattern", "read", "-q"}, faults));
        ASSERT_NE(0, sim.port());
        Host_Rules rules;
        rules.startAfresh = startAfresh;
        Tcp_Host host(sim.port(), 20, rules);
        const long wrong = run(host, 400);
        if (startAfresh)
            EXPECT_EQ(0, wrong);
        else
            EXPECT_GT(wrong, 0);
    }
}

int controllerValue(Sim_Process& sim) {
    sim.writeLine("get 100 4");
    const QByteArray bytes = QByteArray::fromHex(QByteArray(sim.readLine().c_str()).mid(3));
    return bytes.size() == 4 ? static_cast<unsigned char>(bytes.at(0)) | static_cast<unsigned char>(bytes.at(1)) << 8 |
                                   static_cast<unsigned char>(bytes.at(2)) << 16
                             : -1;
}

TEST_F(Stress, EachWriteIsConfirmedAndInPlaceOrReportedAsGivenUp) {
    QList<Label_Type_Info> labels = {makeLabel("Counter", 5, 100)};
    PassVarName_2(&labels);
    settings.retryLimit = 1;
    std::vector<std::string> faults = EveryFault;
    faults.push_back("drop@every=11");  // often enough to give up now and then
    faults.push_back("rst(3)@every=7");
    Sim_Process sim(withFaults({"--labels", COUNTER_LABELS, "--control", "-", "-q"}, faults));
    ASSERT_NE(0, sim.port());
    Tcp_Host host(sim.port(), 30);
    int number = 0;
    long states[3] = {};
    while (host.exchanges < wantedExchanges() / 3) {
        QList<int> expected, seen, possible = {number};
        for (int i = 0; i < 4; ++i) {
            expected << ++number;
            QByteArray value(4, '\0');
            for (int byte = 0; byte < 3; ++byte)
                value[byte] = static_cast<char>(number >> 8 * byte);
            SetRegisterData(text("Counter"), 0, QString(), 0, &value, 2, 5, number);
        }
        notices().clear();
        for (int tries = 0; notices().size() < 4 && tries < 200; ++tries)
            host.exchange();
        for (const Notice& notice : notices()) {
            seen << notice.varId;
            ++states[notice.state];
            if (notice.state == 1) possible.clear();  // a later write stands in the place of all before it
            possible << notice.varId;
        }
        ASSERT_EQ(expected, seen);
        const int value = controllerValue(sim);
        ASSERT_TRUE(possible.contains(value))
            << value << " instead of " << possible.first() << " to " << possible.last();
        // What was given up may have arrived: begin the next four from what is there.
        if (value != number) {
            QByteArray known(4, '\0');
            for (int byte = 0; byte < 3; ++byte)
                known[byte] = static_cast<char>(number >> 8 * byte);
            sim.writeLine(("set 100 " + known.toHex()).constData());
            ASSERT_EQ("ok", sim.readLine());
        }
    }
    EXPECT_GT(states[1], states[2]);
    EXPECT_GT(states[2], 0);
    std::printf("%ld writes confirmed, %ld given up, %ld exchanges\n", states[1], states[2], host.exchanges);
}

struct Usage {
    long privateKilobytes = 0;
    int descriptors = 0;
};

Usage ownUsage() {
    Usage usage;
    char line[256];
    if (FILE* const rollup = std::fopen("/proc/self/smaps_rollup", "r")) {
        while (std::fgets(line, sizeof line, rollup) != nullptr)
            std::sscanf(line, "Private_Dirty: %ld", &usage.privateKilobytes);
        std::fclose(rollup);
    }
    if (DIR* const folder = ::opendir("/proc/self/fd")) {
        while (::readdir(folder) != nullptr)
            ++usage.descriptors;
        ::closedir(folder);
    }
    return usage;
}

class Recovery : public Stress {
protected:
    enum Cut { Killed, BlackHole, ResetInMidFrame };

    // Exchanges until one has the wanted outcome; ms that it took, -1 when it did not come.
    static double until(Tcp_Host& host, bool fresh) {
        const double start = clockMs();
        while (clockMs() < start + 20000) {
            if ((host.exchange() == ResultGood) == fresh) return clockMs() - start;
            if (fresh) ::usleep(2000);  // back-off
        }
        return -1;
    }
    void cut(Tcp_Host& host, std::unique_ptr<Sim_Process>& sim, Cut how) {
        if (how == Killed) sim->signal(SIGKILL);
        if (how == BlackHole) sim->signal(SIGSTOP);
        if (how == ResetInMidFrame) {
            sim->writeLine("fault add rst(9)");
            ASSERT_EQ("ok", sim->readLine());
        }
        EXPECT_GE(until(host, false), 0);
        if (how == Killed) sim.reset();  // takes its exit code
    }
    static void restore(std::unique_ptr<Sim_Process>& sim, Cut how, int port) {
        if (how == Killed) sim.reset(new Sim_Process({"--pattern", "read", "--control", "-", "-q"}, port));
        if (how == BlackHole) sim->signal(SIGCONT);
        if (how == ResetInMidFrame) {
            sim->writeLine("fault clear");
            ASSERT_EQ("ok", sim->readLine());
        }
    }
};

TEST_F(Recovery, ComesBackEachTimeWithoutGrowth) {
    poll({100, 200, 300});
    std::unique_ptr<Sim_Process> sim(new Sim_Process({"--pattern", "read", "--control", "-", "-q"}));
    const int port = sim->port();
    ASSERT_NE(0, port);
    Tcp_Host host(port, 100);
    const int recoveries = wantedExchanges() > 3000 ? 102 : 12;
    Usage before;
    double longest = 0;
    for (int i = 0; i < recoveries; ++i) {
        if (i == recoveries / 2) before = ownUsage();
        const Cut how = static_cast<Cut>(i % 3);
        ASSERT_GE(until(host, true), 0);
        cut(host, sim, how);
        restore(sim, how, port);
        ASSERT_EQ(port, sim->port()) << i;
        const double took = until(host, true);
        ASSERT_GE(took, 0) << i;
        longest = std::max(longest, took);
        EXPECT_EQ(0, foreignBlocks());
    }
    const Usage after = ownUsage();
    EXPECT_LT(longest, 2000);
    EXPECT_EQ(before.descriptors, after.descriptors);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !defined(__clang__)
    EXPECT_LE(after.privateKilobytes - before.privateKilobytes, 64);
#endif
    std::printf("%d recoveries, the longest took %.0f ms; %ld kB and %d descriptors, %+ld kB in the second half\n",
                recoveries, longest, after.privateKilobytes, after.descriptors,
                after.privateKilobytes - before.privateKilobytes);
}

}  // namespace
