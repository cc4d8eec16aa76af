// The driver and a host that keeps its rules on a line that does what it likes with bytes.
#include "Hostile_Proxy.h"
#include "Stress_Fixture.h"

namespace {

using vornex::test::Hostile_Proxy;

QList<int> unlike() {
    QList<int> lengths;
    for (int i = 0; i < 24; ++i)
        lengths << 30 + 9 * i;  // an answer to another request has other item counts
    return lengths;
}

TEST_F(Stress, noForeignByteIsShownBehindAHostileLine) {
    poll(unlike());
    Sim_Process sim({"--pattern", "read", "-q"});
    ASSERT_NE(0, sim.port());
    Hostile_Proxy proxy(sim.port(), 40);
    Tcp_Host host(proxy.port(), 20);
    EXPECT_EQ(0, run(host, wantedExchanges()));
    host.close();
    proxy.finish();
    EXPECT_EQ(Hostile_Proxy::allKinds(), proxy.injected().size()) << proxy.summary();
    EXPECT_GE(host.failures, proxy.mustFail()) << "a damaged reply passed for a good one; " << proxy.summary();
    EXPECT_GT(proxy.greetings(), 0);
    EXPECT_GT(host.unasked, 0);
    EXPECT_GT(good, host.exchanges / 2);
    std::printf(
        "%ld exchanges, %ld good, %ld failed, %ld given up, %ld connections began with bytes or their end\n%s\n",
        host.exchanges, good, host.failures, givenUp, host.unasked, proxy.summary().c_str());
}

TEST_F(Stress, eachWriteIsAcknowledgedAndInPlaceOrGivenUpBehindAHostileLine) {
    Sim_Process sim({"--labels", COUNTER_LABELS, "--control", "-", "-q"});
    ASSERT_NE(0, sim.port());
    Hostile_Proxy proxy(sim.port(), 12);
    Host_Rules rules;
    rules.settleMs = 50;
    Tcp_Host host(proxy.port(), 20, rules);
    writeAndCompare(host, sim, wantedExchanges() / 3);
    host.close();
    proxy.finish();
    EXPECT_EQ(Hostile_Proxy::allKinds(), proxy.injected().size()) << proxy.summary();
    std::printf("%s\n", proxy.summary().c_str());
}

// Frames of one shape, and a gateway that hands the reply before to the next client.
TEST_F(Stress, aHostThatDoesNotListenToANewConnectionShowsForeignBytes) {
    const std::string gateway = "the one before to the next connection";
    for (const int settleMs : {200, -1}) {
        poll({333, 333, 333, 333, 333, 333});
        Sim_Process sim({"--pattern", "read", "-q"});
        ASSERT_NE(0, sim.port());
        Hostile_Proxy proxy(sim.port(), 8, gateway);
        proxy.greetsLate = true;
        Host_Rules rules;
        rules.settleMs = settleMs;
        Tcp_Host host(proxy.port(), 20, rules);
        const long wrong = run(host, 60);
        host.close();
        proxy.finish();
        EXPECT_GT(proxy.greetings(), 0);
        if (settleMs > 0) {
            EXPECT_EQ(0, wrong);
            EXPECT_GT(host.unasked, 0);
        } else {
            EXPECT_GT(wrong, 0);
        }
    }
}

}  // namespace
