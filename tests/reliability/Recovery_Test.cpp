// The host comes back after each loss of the controller, and nothing grows.
#include <csignal>
#include <memory>

#include <dirent.h>
#include <unistd.h>

#include "Stress_Fixture.h"

namespace {

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

TEST_F(Recovery, comesBackEachTimeWithoutGrowth) {
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
