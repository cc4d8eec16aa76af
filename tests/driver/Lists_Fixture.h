// Labels, and the address and length of each request in a list.
#ifndef VORNEX_TESTS_LISTS_FIXTURE_H
#define VORNEX_TESTS_LISTS_FIXTURE_H

#include "Driver_Fixture.h"

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

#endif
