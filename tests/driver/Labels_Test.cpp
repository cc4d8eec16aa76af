// Label resolution, index arithmetic and templates.
#include "Driver_Fixture.h"
#include "label/Label_Resolution.h"

namespace {

QList<Label_Type_Info> definitions() {
    const Label_Type_Info motor = makeStruct(12, {makeLabel("Id", 3, 0), makeLabel("Speed", 7, 4),
                                                  makeLabel("Temp", 4, 8), makeLabel("Axis", 3, 2, {10, 0, 2})});
    const Label_Type_Info line = makeStruct(100, {makeInstance("Drive", 20, motor, {10, 1, 4}), makeLabel("On", 1, 3)});
    Label_Type_Info shortDimensions = makeLabel("Short", 3, 0, {10, 0, 4});
    shortDimensions.dimensionCount = 2;
    Label_Type_Info manyMembers = makeStruct(4, {makeLabel("A", 3, 0)});
    manyMembers.memberCount = 0xFFFFFFFF;
    Label_Type_Info typeLabel = makeStruct(4, {makeLabel("Type", 3, 1)});
    typeLabel.name = text("Type");
    return {makeLabel("Speed", 3, 100),
            makeLabel("Table", 5, 200, {10, 0, 8}),
            makeLabel("Grid", 4, 300, {10, 0, 3, 0, 4}),
            makeLabel("Box", 1, 0, {10, 1, 4, 1, 6}),
            makeLabel("Cube", 1, 0, {10, 0, 2, 0, 3, 0, 4}),
            makeLabel("Buf", 1, 700, {16, 0, 32}),
            makeLabel("Neg", 1, 50, {16, -2, 3}),
            makeLabel("Text", 10, 4000, {10, 0, 3}),
            makeInstance("Motor", 400, motor),
            makeInstance("Motors", 500, motor, {10, 0, 4}),
            makeInstance("Line", 1000, line, {10, 0, 2}),
            makeLabel("NoType", 0, 9),
            makeLabel("Odd", 77, 9),
            makeLabel("Bare", 12, 9),
            shortDimensions,
            makeLabel("Radix1", 3, 0, {1, 0, 4}),
            makeLabel("Radix37", 3, 0, {37, 0, 4}),
            makeLabel("Flat", 3, 0, {10, 4, 4}),
            makeInstance("Many", 0, manyMembers),
            makeInstance("Empty", 0, makeStruct(4, {})),
            typeLabel};
}

class Labels : public Driver_Fixture {
protected:
    void SetUp() override {
        Driver_Fixture::SetUp();
        QList<Label_Type_Info> labels = definitions();
        PassVarName_2(&labels);
    }
    static const Label_Type_Info& entry(const char* name) { return *PLC_driver.labelTable.constFind(text(name)); }
};

TEST_F(Labels, elementsFollowEachOtherByTheSizeOfTheirType) {
    const int sizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8, 8, 255, 255};
    for (int code = 1; code <= 11; ++code) {
        QList<Label_Type_Info> labels = {makeLabel("A", code, 1000, {10, 0, 3})};
        PassVarName_2(&labels);
        ControlInformationM info;
        EXPECT_EQ(0, get_label_address(text("A[2]"), info)) << code;
        EXPECT_EQ(1000u + 2 * static_cast<unsigned>(sizes[code]), info.address) << code;
    }
}

