// What the reliability tests share: blocks of bytes that tell which address and generation they belong to.
#ifndef VORNEX_TESTS_STRESS_FIXTURE_H
#define VORNEX_TESTS_STRESS_FIXTURE_H

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "Driver_Fixture.h"
#include "Sim_Process.h"
#include "Tcp_Host.h"

using vornex::test::clockMs;
using vornex::test::Sim_Process;

// Exchanges of a run: few in CI, 10^6 in the long one.
inline long wantedExchanges() {
    const char* const wanted = std::getenv("VORNEX_STRESS_EXCHANGES");
    return wanted != nullptr ? std::atol(wanted) : 3000;
}

// The byte that pattern mode keeps at an address in generation 0; the generation is mixed in by exclusive-or.
inline unsigned char patternByte(quint32 address) {
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

    // Numbers written in fours to the controller's counter until so many exchanges are over. Each is told as
    // acknowledged and there, or as given up; what is there is the last one acknowledged, or one given up after it.
    void writeAndCompare(Tcp_Host& host, Sim_Process& sim, long exchanges) {
        QList<Label_Type_Info> labels = {makeLabel("Counter", 5, 100)};
        PassVarName_2(&labels);
        settings.retryLimit = 1;
        int number = 0;
        long states[3] = {};
        while (host.exchanges < exchanges) {
            QList<int> expected, seen, possible = {number};
            for (int i = 0; i < 4; ++i) {
                expected << ++number;
                QByteArray value = counterBytes(number);
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
            sim.writeLine("get 100 4");
            const QByteArray shown = QByteArray::fromHex(QByteArray(sim.readLine().c_str()).mid(3));
            const auto there = std::find_if(possible.begin(), possible.end(),
                                            [&shown](int one) { return counterBytes(one) == shown; });
            ASSERT_NE(possible.end(), there)
                << shown.toHex().constData() << " instead of " << possible.first() << " to " << possible.last();
            // What was given up may have arrived: begin the next four from what is there.
            if (*there == number) continue;
            sim.writeLine(("set 100 " + counterBytes(number).toHex()).constData());
            ASSERT_EQ("ok", sim.readLine());
        }
        EXPECT_GT(states[1], states[2]);
        EXPECT_GT(states[2], 0);
        std::printf("%ld writes acknowledged, %ld given up, %ld exchanges\n", states[1], states[2], host.exchanges);
    }
    static QByteArray counterBytes(int number) {
        QByteArray bytes(4, '\0');
        for (int byte = 0; byte < 3; ++byte)
            bytes[byte] = static_cast<char>(number >> 8 * byte);
        return bytes;
    }

    QList<int> blocks;
    long good = 0;
    long givenUp = 0;
};

#endif
