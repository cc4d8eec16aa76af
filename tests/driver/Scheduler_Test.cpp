// The scheduler: which request goes next.
#include "Driver_Fixture.h"
#include "driver/Host_Setup.h"

namespace {

class Scheduler : public Driver_Fixture {};

void queueWrites(quint32 from, int count) {
    for (int i = 0; i < count; ++i) {
        RW_VAR write = makeWrite(from + static_cast<quint32>(i), "x", 100 + i);
        AddListWriteVar(&write);
    }
}

TEST_F(Scheduler, nothingToSend) {
    EXPECT_EQ(nullptr, ComCommunication());
    EXPECT_EQ(1, settings.finishFlag);
    EXPECT_EQ(NoRequestYet, PLC_driver.currentKind);
    EXPECT_EQ(1, QueryFinishFlag());
}

TEST_F(Scheduler, sixWritesAndOneReadWithoutACyclicList) {
    queueWrites(1, 6);
    PLC_driver.onceReadList << makeRequest(50, 2);
    QList<qint64> served;
    for (int i = 0; i < 9; ++i)
        served << exchange();
    EXPECT_EQ((QList<qint64>{1, 2, 3, 4, 5, 50, -1, 6, -1}), served);
}

TEST_F(Scheduler, elevenReadsWithoutACyclicList) {
    QList<qint64> served;
    for (int i = 0; i < 11; ++i)
        PLC_driver.onceReadList << makeRequest(50 + static_cast<quint32>(i), 2, 10 + i);
    for (int i = 0; i < 13; ++i)
        served << exchange();
    EXPECT_EQ((QList<qint64>{50, 51, 52, 53, 54, -1, 55, 56, 57, 58, 59, -1, 60}), served);
}

TEST_F(Scheduler, fiveInARowThenTheNextSourceAndTheCyclicReadResetsBoth) {
    queueWrites(1, 12);
    for (int i = 0; i < 11; ++i)
        PLC_driver.onceReadList << makeRequest(50 + static_cast<quint32>(i), 2, 10 + i);
    PLC_driver.readList << makeRequest(90, 2);
    QList<qint64> served;
    for (int i = 0; i < 25; ++i)
        served << exchange();
    EXPECT_EQ(
        (QList<qint64>{1, 2, 3, 4, 5, 50, 51, 52, 53, 54, 90, 6, 7, 8, 9, 10, 55, 56, 57, 58, 59, 90, 11, 12, 60}),
        served);
}

TEST_F(Scheduler, theFrameInFlightIsReturnedAgainWhateverIsQueued) {
    PLC_driver.readList << makeRequest(90, 2);
    Protocol* const first = ComCommunication();
    const QByteArray frame = first->frame;
    queueWrites(1, 3);
    EXPECT_EQ(first, ComCommunication());
    EXPECT_EQ(frame, ComCommunication()->frame);
    EXPECT_EQ(0, PLC_driver.writeBurst);
    EXPECT_EQ(StatusReplyPending, PLC_driver.readList.first().status);
}

TEST_F(Scheduler, groupsStayBelowAThousandBytes) {
    const struct {
        QList<int> lengths;
        int served;
    } rows[] = {{{400, 500, 99, 10}, 3}, {{400, 600}, 1}, {{1500, 1}, 1}, {{999, 0, 1}, 2}, {{4}, 1}};
    for (const auto& row : rows) {
        PLC_driver.protocolList.clear();
        PLC_driver.readList.clear();
        for (int i = 0; i < row.lengths.size(); ++i)
            PLC_driver.readList << makeRequest(static_cast<quint32>(1000 * i), row.lengths.at(i));
        ASSERT_NE(nullptr, ComCommunication());
        EXPECT_EQ(row.served, PLC_driver.groupList.size()) << row.lengths.first();
    }
}

TEST_F(Scheduler, emptyReadsCannotOverflowTheBodyLength) {
    for (int i = 0; i < 12000; ++i)
        PLC_driver.readList << makeRequest(1, 0);
    const Protocol* const protocol = ComCommunication();
    const int body =
        static_cast<unsigned char>(protocol->frame.at(1)) | static_cast<unsigned char>(protocol->frame.at(2)) << 8;
    EXPECT_EQ(protocol->frameLength - 6, body);
    EXPECT_EQ(sealed(protocol->frame.left(protocol->frameLength - 2)), protocol->frame);
}

TEST_F(Scheduler, requestsForDisabledStationsAreDroppedOrSkipped) {
    EnableEthernet(4, 0);
    for (int i = 0; i < 4; ++i)
        PLC_driver.writeList << makeWrite(static_cast<quint32>(i), "x", i, i < 3 ? 4 : 0);
    EXPECT_EQ(3u, ComCommunication()->request.address);
    EXPECT_EQ(1, PLC_driver.writeList.size());
    exchange();

    PLC_driver.onceReadList << makeRequest(1, 2, 1, 4);
    PLC_driver.readList << makeRequest(10, 2, -1, 4) << makeRequest(11, 2, -1, 4);
    EXPECT_EQ(nullptr, ComCommunication());
    EXPECT_TRUE(PLC_driver.onceReadList.isEmpty());
    EXPECT_EQ((QList<quint32>{10, 11}), addressesOf(PLC_driver.readList));
    EXPECT_EQ(Write, PLC_driver.currentKind);

    PLC_driver.readList << makeRequest(12, 2) << makeRequest(13, 2, -1, 4);
    ASSERT_NE(nullptr, ComCommunication());
    EXPECT_EQ((QList<quint32>{12, 13, 10, 11}), addressesOf(PLC_driver.groupList));
}

TEST_F(Scheduler, stationSwitch) {
    const struct {
        QList<QList<int>> calls;  // station, flag
        bool fourDisabled;
    } rows[] = {
        {{{4, 0}}, true},  {{{4, 0}, {4, 0}, {4, 1}}, false}, {{{4, 1}}, false},          {{{4, 0}, {4, 2}}, true},
        {{{4, 2}}, false}, {{{4, 0}, {-1, 1}}, false},        {{{4, 0}, {-9, 0}}, false},
    };
    for (const auto& row : rows) {
        EnCommStation(-1, 1);
        for (const QList<int>& call : row.calls)
            EnCommStation(call.at(0), call.at(1));
        EXPECT_EQ(row.fourDisabled, Ethernetcontains(4));
        EXPECT_FALSE(Ethernetcontains(-1));
    }
}

TEST_F(Scheduler, remoteModePreparesNoFrame) {
    settings.remoteMode = 1;
    queueWrites(1, 1);
    EXPECT_EQ(nullptr, ComCommunication());
    EXPECT_EQ(1, PLC_driver.writeList.size());
    EXPECT_EQ(0, PLC_driver.writeBurst);
    PLC_driver.writeList.clear();
    PLC_driver.readList << makeRequest(1, 2) << makeRequest(9, 2);
    EXPECT_EQ(nullptr, ComCommunication());
    EXPECT_EQ(1, PLC_driver.groupList.size());
    EXPECT_EQ(StatusReplyPending, PLC_driver.readList.first().status);
}

}  // namespace
