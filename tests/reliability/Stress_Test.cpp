// What the driver and a host that keeps its rules promise under faults of the link and of the controller.
#include "Stress_Fixture.h"

namespace {

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

TEST_F(Stress, noForeignByteIsShownUnderAnyFault) {
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
TEST_F(Stress, aHostThatKeepsTheConnectionAfterATimeOutShowsForeignBytes) {
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

// The check value of zeros is zero: only the item counts tell that such a reply holds nothing.
TEST_F(Stress, aReplyOfZerosIsNoValue) {
    for (const bool checkCounts : {true, false}) {
        poll({300});
        PLC_driver.dataImage.clear();
        Sim_Process sim({"--pattern", "read", "-q"});  // each read shows another generation
        ASSERT_NE(0, sim.port());
        Host_Rules rules;
        rules.checkCounts = checkCounts;
        Tcp_Host host(sim.port(), 1000, rules);
        host.zerosEvery = 5;
        settings.retryLimit = 1000;
        long goods = 0, goodsWithoutAValue = 0;
        QByteArray before;
        for (int i = 0; i < 100; ++i) {
            const bool isGood = host.exchange() == ResultGood;
            QByteArray shown;
            GetRegisterData(blockName(0) + text("[0]"), 0, QString(), 0, &shown, 300);
            EXPECT_EQ(0, foreignBlocks());
            if (isGood) ++goods;
            if (isGood && shown == before) ++goodsWithoutAValue;
            before = shown;
        }
        EXPECT_EQ(100, host.replies);
        EXPECT_EQ(20, host.zeroed);
        EXPECT_EQ(checkCounts ? 80 : 100, goods);
        EXPECT_EQ(checkCounts ? 0 : 20, goodsWithoutAValue) << "a value passed for new that no reply brought";
    }
}

TEST_F(Stress, eachWriteIsConfirmedAndInPlaceOrReportedAsGivenUp) {
    std::vector<std::string> faults = EveryFault;
    faults.push_back("drop@every=11");  // often enough to give up now and then
    faults.push_back("rst(3)@every=7");
    Sim_Process sim(withFaults({"--labels", COUNTER_LABELS, "--control", "-", "-q"}, faults));
    ASSERT_NE(0, sim.port());
    Tcp_Host host(sim.port(), 30);
    writeAndCompare(host, sim, wantedExchanges() / 3);
}

}  // namespace
