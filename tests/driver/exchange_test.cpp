// The scheduler's order and the reply dispatch: which request goes next, and what each reply makes of it.
#include <functional>

#include "Driver_Fixture.h"
#include "driver/Host_Setup.h"
#include "driver/Reply_Dispatch.h"

namespace {

class Scheduler : public Driver_Fixture {};
class Dispatch : public Driver_Fixture {};

QList<quint32> addressesOf(const QList<RW_VAR>& list) {
    QList<quint32> addresses;
    for (const RW_VAR& request : list)
        addresses.append(request.address);
    return addresses;
}

void queueWrites(quint32 from, int count) {
    for (int i = 0; i < count; ++i) {
        RW_VAR write = makeWrite(from + static_cast<quint32>(i), "x", 100 + i);
        AddListWriteVar(&write);
    }
}

TEST_F(Scheduler, NothingToSend) {
    EXPECT_EQ(nullptr, ComCommunication());
    EXPECT_EQ(1, settings.finishFlag);
    EXPECT_EQ(NoRequestYet, PLC_driver.currentKind);
    EXPECT_EQ(1, QueryFinishFlag());
}

TEST_F(Scheduler, SixWritesAndOneReadWithoutACyclicList) {
    queueWrites(1, 6);
    PLC_driver.onceReadList << makeRequest(50, 2);
    QList<qint64> served;
    for (int i = 0; i < 9; ++i)
        served << exchange();
    EXPECT_EQ((QList<qint64>{1, 2, 3, 4, 5, 50, -1, 6, -1}), served);
}

TEST_F(Scheduler, ElevenReadsWithoutACyclicList) {
    QList<qint64> served;
    for (int i = 0; i < 11; ++i)
        PLC_driver.onceReadList << makeRequest(50 + static_cast<quint32>(i), 2, 10 + i);
    for (int i = 0; i < 13; ++i)
        served << exchange();
    EXPECT_EQ((QList<qint64>{50, 51, 52, 53, 54, -1, 55, 56, 57, 58, 59, -1, 60}), served);
}

TEST_F(Scheduler, FiveInARowThenTheNextSourceAndTheCyclicReadResetsBoth) {
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

TEST_F(Scheduler, TheFrameInFlightIsReturnedAgainWhateverIsQueued) {
    PLC_driver.readList << makeRequest(90, 2);
    Protocol* const first = ComCommunication();
    const QByteArray frame = first->frame;
    queueWrites(1, 3);
    EXPECT_EQ(first, ComCommunication());
    EXPECT_EQ(frame, ComCommunication()->frame);
    EXPECT_EQ(0, PLC_driver.writeBurst);
    EXPECT_EQ(StatusReplyPending, PLC_driver.readList.first().status);
}

TEST_F(Scheduler, GroupsStayBelowAThousandBytes) {
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

TEST_F(Scheduler, EmptyReadsCannotOverflowTheBodyLength) {
    for (int i = 0; i < 12000; ++i)
        PLC_driver.readList << makeRequest(1, 0);
    const Protocol* const protocol = ComCommunication();
    const int body =
        static_cast<unsigned char>(protocol->frame.at(1)) | static_cast<unsigned char>(protocol->frame.at(2)) << 8;
    EXPECT_EQ(protocol->frameLength - 6, body);
    EXPECT_EQ(sealed(protocol->frame.left(protocol->frameLength - 2)), protocol->frame);
}

TEST_F(Scheduler, RequestsForDisabledStationsAreDroppedOrSkipped) {
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

TEST_F(Scheduler, StationSwitch) {
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

TEST_F(Scheduler, RemoteModePreparesNoFrame) {
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

TEST_F(Dispatch, WithoutAFrameInFlightOnlyTheStatusChanges) {
    PLC_driver.result.varId = 5;
    QByteArray reply = "whatever";
    EXPECT_EQ(1, DataCom(&reply, 8)->status);
    EXPECT_EQ(5, PLC_driver.result.varId);
    EXPECT_EQ(0, settings.retryCount);
}

struct Band_Row {
    const char* name;
    bool local;
    std::function<QByteArray(QByteArray)> spoil;  // from the good reply
    int band;
};

TEST_F(Dispatch, FailedRepliesAreRetriedThenGivenUpWithTheirBand) {
    const auto shorter = [](QByteArray good) { return good.left(good.size() - 1); };
    const auto flipped = [](QByteArray good) {
        good[5] = static_cast<char>(good.at(5) ^ 1);
        return good;
    };
    const auto counted = [](QByteArray good) {  // the count is wrong, the check value right
        good.chop(2);
        good[4] = static_cast<char>(good.at(4) + 1);
        return sealed(good);
    };
    const auto none = [](QByteArray) { return QByteArray(); };
    const Band_Row rows[] = {
        {"local check value", true, flipped, 11},
        {"local item count", true, counted, 11},
        {"local empty", true, none, 41},
        {"local length", true, shorter, 71},
        {"remote check value", false, flipped, 111},
        {"remote item count", false, counted, 111},
        {"remote empty", false, none, 141},
        {"remote length", false, shorter, 171},
    };
    for (const Band_Row& row : rows)
        for (int varType : {0, 1, 3, 11, 12, -1}) {
            RW_VAR read = makeRequest(0x100, 4, 1);
            read.varType = varType;
            read.areaId = row.local ? LocalArea : RemoteArea;
            PLC_driver.onceReadList = {read};
            PLC_driver.onceReadBurst = 0;
            failures().clear();
            ASSERT_NE(nullptr, ComCommunication()) << row.name;
            const QByteArray bad = row.spoil(goodReply());
            EXPECT_EQ(0, answer(bad)) << row.name;
            EXPECT_EQ(0, answer(bad)) << row.name;
            EXPECT_EQ(1, PLC_driver.protocolList.size());
            const int offset = varType >= 1 && varType <= 11 ? varType : 0;
            EXPECT_EQ(row.band + offset, answer(bad)) << row.name;
            EXPECT_TRUE(PLC_driver.protocolList.isEmpty());
            EXPECT_EQ(QList<int>{varType}, failures()) << row.name;
            EXPECT_EQ(0, settings.retryCount);
            EXPECT_TRUE(PLC_driver.commFailed);
            EXPECT_TRUE(PLC_driver.dataImage.isEmpty()) << row.name;
        }
}

TEST_F(Dispatch, ANullReplyIsAnEmptyOne) {
    settings.retryLimit = 0;
    PLC_driver.readList << makeRequest(1, 4);
    ComCommunication();
    EXPECT_EQ(41, DataCom(nullptr, 0)->status);
    ComCommunication();
    EXPECT_EQ(11, DataCom(nullptr, PLC_driver.protocolList.first().replyLength)->status);
}

TEST_F(Dispatch, RetriesAreCountedAcrossRequests) {
    PLC_driver.readList << makeRequest(1, 4);
    ComCommunication();
    answer("");
    answer("");
    EXPECT_EQ(2, settings.retryCount);
    answer(goodReply());
    EXPECT_EQ(2, settings.retryCount);
    ComCommunication();
    EXPECT_NE(0, answer(""));
}

TEST_F(Dispatch, TheRetryCountCannotOverflow) {
    settings.retryCount = settings.retryLimit = INT_MAX;
    PLC_driver.readList << makeRequest(1, 4);
    ComCommunication();
    EXPECT_EQ(0, answer(""));
    EXPECT_EQ(INT_MAX, settings.retryCount);
}

TEST_F(Dispatch, SpecialExpectedLengths) {
    const struct {
        const char* name;
        bool local;
        int expected;
        QByteArray reply;
        int status;
    } rows[] = {
        {"local, none expected, none came", true, 0, "", 1},
        {"local, none expected, some came", true, 0, "junk", 1},
        {"local, any length, good", true, -1, sealed("HEAD"), 1},
        {"local, any length, bad", true, -1, "HEADxx", 11},
        {"local, any length, none", true, -1, "", 41},
        {"remote, none expected, none came", false, 0, "", 111},
        {"remote, none expected, some came", false, 0, "junk", 171},
    };
    settings.retryLimit = 0;
    for (const auto& row : rows) {
        PLC_driver.writeList = {makeWrite(1, "x")};
        PLC_driver.writeList.first().areaId = row.local ? LocalArea : RemoteArea;
        PLC_driver.writeBurst = 0;
        ASSERT_NE(nullptr, ComCommunication()) << row.name;
        PLC_driver.protocolList.first().replyLength = row.expected;
        EXPECT_EQ(row.status, answer(row.reply)) << row.name;
    }
}

TEST_F(Dispatch, RemoteRepliesAreStoredOnlyOnRequest) {
    const struct {
        int remoteStore;
        int frameDone;
        int status;
        bool stored;
    } rows[] = {{0, 0, 100, false}, {-1, 0, 1, true}, {-1, 1, 100, true}};
    for (const auto& row : rows) {
        PLC_driver.dataImage.clear();
        PLC_driver.onceReadList = {makeRequest(1, 4)};
        PLC_driver.onceReadList.first().areaId = RemoteArea;
        PLC_driver.onceReadList.first().remoteStore = row.remoteStore;
        ComCommunication();
        settings.frameDone = row.frameDone;
        EXPECT_EQ(row.status, answer(goodReply()));
        EXPECT_EQ(row.stored, PLC_driver.dataImage.contains(1));
        EXPECT_TRUE(notices().isEmpty());
        EXPECT_TRUE(PLC_driver.onceReadList.isEmpty());
    }
}

TEST_F(Dispatch, AVariableInThreePiecesNotifiesOnceWithTheLast) {
    for (int i = 0; i < 3; ++i)
        PLC_driver.writeList << makeWrite(static_cast<quint32>(i), "x", 42);
    exchange();
    exchange();
    EXPECT_TRUE(notices().isEmpty());
    exchange();
    ASSERT_EQ(1, notices().size());
    EXPECT_EQ(1, notices().first().state);
    EXPECT_EQ(42, notices().first().varId);
    EXPECT_TRUE(PLC_driver.result.data.isEmpty());
}

TEST_F(Dispatch, AGiveUpDropsTheOtherPiecesOfTheVariable) {
    settings.retryLimit = 0;
    for (int multiStation : {0, 1})
        for (bool write : {true, false}) {
            settings.multiStation = multiStation;
            QList<RW_VAR>& queue = write ? PLC_driver.writeList : PLC_driver.onceReadList;
            queue = {makeWrite(1, "x", 42, 1), makeWrite(5, "x", 42, 1), makeWrite(2, "x", 43, 1),
                     makeWrite(3, "x", 42, 2), makeWrite(4, "x", 42, 1)};
            for (RW_VAR& request : queue)
                request.accessMode = write;
            PLC_driver.writeBurst = PLC_driver.onceReadBurst = 0;
            notices().clear();
            ComCommunication();
            EXPECT_EQ(41, answer(""));
            EXPECT_EQ((multiStation ? QList<quint32>{2, 3} : QList<quint32>{2}), addressesOf(queue));
            ASSERT_EQ(1, notices().size());
            EXPECT_EQ(2, notices().first().state);
            queue.clear();
        }
}

TEST_F(Dispatch, AGivenUpCyclicReadStaysAndTheNextGoodReplyClearsTheFailure) {
    settings.retryLimit = 0;
    settings.finishFlag = PLC_driver.cycleCount = 1;
    for (quint32 i = 0; i < 3; ++i)
        PLC_driver.readList << makeRequest(100 * i, 500);
    ComCommunication();
    EXPECT_EQ(41, answer(""));
    EXPECT_EQ(0, settings.finishFlag + PLC_driver.cycleCount);
    EXPECT_EQ((QList<quint32>{100, 200, 0}), addressesOf(PLC_driver.readList));
    EXPECT_EQ(0, PLC_driver.readList.last().status);
    EXPECT_TRUE(notices().isEmpty());
    exchange();
    EXPECT_FALSE(PLC_driver.commFailed);
}

TEST_F(Dispatch, AServedGroupGoesToTheBackInItsOrder) {
    for (quint32 i = 0; i < 5; ++i)
        PLC_driver.readList << makeRequest(1000 * i, i < 3 ? 333 : 400);
    exchange();
    EXPECT_EQ((QList<quint32>{3000, 4000, 0, 1000, 2000}), addressesOf(PLC_driver.readList));
    exchange();
    EXPECT_EQ((QList<quint32>{0, 1000, 2000, 3000, 4000}), addressesOf(PLC_driver.readList));
    EXPECT_EQ(3 * 333 + 2 * 400, PLC_driver.dataImage.size());
}

TEST_F(Dispatch, AListRebuiltInFlightIsNotRotated) {
    PLC_driver.readList << makeRequest(1, 4) << makeRequest(9, 4);
    ComCommunication();
    PLC_driver.readList = {makeRequest(20, 4), makeRequest(30, 4)};
    answer(goodReply());
    EXPECT_EQ((QList<quint32>{20, 30}), addressesOf(PLC_driver.readList));
    EXPECT_TRUE(PLC_driver.dataImage.contains(1));
}

TEST_F(Dispatch, TheFinishFlagRisesAfterAFullPassOfLocalRequests) {
    for (quint32 i = 0; i < 3; ++i)
        PLC_driver.readList << makeRequest(2000 * i, 900);
    QList<int> flags;
    for (int i = 0; i < 5; ++i) {
        exchange();
        flags << settings.finishFlag;
    }
    EXPECT_EQ((QList<int>{0, 0, 0, 1, 1}), flags);
    EXPECT_EQ(0, PLC_driver.cycleCount);
}

TEST_F(Dispatch, ARequestOfSeveralFramesWaitsForItsLastGoodReply) {
    PLC_driver.writeList << makeWrite(1, "x");
    ComCommunication();
    settings.frameTotal = 2;
    EXPECT_EQ(1, answer(goodReply()));
    EXPECT_EQ(1, settings.frameDone);
    EXPECT_EQ(1, PLC_driver.writeList.size());
    EXPECT_TRUE(notices().isEmpty());
}

TEST_F(Dispatch, ResultCodesByCheck) {
    const int rows[][2] = {{0, 1},   {1, 11},  {2, 41},  {3, 71},  {4, 100},
                           {5, 111}, {6, 141}, {7, 171}, {8, 200}, {-1, 200}};
    for (const auto& row : rows)
        EXPECT_EQ(row[1], GetDriverReturnValue(row[0])) << row[0];
}

}  // namespace
