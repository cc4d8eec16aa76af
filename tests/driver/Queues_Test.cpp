// The queue of writes, and one-shot reads.
#include <climits>

#include "Lists_Fixture.h"

namespace {

TEST_F(Lists, theWriteQueueTakes2048) {
    RW_VAR write = makeWrite(1, "x");
    for (int i = 1; i <= 2050; ++i)
        EXPECT_EQ(qMin(i, 2048), AddListWriteVar(&write));
    EXPECT_EQ(1, AddListReadVar(&write));
    EXPECT_EQ(2, AddListReadVar(&write));
}

TEST_F(Lists, oneShotReadsAreCutIntoPieces) {
    const struct {
        const char* name;
        const char* label;
        int length;
        int maxBytes;
        Ranges queued;
        int endAddress;
        int endLength;
    } rows[] = {
        {"three pieces", "W", 450, 200, {{100, 200}, {300, 200}, {500, 50}}, 550, 50},
        {"exactly one", "W", 200, 200, {{100, 200}}, 300, 200},
        {"one byte more", "W", 201, 200, {{100, 200}, {300, 1}}, 301, 1},
        {"single bytes", "W", 3, 1, {{100, 1}, {101, 1}, {102, 1}}, 103, 1},
        {"template without a number", "T[%%]", 1, 200, {{500, 1}}, 501, 1},
        {"nothing", "W", 0, 200, {}, 100, 0},
        {"negative", "W", -7, 200, {}, 100, -7},
        {"nothing to cut at", "W", 9, 0, {}, 100, 9},
    };
    for (const auto& row : rows) {
        PLC_driver.onceReadList.clear();
        settings.maxBytesPerRequest = row.maxBytes;
        settings.stationNo = 3;
        RW_VAR record = makeRequest(0, row.length);
        record.label = text(row.label);
        record.remoteStore = record.reserved14 = 5;
        EXPECT_EQ(row.queued.size(), AddListOnceReadVar(&record)) << row.name;
        EXPECT_EQ(row.queued, rangesOf(PLC_driver.onceReadList)) << row.name;
        EXPECT_EQ(row.endAddress, static_cast<int>(record.address)) << row.name;
        EXPECT_EQ(row.endLength, record.length) << row.name;
        EXPECT_EQ(text(row.label), record.label);
        EXPECT_EQ(3, record.station);
        EXPECT_EQ(0, record.remoteStore);
        EXPECT_EQ(0, record.reserved14);
    }
}

TEST_F(Lists, aPieceIsQueuedOnceUnlessOneOfSevenFieldsDiffers) {
    RW_VAR record = makeRequest(0, 10);
    record.label = text("W");
    const auto queue = [&record] {
        RW_VAR copy = record;
        return AddListOnceReadVar(&copy);
    };
    EXPECT_EQ(1, queue());
    EXPECT_EQ(1, queue());
    settings.multiStation = 1;
    int* const fields[] = {&record.varType,  &record.varId,  &record.station,
                           &record.dataType, &record.length, &record.areaId};
    int expected = 1;
    for (int* field : fields) {
        ++*field;
        EXPECT_EQ(++expected, queue());
        EXPECT_EQ(expected, queue());
    }
    record.label = text("D");
    EXPECT_EQ(++expected, queue());
    record.accessMode = record.status = 9;
    EXPECT_EQ(expected, queue());

    RW_VAR served = PLC_driver.onceReadList.at(0);
    exchange();
    EXPECT_EQ(expected - 1, PLC_driver.onceReadList.size());
    EXPECT_EQ(expected, AddListOnceReadVar(&served)) << "served, so no longer queued";
    RW_VAR changed = PLC_driver.onceReadList.at(0);
    PLC_driver.onceReadList.first().length = 99;
    EXPECT_EQ(expected + 1, AddListOnceReadVar(&changed)) << "its entry was changed past the driver";
    PLC_driver.onceReadList.first().varId = 98;
    changed.varId = 98;
    changed.length = PLC_driver.onceReadList.first().length;
    EXPECT_EQ(expected + 1, AddListOnceReadVar(&changed)) << "the same, and this is what it was changed to";
}

TEST_F(Lists, aFullOneShotQueueDropsPiecesButTheRecordRunsOn) {
    settings.maxBytesPerRequest = 1;
    RW_VAR record = makeRequest(0, 2047);
    record.label = text("W");
    EXPECT_EQ(2047, AddListOnceReadVar(&record));
    record = makeRequest(0, INT_MAX, 2);
    record.label = text("W");
    settings.maxBytesPerRequest = 1000;
    EXPECT_EQ(2048, AddListOnceReadVar(&record));
    EXPECT_EQ(1000, PLC_driver.onceReadList.last().length);
    EXPECT_EQ(100u + INT_MAX, record.address);
    EXPECT_EQ(INT_MAX % 1000, record.length);
    record = makeRequest(0, 3000, 3);
    record.label = text("W");
    EXPECT_EQ(2048, AddListOnceReadVar(&record));
    EXPECT_EQ(1000, record.length);
}

TEST_F(Lists, anUnknownLabelLeavesTheRecordAlone) {
    for (const char* label : {"Nope", "", "M", "T[8]", "Nope[%%]"}) {
        RW_VAR record = makeRequest(77, 10, 1, 9);
        record.label = text(label);
        record.remoteStore = 5;
        EXPECT_EQ(0, AddListOnceReadVar(&record)) << label;
        EXPECT_EQ(77u, record.address);
        EXPECT_EQ(5, record.remoteStore);
        EXPECT_EQ(9, record.station);
    }
}

}  // namespace
