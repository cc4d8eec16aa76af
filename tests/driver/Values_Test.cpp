// Values in and out by label.
#include "Driver_Fixture.h"

namespace {

class Values : public Driver_Fixture {
protected:
    void SetUp() override {
        Driver_Fixture::SetUp();
        QList<Label_Type_Info> labels;
        for (int code = 1; code <= 11; ++code)
            labels << makeLabel(qPrintable(QString::number(code)), code, 0x100);
        labels << makeLabel("0", 0, 0x100) << makeLabel("A", 3, 0x100, {10, 0, 5});
        PassVarName_2(&labels);
        for (unsigned i = 0; i < 0x80; ++i)
            PLC_driver.dataImage[0x100 + i] = static_cast<unsigned char>(i + 1);
    }
    static int read(const char* label, int count, QByteArray& out, const char* index = "") {
        return GetRegisterData(text(label), 0, text(index), 0, &out, count);
    }
    static int write(const char* label, int count, QByteArray data, const char* index = "") {
        return SetRegisterData(text(label), 5, text(index), 6, &data, count, 8, 9);
    }
};

TEST_F(Values, readingWholeElements) {
    const struct {
        const char* label;
        int count;
        int bytes;
    } rows[] = {{"1", 10, 10}, {"2", 3, 3}, {"10", 9, 9}, {"11", 9, 9}, {"3", 3, 6},  {"4", 1, 2},
                {"5", 1, 4},   {"5", 2, 4}, {"6", 3, 8},  {"7", 5, 12}, {"8", 1, 8},  {"8", 4, 8},
                {"9", 5, 16},  {"0", 7, 7}, {"3", 0, 0},  {"1", -5, 0}, {"5", -9, 0}, {"3", INT_MIN, 0}};
    for (const auto& row : rows) {
        QByteArray out = "old";
        EXPECT_EQ(1, read(row.label, row.count, out)) << row.label;
        ASSERT_EQ(row.bytes, out.size()) << row.label << ' ' << row.count;
        for (int i = 0; i < out.size(); ++i)
            EXPECT_EQ(i + 1, out.at(i));
    }
}

TEST_F(Values, unknownLabelsReadAsZeros) {
    for (const char* label : {"Nope", "", "A", "A[9]", "Nope[%%]"}) {
        QByteArray out = "old";
        EXPECT_EQ(0, read(label, 4, out)) << label;
        EXPECT_EQ(QByteArray(8, '\0'), out);
        EXPECT_EQ(0, read(label, -4, out)) << label;
        EXPECT_TRUE(out.isEmpty());
    }
    QByteArray out;
    EXPECT_EQ(0, read("Nope", INT_MAX, out));
    EXPECT_EQ(16 * 1024 * 1024, out.size());
    EXPECT_EQ(0x80, PLC_driver.dataImage.size());
}

TEST_F(Values, templatesAndBytesNotKnownYet) {
    QByteArray out;
    EXPECT_EQ(1, read("A[%%]", 1, out, "3"));
    EXPECT_EQ(hex("0708"), out);
    EXPECT_EQ(1, read("A[%%]", 1, out, "not a number"));
    EXPECT_EQ(hex("0102"), out);
    PLC_driver.dataImage.clear();
    EXPECT_EQ(1, read("3", 2, out));
    EXPECT_EQ(hex("00000000"), out);
    EXPECT_EQ(4, PLC_driver.dataImage.size());
}

TEST_F(Values, layoutsOfWrittenValues) {
    const struct {
        const char* label;
        int count;
        const char* data;
        const char* bytes;
    } rows[] = {
        {"1", 2, "0102030405060708", "0102"},
        {"1", 3, "0102", "010200"},
        {"2", 3, "010203040506", "010305"},
        {"2", 4, "0102030405", "01030000"},
        {"3", 2, "010203040506", "01020304"},
        {"4", 2, "010203", "01020300"},
        {"5", 1, "0102", "01020000"},
        {"7", 3, "0102", "0102000000000000"},
        {"8", 1, "01", "0100000000000000"},
        {"9", 5, "", "00000000000000000000000000000000"},
        {"10", 4, "01020304", nullptr},
        {"11", 4, "01", nullptr},
        {"0", 4, "01", nullptr},
        {"3", 0, "0102", nullptr},
        {"3", -1, "0102", nullptr},
        {"Nope", 1, "0102", nullptr},
    };
    for (const auto& row : rows) {
        PLC_driver.writeList.clear();
        EXPECT_EQ(0, write(row.label, row.count, hex(row.data)));
        ASSERT_EQ(row.bytes ? 1 : 0, PLC_driver.writeList.size()) << row.label << ' ' << row.count;
        if (row.bytes == nullptr) continue;
        EXPECT_EQ(hex(row.bytes), PLC_driver.writeList.first().data) << row.label;
    }
}

TEST_F(Values, longValuesAreCutIntoThousandByteChunks) {
    const struct {
        int words;
        QList<int> lengths;
    } rows[] = {{600, {1000, 200}}, {500, {1000}}, {1000, {1000, 1000}}, {499, {998}}};
    for (const auto& row : rows) {
        PLC_driver.writeList.clear();
        write("3", row.words, QByteArray(5000, 'x'));
        quint32 address = 0x100;
        ASSERT_EQ(row.lengths.size(), PLC_driver.writeList.size());
        for (int i = 0; i < row.lengths.size(); ++i) {
            const RW_VAR& chunk = PLC_driver.writeList.at(i);
            EXPECT_EQ(row.lengths.at(i), chunk.length);
            EXPECT_EQ(QByteArray(chunk.length, 'x'), chunk.data);
            EXPECT_EQ(address, chunk.address);
            address += static_cast<quint32>(chunk.length);
        }
    }
}

TEST_F(Values, aWriteRequestIsComplete) {
    settings.stationNo = 3;
    settings.remoteMode = 2;
    write("A[%%]", 1, hex("0102"), "2");
    ASSERT_EQ(1, PLC_driver.writeList.size());
    const RW_VAR& request = PLC_driver.writeList.first();
    EXPECT_EQ(8, request.varType);
    EXPECT_EQ(9, request.varId);
    EXPECT_EQ(1, request.accessMode);
    EXPECT_EQ(2, request.remoteMode);
    EXPECT_EQ(7, request.areaId);
    EXPECT_EQ(text("A[2]"), request.label);
    EXPECT_EQ(text("2"), request.labelIndex);
    EXPECT_EQ(5, request.dataType);
    EXPECT_EQ(0x104u, request.address);
    EXPECT_EQ(3, request.station);
    EXPECT_EQ(0, request.status);
    EXPECT_EQ(0, request.remoteStore);
    EXPECT_EQ(0, request.reserved14);
    settings.multiStation = 1;
    write("3", 1, hex("0102"));
    EXPECT_EQ(6, PLC_driver.writeList.last().station);
}

TEST_F(Values, whereAWriteGoes) {
    const struct {
        int writeMode;
        bool failed;
        bool queued;
        bool stored;
    } rows[] = {{2, false, true, false}, {2, true, true, true}, {0, false, false, true}, {0, true, false, true}};
    for (const auto& row : rows) {
        PLC_driver.writeList.clear();
        PLC_driver.dataImage.clear();
        settings.writeMode = row.writeMode;
        PLC_driver.commFailed = row.failed;
        write("3", 1, hex("AABB"));
        EXPECT_EQ(row.queued, !PLC_driver.writeList.isEmpty());
        EXPECT_EQ(row.stored ? 0xBB : 0, PLC_driver.dataImage.value(0x101));
    }
}

TEST_F(Values, aTemplateThatCannotBeRewrittenZeroesTheHostsData) {
    QByteArray data = "abcdef";
    SetRegisterData(text("Nope[%%]"), 0, QString(), 0, &data, 2, 0, 0);
    EXPECT_EQ(QByteArray(4, '\0'), data);
    data = "abcdef";
    SetRegisterData(text("Nope"), 0, QString(), 0, &data, 2, 0, 0);
    EXPECT_EQ(QByteArray("abcdef"), data);
}

}  // namespace