const struct {
    const char* label;
    int result;
    int typeCode;
    unsigned address;
} Resolutions[] = {
    {"", 6, 0, 0},
    {"Nope", 2, 0, 0},
    {".Speed", 2, 0, 0},
    {"speed", 2, 0, 0},
    {"Speed", 0, 3, 100},
    {"Speed.x", 0, 3, 100},
    {"Speed[1]", 1, 0, 0},
    {"Table[3]", 0, 5, 212},
    {"Table[ 3]", 0, 5, 212},
    {"Table[+3\t]", 0, 5, 212},
    {"Table[ ]", 3, 0, 0},
    {"Table[+-3]", 3, 0, 0},
    {"Table[4294967299]", 3, 0, 0},  // 2^32 + 3
    {"Table[0]", 0, 5, 200},
    {"Table[7]", 0, 5, 228},
    {"Table[8]", 3, 0, 0},
    {"Table[99999999999]", 3, 0, 0},
    {"Table[-1]", 3, 0, 0},
    {"Table[x]", 3, 0, 0},
    {"Table[]", 3, 0, 0},
    {"Table[3]x", 3, 0, 0},
    {"Table", 3, 0, 0},
    {"Table[1,2]", 1, 0, 0},
    {"Table[1][2]", 2, 0, 0},
    {"Table]3[", 2, 0, 0},
    {"Table[", 2, 0, 0},
    {"Grid[2,1]", 0, 4, 318},
    {"Grid[1,4]", 3, 0, 0},
    {"Grid", 1, 0, 0},
    {"Box[3,2]", 0, 1, 11},
    {"Box[0,2]", 3, 0, 0},
    {"Cube[1,2,3]", 0, 1, 23},
    {"Buf[1a]", 0, 1, 726},
    {"Buf[0x1A]", 0, 1, 726},
    {"Buf[20]", 3, 0, 0},
    {"Neg[-2]", 0, 1, 50},
    {"Text[2]", 0, 10, 4510},
    {"Motor.Speed", 0, 7, 404},
    {"Motor", 1, 0, 0},
    {"Motor.", 7, 0, 0},
    {"Motor.Nope", 7, 0, 0},
    {"Motor[1].Speed", 1, 0, 0},
    {"Motors[2].Temp", 0, 4, 532},
    {"Motors[2].Axis[1]", 0, 3, 528},
    {"Motors[4].Temp", 3, 0, 0},
    {"Motors.Temp", 3, 0, 0},
    {"Line[1].Drive[2].Axis[1]", 0, 3, 1000 + 100 + 20 + 12 + 2 + 2},
    {"Line[1].On", 0, 1, 1103},
    {"Line[1].Drive[2]", 1, 0, 0},
    {"NoType", 0, 0, 9},
    {"Odd", 0, 0, 9},
    {"Bare", 1, 0, 0},
    {"Bare.x", 1, 0, 0},
    {"Short[1,1]", 1, 0, 0},
    {"Radix1[1]", 1, 0, 0},
    {"Radix37[1]", 1, 0, 0},
    {"Flat[4]", 3, 0, 0},
    {"Many.A", 0, 3, 0},
    {"Many.B", 7, 0, 0},
    {"Empty.A", 7, 0, 0},
    {"Type", 0, 3, 5},  // a structure type as a label is searched for its own name
};

// An entry whose name looks like a path is never found by it: the text is taken apart first.
TEST_F(Labels, anEntryNamedLikeAPathHidesNothing) {
    for (const char* pass : {"known before", "known since"}) {
        ControlInformationM info;
        EXPECT_EQ(0, get_label_address(text("Speed.y"), info)) << pass;
        EXPECT_EQ(100u, info.address) << pass;
        QList<Label_Type_Info> later = {makeLabel("Speed.y", 5, 9000), makeLabel("New", 5, 9100)};
        PassVarName_2(&later);
        EXPECT_EQ(0, get_label_address(text("New"), info)) << pass;
        EXPECT_EQ(9100u, info.address) << pass;
    }
}

// Only the point takes a text apart that has no pair of brackets, wherever it stands.
TEST_F(Labels, anyOtherCharacterMayStandInAName) {
    for (int place = 0; place < 6; ++place) {
        for (ushort character = 1; character < 0x300; ++character) {
            QString name = text("abcdef");
            name[place] = QChar(character);
            QList<Label_Type_Info> labels = {makeLabel("", 5, character)};
            labels[0].name = name;
            PassVarName_2(&labels);
            ControlInformationM info;
            EXPECT_EQ(character == '.' ? 2 : 0, get_label_address(name, info)) << character << " at " << place;
        }
    }
}

TEST_F(Labels, resolution) {
    for (const auto& row : Resolutions)
        for (const char* pass : {"walked", "cached"}) {
            ControlInformationM info;
            info.typeCode = 55;
            EXPECT_EQ(row.result, get_label_address(text(row.label), info)) << row.label << ' ' << pass;
            if (row.result != 0) continue;
            EXPECT_EQ(row.typeCode, info.typeCode) << row.label << ' ' << pass;
            EXPECT_EQ(row.address, info.address) << row.label << ' ' << pass;
        }
}

TEST_F(Labels, aWalkOutsideThePathEnds) {
    ControlInformationM info;
    EXPECT_EQ(LabelPathMismatch, get_label_address_1(entry("Speed"), QStringList(), 0, info));
    EXPECT_EQ(LabelPathMismatch, get_label_address_1(entry("Speed"), QStringList() << text("Speed"), -1, info));
}

