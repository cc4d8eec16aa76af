// The rebuilding, sorting and packing of the cyclic list.
#include "Lists_Fixture.h"
#include "label/Label_Resolution.h"
#include "lists/Func_Initi.h"

namespace {

TEST_F(Lists, packingOfSortedDefinitions) {
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

TEST_F(Lists, aPieceCarriesTheFieldsOfItsGroup) {
    rebuilt({{0, 1}, {99, 5}, {300, 1}}, 100);
    const char* const labels[] = {"B[0]", "B[0]", "B[300]"};
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(text(labels[i]), PLC_driver.readList.at(i).label);
}

TEST_F(Lists, highAddressesSortAsSignedNumbersAndStayCovered) {
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

TEST_F(Lists, sortingManyEntriesIsStable) {
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

TEST_F(Lists, cuttingOneRequest) {
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

TEST_F(Lists, aRebuildResolvesEachDefinition) {
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
    EXPECT_EQ(0, PLC_driver.cycleCount);
    EXPECT_EQ(0, settings.finishFlag);
    const RW_VAR& first = PLC_driver.readList.first();
    EXPECT_EQ(0, first.varType);
    EXPECT_EQ(0, first.accessMode);
    EXPECT_EQ(0, first.status);
    EXPECT_EQ(0, first.remoteStore);
    EXPECT_EQ(0, first.reserved14);
    EXPECT_EQ(-1, first.varId);
    EXPECT_EQ(250, first.dataType);
    EXPECT_EQ(3, first.station);
    EXPECT_EQ(7, first.areaId);
    EXPECT_EQ(text("T[5]"), PLC_driver.readList.at(3).label);

    settings.multiStation = 1;
    ReCreatReadVarList(&definitions);
    EXPECT_EQ(200, PLC_driver.readList.first().station);

    settings.finishFlag = 1;
    definitions.clear();
    EXPECT_EQ(0, ReCreatReadVarList(&definitions));
    EXPECT_TRUE(PLC_driver.readList.isEmpty());
    EXPECT_EQ(1, settings.finishFlag);
}

TEST_F(Lists, aLongRebuildLeavesNoDefinitionOut) {
    settings.maxBytesPerRequest = 1;
    QList<HOST_VAR> definitions;
    QList<QString> labels;  // of the requests, which lie in the order of the definitions
    for (int i = 0; i < 200; ++i) {
        const QString place = QString::number(10 * i);
        if (i % 7 == 0) {
            definitions << definition("Nope", 1);
            continue;
        }
        labels << text("B[") + place + text("]");
        definitions << (i % 5 == 0 ? definition("B[%%]", 1, qPrintable(place))
                                   : definition(qPrintable(labels.last()), 1));
    }
    for (const char* cache : {"empty", "filled"}) {
        ASSERT_EQ(labels.size(), ReCreatReadVarList(&definitions)) << cache;
        for (int i = 0; i < labels.size(); ++i)
            EXPECT_EQ(labels.at(i).toStdString(), PLC_driver.readList.at(i).label.toStdString()) << cache;
    }
}

// What follows an element is not looked at, so that a text with the mark may resolve as it stands.
TEST_F(Lists, aTemplateIsRewrittenThoughItsTextIsCached) {
    ControlInformationM info;
    ASSERT_EQ(LabelOk, get_label_address(text("T[ 5].%%"), info));
    QList<HOST_VAR> definitions = {definition("W", 1), definition("T[ 5].%%", 1)};
    EXPECT_EQ(2, ReCreatReadVarList(&definitions));
    EXPECT_EQ("T[5].%%", PLC_driver.readList.at(1).label.toStdString());
}

TEST_F(Lists, hugeCountsAreHeldAndEndTheRebuild) {
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

}  // namespace
