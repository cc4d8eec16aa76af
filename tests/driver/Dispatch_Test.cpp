// The reply dispatch: what each reply makes of the request in flight.
#include <functional>

#include "Driver_Fixture.h"
#include "driver/Reply_Dispatch.h"

namespace {

class Dispatch : public Driver_Fixture {};

TEST_F(Dispatch, withoutAFrameInFlightOnlyTheStatusChanges) {
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

TEST_F(Dispatch, failedRepliesAreRetriedThenGivenUpWithTheirBand) {
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
    const struct {
        int varType;
        int offset;  // in the band
    } types[] = {{0, 0}, {1, 1}, {3, 3}, {11, 11}, {12, 0}, {-1, 0}};
    for (const Band_Row& row : rows)
        for (const auto& type : types) {
            RW_VAR read = makeRequest(0x100, 4, 1);
            read.varType = type.varType;
            read.areaId = row.local ? LocalArea : RemoteArea;
            PLC_driver.onceReadList = {read};
            PLC_driver.onceReadBurst = 0;
            failures().clear();
            ASSERT_NE(nullptr, ComCommunication()) << row.name;
            const QByteArray bad = row.spoil(goodReply());
            EXPECT_EQ(0, answer(bad)) << row.name;
            EXPECT_EQ(0, answer(bad)) << row.name;
            EXPECT_EQ(1, PLC_driver.protocolList.size());
            EXPECT_EQ(row.band + type.offset, answer(bad)) << row.name << ", type " << type.varType;
            EXPECT_TRUE(PLC_driver.protocolList.isEmpty());
            EXPECT_EQ(QList<int>{type.varType}, failures()) << row.name;
            EXPECT_EQ(0, settings.retryCount);
            EXPECT_TRUE(PLC_driver.commFailed);
            EXPECT_TRUE(PLC_driver.dataImage.isEmpty()) << row.name;
        }
}

TEST_F(Dispatch, aNullReplyIsAnEmptyOne) {
    settings.retryLimit = 0;
    PLC_driver.readList << makeRequest(1, 4);
    ComCommunication();
    EXPECT_EQ(41, DataCom(nullptr, 0)->status);
    ComCommunication();
    EXPECT_EQ(11, DataCom(nullptr, PLC_driver.protocolList.first().replyLength)->status);
}

TEST_F(Dispatch, retriesAreCountedAcrossRequests) {
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

TEST_F(Dispatch, theRetryCountCannotOverflow) {
    settings.retryCount = settings.retryLimit = INT_MAX;
    PLC_driver.readList << makeRequest(1, 4);
    ComCommunication();
    EXPECT_EQ(0, answer(""));
    EXPECT_EQ(INT_MAX, settings.retryCount);
}

TEST_F(Dispatch, specialExpectedLengths) {
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

TEST_F(Dispatch, remoteRepliesAreStoredOnlyOnRequest) {
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

TEST_F(Dispatch, aVariableInThreePiecesNotifiesOnceWithTheLast) {
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

TEST_F(Dispatch, aGiveUpDropsTheOtherPiecesOfTheVariable) {
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

TEST_F(Dispatch, aGivenUpCyclicReadStaysAndTheNextGoodReplyClearsTheFailure) {
    settings.retryLimit = 0;
    settings.finishFlag = PLC_driver.cycleCount = 1;
    for (quint32 i = 0; i < 3; ++i)
        PLC_driver.readList << makeRequest(100 * i, 500);
    ComCommunication();
    EXPECT_EQ(41, answer(""));
    EXPECT_EQ(0, settings.finishFlag);
    EXPECT_EQ(0, PLC_driver.cycleCount);
    EXPECT_EQ((QList<quint32>{100, 200, 0}), addressesOf(PLC_driver.readList));
    EXPECT_EQ(0, PLC_driver.readList.last().status);
    EXPECT_TRUE(notices().isEmpty());
    exchange();
    EXPECT_FALSE(PLC_driver.commFailed);
}

TEST_F(Dispatch, aServedGroupGoesToTheBackInItsOrder) {
    for (quint32 i = 0; i < 5; ++i)
        PLC_driver.readList << makeRequest(1000 * i, i < 3 ? 333 : 400);
    exchange();
    EXPECT_EQ((QList<quint32>{3000, 4000, 0, 1000, 2000}), addressesOf(PLC_driver.readList));
    exchange();
    EXPECT_EQ((QList<quint32>{0, 1000, 2000, 3000, 4000}), addressesOf(PLC_driver.readList));
    EXPECT_EQ(3 * 333 + 2 * 400, PLC_driver.dataImage.size());
}

TEST_F(Dispatch, aListRebuiltInFlightIsNotRotated) {
    PLC_driver.readList << makeRequest(1, 4) << makeRequest(9, 4);
    ComCommunication();
    PLC_driver.readList = {makeRequest(20, 4), makeRequest(30, 4)};
    answer(goodReply());
    EXPECT_EQ((QList<quint32>{20, 30}), addressesOf(PLC_driver.readList));
    EXPECT_TRUE(PLC_driver.dataImage.contains(1));
}

TEST_F(Dispatch, theFinishFlagRisesAfterAFullPassOfLocalRequests) {
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

TEST_F(Dispatch, aRequestOfSeveralFramesWaitsForItsLastGoodReply) {
    PLC_driver.writeList << makeWrite(1, "x");
    ComCommunication();
    settings.frameTotal = 2;
    EXPECT_EQ(1, answer(goodReply()));
    EXPECT_EQ(1, settings.frameDone);
    EXPECT_EQ(1, PLC_driver.writeList.size());
    EXPECT_TRUE(notices().isEmpty());
}

TEST_F(Dispatch, resultCodesByCheck) {
    const int rows[][2] = {{0, 1},   {1, 11},  {2, 41},  {3, 71},  {4, 100},
                           {5, 111}, {6, 141}, {7, 171}, {8, 200}, {-1, 200}};
    for (const auto& row : rows)
        EXPECT_EQ(row[1], GetDriverReturnValue(row[0])) << row[0];
}

}  // namespace