TEST_F(Labels, templatesAreRewrittenAndCarry) {
    const struct {
        const char* label;
        int index;
        int result;
        const char* rewritten;
    } rows[] = {
        {"Table[%%]", 5, 0, "Table[5]"},
        {"Table[%%]", 20, 0, "Table[7]"},
        {"Table[%%]", -3, 0, "Table[-3]"},
        {"Table[%%]", 0x7FFFFFFF, 0, "Table[7]"},
        {"Table[%%+2147483647]", 0x7FFFFFFF, 0, "Table[7]"},
        {"Grid[1,%%]", 5, 0, "Grid[2,1]"},
        {"Grid[1,%%]", 9, 0, "Grid[2,3]"},
        {"Grid[%%+1,0]", 1, 0, "Grid[2,0]"},
        {"Grid[ %% + 1 , 0 ]", 1, 0, "Grid[2,0]"},
        {"Grid[%%+1+1,0]", 1, 0, "Grid[0,0]"},
        {"Grid[%%,3+1]", 1, 0, "Grid[1,0]"},
        {"Grid[%%]", 2, 0, "Grid[2,0]"},
        {"Grid[x,%%]", 3, 0, "Grid[2,3]"},
        {"Grid[ , %%]", 1, 0, "Grid[1,0]"},
        {"Grid[%%,1,2]", 1, 0, "Grid[1,1]"},
        {"Grid[%%]tail", 1, 0, "Grid[1,0]"},
        {"Box[%%,9]", 1, 0, "Box[2,4]"},
        {"Buf[%%]", 26, 0, "Buf[1a]"},
        {"Neg[x%%]", 1, 0, "Neg[-2]"},
        {"Motors[%%].Temp", 3, 0, "Motors[3].Temp"},
        {"Motors[1].Axis[%%]", 1, 0, "Motors[1].Axis[%%]"},
        {"Line[%%].Drive[2].Axis[0]", 1, 0, "Line[1].Drive[2].Axis[0]"},
        {"Motor.Axis[%%]", 9, 0, "Motor.Axis[1]"},
        {"Table%%", 1, 2, nullptr},
        {"%%", 1, 2, nullptr},
        {"", 1, 6, nullptr},
        {"Motor.%%", 1, 7, nullptr},
        {"Motor[%%].Temp", 1, 1, nullptr},
        {"Table.%%", 1, 1, nullptr},
        {"Radix1[%%]", 1, 1, nullptr},
        {"Short[%%]", 1, 1, nullptr},
        {"Flat[%%]", 1, 1, nullptr},
        {"Bare.%%", 1, 1, nullptr},
    };
    for (const auto& row : rows) {
        QString label = text(row.label);
        EXPECT_EQ(row.result, get_label_address(label, row.index)) << row.label;
        EXPECT_EQ(text(row.rewritten ? row.rewritten : row.label), label) << row.label;
    }
}

TEST_F(Labels, oneSegmentOfATemplate) {
    const struct {
        const char* entry;
        const char* segment;
        int result;
    } rows[] = {{"Table", "Table", 1},   {"Table", "Table%%", 2},  {"Table", "Table]%%[", 2},
                {"Table", "Table[", 2},  {"Table", "Table[1]", 0}, {"Short", "Short[%%]", 2},
                {"Flat", "Flat[%%]", 2}, {"Radix37", "R[%%]", 2}};
    for (const auto& row : rows) {
        QString segment = text(row.segment);
        EXPECT_EQ(row.result, Address_offset(entry(row.entry), segment, 1)) << row.segment;
        EXPECT_EQ(text(row.segment), segment);
    }
    QStringList path = QStringList() << text("Table%%");
    EXPECT_EQ(LabelPathMismatch, get_label_address_address_offset(entry("Table"), path, 0, 1));
    Label_Type_Info pointArray = makeLabel("P", LabelIsArray | 3, 0);
    pointArray.dimensions << 10;
    QString segment = text("P[%%]");
    EXPECT_EQ(OffsetRewritten, Address_offset(pointArray, segment, 1));
    EXPECT_EQ(text("P"), segment);
}

TEST_F(Labels, aDeliveryReplacesAddsAndEmptiesTheCache) {
    ControlInformationM info;
    info.reserved = 31;
    ASSERT_EQ(0, get_label_address(text("Speed"), info));
    info.reserved = 0;
    ASSERT_EQ(0, get_label_address(text("Speed"), info));
    EXPECT_EQ(31, info.reserved);  // the cached record, all of it

    QList<Label_Type_Info> labels = {makeLabel("Speed", 5, 1), makeLabel("Speed", 6, 2), makeLabel("New", 1, 3)};
    PassVarName_2(&labels);
    ASSERT_EQ(0, get_label_address(text("Speed"), info));
    EXPECT_EQ(6, info.typeCode);
    EXPECT_EQ(2u, info.address);
    EXPECT_EQ(0, get_label_address(text("New"), info));
    EXPECT_EQ(0, get_label_address(text("Table[1]"), info));
    labels.clear();
    PassVarName_2(&labels);
    EXPECT_TRUE(PLC_driver.labelCache.isEmpty());
    EXPECT_EQ(0, get_label_address(text("New"), info));
    EXPECT_EQ(2, get_label_address(text("Nope"), info));
    EXPECT_EQ(1, PLC_driver.labelCache.size());
}

}  // namespace
