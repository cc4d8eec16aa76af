// Queues, one-shot reads, and the rebuilding, sorting and packing of the cyclic list.
#include "Driver_Fixture.h"
#include "lists/Func_Initi.h"

namespace {

typedef QList<QPair<int, int>> Ranges;  // address, length

class Lists : public Driver_Fixture {
protected:
    void SetUp() override {
        Driver_Fixture::SetUp();
        QList<Label_Type_Info> labels = {makeLabel("B", 1, 0, {10, 0, 100000}),
                                         makeLabel("W", 3, 100),
                                         makeLabel("D", 5, 200),
                                         makeLabel("Q", 8, 300),
                                         makeLabel("S", 10, 4000),
                                         makeLabel("Odd", 77, 9),
                                         makeLabel("T", 1, 500, {10, 0, 8}),
                                         makeInstance("M", 9, makeStruct(4, {makeLabel("A", 3, 0)}))};
        PassVarName_2(&labels);
    }
    // The cyclic list that definitions of one-byte elements at these places give.
    Ranges rebuilt(const Ranges& wanted, int maxBytes) {
        settings.maxBytesPerRequest = maxBytes;
        QList<HOST_VAR> definitions;
        for (const QPair<int, int>& range : wanted)
            definitions << definition(qPrintable(QString(text("B[%1]")).arg(range.first)), range.second);
        const int entries = ReCreatReadVarList(&definitions);
        EXPECT_EQ(entries, PLC_driver.readList.size());
        return rangesOf(PLC_driver.readList);
    }
    static HOST_VAR definition(const char* label, int count, const char* labelIndex = "") {
        HOST_VAR result;
        result.label = text(label);
        result.labelIndex = text(labelIndex);
        result.count = count;
        return result;
    }
    static Ranges rangesOf(const QList<RW_VAR>& list) {
        Ranges ranges;
        for (const RW_VAR& request : list)
            ranges << qMakePair(static_cast<int>(request.address), request.length);
        return ranges;
    }
};

TEST_F(Lists, PackingOfSortedDefinitions) {
    const struct {
        const char* name;
        int maxBytes;
        Ranges wanted;
        Ranges packed;
    } rows[] = {
        {"worked example",
         100,
         {{0, 10}, {20, 4}, {50, 80}, {200, 30}, {210, 5}, {300, 250}},
         {{0, 100}, {100, 30}, {200, 30}, {300, 100}, {400, 100}, {500, 50}}},
        {"next start at the limit", 100, {{0, 100}, {100, 1}}, {{0, 100}, {100, 1}}},
        {"last byte inside the reach", 100, {{0, 1}, {99, 1}}, {{0, 100}}},
        {"grows beyond the reach", 100, {{0, 1}, {99, 5}}, {{0, 100}, {100, 4}}},
        {"joins the last piece of a cut one", 100, {{0, 150}, {160, 10}}, {{0, 100}, {100, 70}}},
        {"exact multiple", 100, {{5, 200}}, {{5, 100}, {105, 100}}},
        {"pieces of two", 2, {{0, 5}}, {{0, 2}, {2, 2}, {4, 1}}},
        {"any order", 100, {{300, 4}, {0, 4}, {150, 4}}, {{0, 4}, {150, 4}, {300, 4}}},
        {"empty definition", 100, {{0, 0}, {500, 1}}, {{500, 1}}},
        {"single addresses", 1, {{0, 4}, {0, 8}, {2, 2}, {2, 1}, {10, 0}}, {{0, 8}, {2, 2}, {10, 0}}},
        {"single, shorter first", 1, {{0, 8}, {0, 4}, {0, 9}}, {{0, 9}}},
        {"no limit to cut at", 0, {{0, 4}}, {}},
        {"negative limit", -5, {{0, 4}}, {}},
        {"negative count", 100, {{0, -4}, {7, 1}}, {{7, 1}}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.packed, rebuilt(row.wanted, row.maxBytes)) << row.name;
}

TEST_F(Lists, APieceCarriesTheFieldsOfItsGroup) {
    rebuilt({{0, 1}, {99, 5}, {300, 1}}, 100);
    const char* const labels[] = {"B[0]", "B[0]", "B[300]"};
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(labels[i], PLC_driver.readList.at(i).label.toStdString());
}

TEST_F(Lists, HighAddressesSortAsSignedNumbersAndStayCovered) {
    QList<RW_VAR> list = {makeRequest(5, 1, 1), makeRequest(0x80000000, 1, 2), makeRequest(0xFFFFFFF0, 40, 3),
                          makeRequest(5, 1, 4), makeRequest(0x7FFFFFF0, 40, 5)};
    Bubble_Sort(&list);
    QList<int> order;
    for (const RW_VAR& request : list)
        order << request.varId;
    EXPECT_EQ((QList<int>{2, 3, 1, 4, 5}), order);
    BitVarReCreat(&list, 100);
    EXPECT_EQ((Ranges{{INT_MIN, 1}, {-16, 40}, {0x7FFFFFF0, 40}}), rangesOf(PLC_driver.readList));
}

TEST_F(Lists, SortingManyEntriesIsStable) {
    QList<RW_VAR> list;
    for (int i = 0; i < 3000; ++i)
        list << makeRequest(static_cast<quint32>(i * 7919 % 101) - 50, 1, i);
    Bubble_Sort(&list);
    for (int i = 1; i < list.size(); ++i) {
        const int before = static_cast<int>(list.at(i - 1).address);
        const int at = static_cast<int>(list.at(i).address);
        ASSERT_TRUE(before < at || (before == at && list.at(i - 1).varId < list.at(i).varId)) << i;
    }
}

TEST_F(Lists, CuttingOneRequest) {
    const struct {
        int total;
        int maximum;
        Ranges pieces;
        int lastAddress;
    } rows[] = {{250, 100, {{300, 100}, {400, 100}, {500, 50}}, 500},
                {200, 100, {{300, 100}, {400, 100}}, 400},
                {100, 100, {{300, 9}}, 300},
                {3, 1, {{300, 1}, {301, 1}, {302, 1}}, 302},
                {5, 0, {}, 300},
                {5, -1, {}, 300}};
    for (const auto& row : rows) {
        QList<RW_VAR> list;
        RW_VAR request = makeRequest(300, 9);
        WhetherGroup(row.total, row.maximum, &request, &list);
        EXPECT_EQ(row.pieces, rangesOf(list)) << row.total << '/' << row.maximum;
        EXPECT_EQ(row.lastAddress, static_cast<int>(request.address));
    }
}

TEST_F(Lists, ARebuildResolvesEachDefinition) {
    settings.maxBytesPerRequest = 50;
    settings.remoteMode = 0;
    settings.stationNo = 3;
    PLC_driver.cycleCount = 9;
    settings.finishFlag = 1;
    QList<HOST_VAR> definitions = {definition("W", 3),          definition("D", 3),        definition("Q", 5),
                                   definition("Nope", 1),       definition("M", 1),        definition("Odd", 1),
                                   definition("T[%%]", 1, "5"), definition("Nope[%%]", 1), definition("S", 7)};
    definitions[0].station = 200;
    definitions[0].dataType = 250;
    EXPECT_EQ(5, ReCreatReadVarList(&definitions));
    EXPECT_EQ((Ranges{{100, 6}, {200, 8}, {300, 16}, {505, 1}, {4000, 7}}), rangesOf(PLC_driver.readList));
    EXPECT_EQ(0, PLC_driver.cycleCount + settings.finishFlag);
    const RW_VAR& first = PLC_driver.readList.first();
    EXPECT_EQ(0, first.varType + first.accessMode + first.status + first.remoteStore + first.reserved14);
    EXPECT_EQ(-1, first.varId);
    EXPECT_EQ(250, first.dataType);
    EXPECT_EQ(3, first.station);
    EXPECT_EQ(7, first.areaId);
    EXPECT_EQ("T[5]", PLC_driver.readList.at(3).label.toStdString());

    settings.multiStation = 1;
    ReCreatReadVarList(&definitions);
    EXPECT_EQ(200, PLC_driver.readList.first().station);

    settings.finishFlag = 1;
    definitions.clear();
    EXPECT_EQ(0, ReCreatReadVarList(&definitions));
    EXPECT_TRUE(PLC_driver.readList.isEmpty());
    EXPECT_EQ(1, settings.finishFlag);
}

TEST_F(Lists, HugeCountsAreHeldAndEndTheRebuild) {
    const struct {
        int count;
        int maxBytes;
        Ranges packed;
    } rows[] = {{INT_MAX, INT_MAX, {{100, INT_MAX}}}, {INT_MAX, 2, {}}, {INT_MAX, 1, {{100, INT_MAX}}}};
    for (const auto& row : rows) {
        settings.maxBytesPerRequest = row.maxBytes;
        QList<HOST_VAR> definitions = {definition("W", row.count)};
        ReCreatReadVarList(&definitions);
        EXPECT_EQ(row.packed, rangesOf(PLC_driver.readList));
    }
}

TEST_F(Lists, TheWriteQueueTakes2048) {
    RW_VAR write = makeWrite(1, "x");
    for (int i = 1; i <= 2050; ++i)
        EXPECT_EQ(qMin(i, 2048), AddListWriteVar(&write));
    EXPECT_EQ(1, AddListReadVar(&write));
    EXPECT_EQ(2, AddListReadVar(&write));
}

TEST_F(Lists, OneShotReadsAreCutIntoPieces) {
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
        EXPECT_EQ(row.label, record.label.toStdString());
        EXPECT_EQ(3, record.station);
        EXPECT_EQ(0, record.remoteStore + record.reserved14);
    }
}

TEST_F(Lists, APieceIsQueuedOnceUnlessOneOfSevenFieldsDiffers) {
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

TEST_F(Lists, AFullOneShotQueueDropsPiecesButTheRecordRunsOn) {
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

TEST_F(Lists, AnUnknownLabelLeavesTheRecordAlone) {
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
