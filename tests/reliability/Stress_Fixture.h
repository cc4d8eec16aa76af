// What the reliability tests share: blocks of bytes that tell which address and generation they belong to.
#ifndef VORNEX_TESTS_STRESS_FIXTURE_H
#define VORNEX_TESTS_STRESS_FIXTURE_H

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

    QList<int> blocks;
    long good = 0;
    long givenUp = 0;
};

#endif
