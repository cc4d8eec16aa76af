// Check values, frames and reply validation against bytes worked out by hand.
#include "Driver_Fixture.h"
#include "base/Little_Endian.h"
#include "driver/Reply_Dispatch.h"
#include "protocol/Check_Functions.h"
#include "protocol/Func_DealData.h"
#include "protocol/Func_Read.h"
#include "protocol/Func_Write.h"
#include "protocol/Reply_Validation.h"

namespace {

unsigned crcOf(const QByteArray& bytes) {
    QByteArray copy = bytes;
    return CalCRC(reinterpret_cast<unsigned char*>(copy.data()), static_cast<unsigned short>(copy.size()));
}

// Neither side passes the end of its bytes, whatever it is asked for.
TEST(Little_Endian, staysInsideItsBytes) {
    const struct {
        int from, to;
        int bytes;  // that can be taken
    } rows[] = {{0, 4, 4}, {1, 3, 2}, {-1, 2, 2}, {0, 9, 4}, {4, 4, 0}, {3, 2, 0}, {9, 9, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.from << " to " << row.to);
        EXPECT_EQ(nullptr, Reply_Reader("abcd", row.from, row.to).takeBytes(row.bytes + 1));
        EXPECT_NE(nullptr, Reply_Reader("abcd", row.from, row.to).takeBytes(row.bytes));
        int value = 0;
        EXPECT_EQ(row.bytes >= 2, Reply_Reader("abcd", row.from, row.to).take16(value));
    }
    EXPECT_EQ(nullptr, Reply_Reader("abcd", 0, 4).takeBytes(-1));

    QByteArray frame("....");
    Frame_Writer writer(frame);
    writer.put8('a');
    writer.putBytes("1234");
    EXPECT_EQ(1, writer.written());
    writer.putBytes("123");
    writer.put8('z');
    EXPECT_EQ(QByteArray("a123"), frame);
}

TEST(Check_Functions, catalogueValues) {
    EXPECT_EQ(0x0000u, crcOf(""));
    EXPECT_EQ(0x0000u, crcOf(hex("00")));
    EXPECT_EQ(0x1021u, crcOf(hex("01")));
    EXPECT_EQ(0x31C3u, crcOf("123456789"));
    EXPECT_EQ(0xB58Du, crcOf(hex("02000041")));
}

TEST(Check_Functions, crcAgreesWithATableMadeBitByBitAtEveryLengthModuloFour) {
    QByteArray bytes;
    for (int length = 0; length < 70; ++length) {
        EXPECT_EQ(vornex::test::checkOf(plain(bytes)), crcOf(bytes)) << length;
        bytes.append(static_cast<char>(length * 37 + 11));
    }
    bytes.fill('\x5A', 65535);
    EXPECT_EQ(vornex::test::checkOf(plain(bytes)), crcOf(bytes));
}

TEST(Check_Functions, sumsAndDigits) {
    QByteArray ones(300, '\xFF');
    unsigned char* const bytes = reinterpret_cast<unsigned char*>(ones.data());
    EXPECT_EQ(0x2AD4, CalSUM(bytes, 300));
    EXPECT_EQ(0, CalSUM(bytes, 0));
    unsigned char block[] = {0x80, 0x80, 0x12, 0x34, 0x01};
    EXPECT_EQ(256, CalLRC(block, 0));
    EXPECT_EQ(256, CalLRC(block, 2));
    EXPECT_EQ(255, CalLRC(block + 4, 1));
    EXPECT_EQ(1, CalLRC(bytes, 1));
    EXPECT_EQ(0x26, CalXOR(block + 2, 2));
    EXPECT_EQ(0x12, CalXOR(block + 2, 1));
    EXPECT_EQ(0, CalXOR(nullptr, 0));

    const int digits[][2] = {{-1, 47}, {0, 48}, {9, 57}, {10, 65}, {15, 70}, {35, 90}};
    for (const auto& row : digits)
        EXPECT_EQ(row[1], DigitalToASCII(row[0])) << row[0];
    const int codes[][2] = {{-5, 0},   {' ', 0}, {'/', 0},  {'0', 0},  {'9', 9},  {':', 10},
                            {'?', 15}, {'@', 0}, {'A', 10}, {'F', 15}, {'Z', 35}, {'a', 42}};
    for (const auto& row : codes)
        EXPECT_EQ(row[1], ASCIIToDigital(row[0])) << row[0];
}

class Frames : public Driver_Fixture {};

struct Read_Row {
    QList<RW_VAR> group;
    const char* frame;
    int replyLength;
    int payloadLength;
};

TEST_F(Frames, readFramesByteForByte) {
    const Read_Row rows[] = {
        {{makeRequest(0x1000, 4)}, "02 06 00 41 00 10 00 00 04 00 11 29", 12, 6},
        {{makeRequest(0x100, 2), makeRequest(0x200, 10)},
         "02 0C 00 41 00 01 00 00 02 00 00 02 00 00 0A 00 8A 1F",
         22,
         16},
        {{makeRequest(0x12345678, 0x1F4)}, "02 06 00 41 78 56 34 12 F4 01 D9 75", 508, 502},
        {{}, "02 00 00 41 8D B5", 6, 0},
    };
    for (const Read_Row& row : rows) {
        PLC_driver.protocolList.clear();
        PLC_driver.groupList = row.group;
        settings.frameDone = 9;
        RW_VAR served = makeRequest(1, 2, 77);
        ReadRegister(&served);
        ASSERT_EQ(1, PLC_driver.protocolList.size());
        const Protocol& protocol = PLC_driver.protocolList.first();
        EXPECT_EQ(hex(row.frame), protocol.frame);
        EXPECT_EQ(hex(row.frame).size(), protocol.frameLength);
        EXPECT_EQ(row.replyLength, protocol.replyLength);
        EXPECT_EQ(row.payloadLength, protocol.payloadLength);
        EXPECT_EQ(4, protocol.replyDataOffset);
        EXPECT_EQ(77, protocol.request.varId);
        EXPECT_EQ(1, settings.frameTotal);
        EXPECT_EQ(0, settings.frameDone);
    }
}

TEST_F(Frames, lengthsBeyondTheirFieldsAreHeldNotOverflowed) {
    PLC_driver.groupList << makeRequest(0, 0x7FFFFFFF) << makeRequest(0, 0x7FFFFFFF);
    ReadAnalog(&PLC_driver.groupList.first());
    EXPECT_EQ(0x7FFFFFFF, PLC_driver.protocolList.first().replyLength);
}

TEST_F(Frames, writeFramesByteForByte) {
    const struct {
        int length;
        QByteArray data;
        const char* frame;
    } rows[] = {
        {2, hex("1234"), "02 08 00 40 00 01 00 00 02 00 12 34 72 BD"},
        {5, hex(""), "02 06 00 40 00 01 00 00 05 00 4A 0C"},
    };
    for (const auto& row : rows) {
        PLC_driver.protocolList.clear();
        RW_VAR request = makeWrite(0x100, row.data);
        request.length = row.length;
        WriteAnalog(&request);
        const Protocol& protocol = PLC_driver.protocolList.first();
        EXPECT_EQ(hex(row.frame), protocol.frame);
        EXPECT_EQ(hex(row.frame).size(), protocol.frameLength);
        EXPECT_EQ(6, protocol.replyLength);
        EXPECT_EQ(0, protocol.replyDataOffset);
        EXPECT_EQ(0, protocol.payloadLength);
        EXPECT_EQ(row.data, protocol.request.data);
    }
    RW_VAR chunk = makeWrite(0x100, QByteArray(1000, 'x'));
    WriteAnalog(&chunk);
    EXPECT_EQ(1012, PLC_driver.protocolList.last().frameLength);
    EXPECT_EQ(hex("02ee0340"), PLC_driver.protocolList.last().frame.left(4));
}

TEST_F(Frames, aWriteReachesTheImageUnlessTheLinkHasFailed) {
    RW_VAR request = makeWrite(0x100, hex("1234"));
    PLC_driver.commFailed = true;
    WriteRegister(&request);
    EXPECT_TRUE(PLC_driver.dataImage.isEmpty());
    PLC_driver.commFailed = false;
    WriteRegister(&request);
    EXPECT_EQ(0x34, PLC_driver.dataImage.value(0x101));
}

TEST_F(Frames, repliesAreJudgedByLengthAndCheckValue) {
    const struct {
        const char* name;
        const char* reply;
        int count;
        bool good;
    } rows[] = {
        {"two items", "00 00 00 00 02 00 AA BB 0A 00 01 02 03 04 05 06 07 08 09 0A FB 0D", 22, true},
        {"one item", "00 00 00 00 04 00 11 22 33 44 92 DB", 12, true},
        {"check bytes swapped", "00 00 00 00 04 00 11 22 33 44 DB 92", 12, false},
        {"one data byte changed", "00 00 00 00 04 00 11 22 33 45 92 DB", 12, false},
        {"shortest", "00 00 00 00 00 00", 6, true},
        {"any header", "02 00 00 40 AC A5", 6, true},
        {"five bytes", "00 00 00 00 00", 5, false},
        {"nothing", "", 0, false},
        {"count beyond the bytes", "00 00 00 00 00 00", 7, false},
        {"negative count", "00 00 00 00 00 00", -1, false},
    };
    for (const auto& row : rows) {
        const QByteArray reply = hex(row.reply);
        PLC_driver.protocolList.clear();
        PLC_driver.protocolList.append(Protocol());
        EXPECT_EQ(row.good ? ReadReply : BadReply, CheckGetData(&reply, row.count)) << row.name;
        PLC_driver.protocolList.first().request.accessMode = 5;
        EXPECT_EQ(row.good ? WriteReply : BadReply, CheckGetData(&reply, row.count)) << row.name;
    }
    EXPECT_EQ(BadReply, CheckGetData(nullptr, 6));
}

// What SECURITY.md says of wrong bits, counted from the first bit of the reply, the highest of its byte.
TEST_F(Frames, wrongBitsThatTheCheckValueFindsAndThoseItCannotFind) {
    const struct {
        const char* name;
        int replyBytes;
        QList<int> wrongBits;
        bool passes;
    } rows[] = {
        {"one bit", 12, {50}, false},
        {"three bits", 12, {50, 61, 77}, false},
        {"the polynomial itself", 12, {50, 54, 61, 66}, true},
        {"its neighbour", 12, {50, 54, 61, 65}, false},
        {"16 bits in a row", 12, {50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 64, 65}, false},
        {"13 bits, into the check value", 12, {77, 80, 85, 89}, true},
        {"first and last bit, 4095 bytes", 4095, {0, 32759}, false},
        {"as far apart, 4096 bytes", 4096, {0, 32759}, true},
        {"32,767 apart in the data", 4098, {0, 32767}, true},
        {"32,766 apart in the data", 4098, {0, 32766}, false},
    };
    PLC_driver.protocolList.append(Protocol());
    for (const auto& row : rows) {
        QByteArray reply = sealed(QByteArray(row.replyBytes - 2, '\x5A'));
        for (int bit : row.wrongBits)
            reply[bit / 8] = static_cast<char>(reply.at(bit / 8) ^ 0x80 >> bit % 8);
        EXPECT_EQ(row.passes ? ReadReply : BadReply, CheckGetData(&reply, reply.size())) << row.name;
    }
}

struct Store_Row {
    const char* name;
    QList<RW_VAR> group;
    QByteArray reply;
    QList<unsigned> addresses;  // all that the image holds afterwards
    const char* bytes;          // at these addresses
};

TEST_F(Frames, replyItemsAreStoredAtTheirRequests) {
    const QList<RW_VAR> two = {makeRequest(0x100, 2), makeRequest(0x200, 2)};
    const Store_Row rows[] = {
        {"both items", two, sealed(hex("00000000 0200AABB 02000102")), {0x100, 0x101, 0x200, 0x201}, "AABB0102"},
        {"a count of 0", two, sealed(hex("00000000 0000 02000102 0000")), {0x200, 0x201}, "0102"},
        {"a larger count that fits",
         two,
         sealed(hex("00000000 0300AABBCC 010001")),
         {0x100, 0x101, 0x102, 0x200},
         "AABBCC01"},
        {"addresses wrap", {makeRequest(0xFFFFFFFF, 2)}, sealed(hex("00000000 02000102")), {0xFFFFFFFF, 0}, "0102"},
        {"a count past the item area", two, sealed(hex("00000000 0200AABB 03000102")), {}, ""},
        {"no room for the second count", two, sealed(hex("00000000 0400AABB0102")), {}, ""},
        {"no group", {}, sealed(hex("00000000 0200AABB")), {}, ""},
    };
    for (const Store_Row& row : rows) {
        PLC_driver.dataImage.clear();
        PLC_driver.protocolList = {Protocol()};
        PLC_driver.protocolList.first().replyDataOffset = 4;
        PLC_driver.groupList = row.group;
        QByteArray reply = row.reply;
        SaveToLocalDataErea(&reply);
        QByteArray stored;
        for (unsigned address : row.addresses)
            stored.append(static_cast<char>(PLC_driver.dataImage.value(address)));
        EXPECT_EQ(hex(row.bytes), stored) << row.name;
        EXPECT_EQ(row.addresses.size(), PLC_driver.dataImage.size()) << row.name;
    }
}

TEST_F(Frames, imageEntriesAreMadeOnceAndShortDataIsFilledWithZeros) {
    EXPECT_EQ(5u, ExtendFindSameVar(5));
    EXPECT_EQ(1, PLC_driver.dataImage.size());
    PLC_driver.dataImage[5] = 9;
    EXPECT_EQ(5u, ExtendFindSameVar(5));
    EXPECT_EQ(9, PLC_driver.dataImage.value(5));

    RW_VAR request = makeWrite(0x100, hex("1234"));
    PLC_driver.dataImage[0x102] = 1;
    request.length = 4;
    WriteDataToLocal(&request);
    EXPECT_EQ(0x12, PLC_driver.dataImage.value(0x100));
    EXPECT_EQ(0x34, PLC_driver.dataImage.value(0x101));
    EXPECT_EQ(0, PLC_driver.dataImage.value(0x102, 77));
    EXPECT_EQ(0, PLC_driver.dataImage.value(0x103, 77));
    request.length = -1;
    request.address = 0x900;
    WriteDataToLocal(&request);
    EXPECT_FALSE(PLC_driver.dataImage.contains(0x900));
}

}  // namespace
