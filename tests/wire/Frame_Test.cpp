// Frames and replies, with bytes and check values made by another program.
#include <gtest/gtest.h>

#include "text/Hex.h"
#include "wire/Check_Value.h"
#include "wire/Frame_Reader.h"

namespace vornex {
namespace {

const std::string ReadTwo = bytesOfHex("02 0C 00 41 00 01 00 00 02 00 00 02 00 00 0A 00 8A 1F");
const std::string ReplyToTwo = bytesOfHex("00 00 00 00 02 00 AA BB 0A 00 01 02 03 04 05 06 07 08 09 0A FB 0D");

TEST(Check_Value, agreesWithOtherPrograms) {
    const std::pair<const char*, std::uint16_t> rows[] = {
        {"", 0}, {"01", 0x1021}, {"31 32 33 34 35 36 37 38 39", 0x31C3}, {"02 00 00 41", 0xB58D}};
    for (const auto& [bytes, value] : rows)
        EXPECT_EQ(checkValue(bytesOfHex(bytes)), value) << bytes;
    EXPECT_TRUE(checkIsRight(bytesOfHex("02 00 00 40 AC A5")));
    EXPECT_FALSE(checkIsRight(bytesOfHex("02 00 00 40 A5 AC")));
    EXPECT_FALSE(checkIsRight(bytesOfHex("00 00 00 00 00"))) << "too short";
}

TEST(Frame_Reader, takesRequestsApart) {
    const std::optional<Request> read = readRequest(ReadTwo);
    ASSERT_TRUE(read);
    EXPECT_EQ(requestText(*read), "read 256+2 512+10");
    EXPECT_EQ(replyBytes(*read), ReplyToTwo.size());
    const std::optional<Request> write = readRequest(bytesOfHex("02 08 00 40 00 01 00 00 02 00 12 34 72 BD"));
    ASSERT_TRUE(write);
    EXPECT_EQ(requestText(*write), "write 256+2");
    EXPECT_EQ(hexBytes(write->data), "12 34");
    EXPECT_EQ(replyBytes(*write), 6u);
}

TEST(Frame_Reader, saysWhyAStreamIsNoRequest) {
    using Kind = Parsed_Frame::Kind;
    const struct {
        const char* bytes;
        Kind kind;
        std::size_t taken;
        const char* reason;
    } rows[] = {
        {"", Kind::Incomplete, 0, ""},
        {"02 06 00", Kind::Incomplete, 0, ""},
        {"02 06 00 41 00 10 00 00 04 00 11", Kind::Incomplete, 12, ""},
        {"02 06 00 41 00 10 00 00 04 00 11 29 02", Kind::Good, 12, ""},
        {"03", Kind::Broken, 0, "the first byte is not 02"},
        {"03 06 00 41", Kind::Broken, 0, "the first byte is not 02"},
        {"02 3B 00 41", Kind::Broken, 65, "frame of 65 bytes is over the limit 64"},
        {"02 06 00 41 00 10 00 00 04 00 11 28", Kind::Ignored, 12, "wrong check value"},
        {"02 00 00 42 EE 85", Kind::Ignored, 6, "unknown command 66"},
        {"02 05 00 41 00 10 00 00 04 4A FA", Kind::Ignored, 11, "body length 5 of a read is no multiple of 6"},
        {"02 00 00 40 AC A5", Kind::Ignored, 6, "body length 0 of a write is below 6"},
        {"02 08 00 40 00 10 00 00 03 00 11 22 78 63", Kind::Ignored, 14,
         "a write whose length is not that of its data"},
    };
    for (const auto& row : rows) {
        const Parsed_Frame frame = parseFrame(bytesOfHex(row.bytes), 64);
        EXPECT_EQ(frame.kind, row.kind) << row.bytes;
        EXPECT_EQ(frame.bytes, row.taken) << row.bytes;
        EXPECT_EQ(frame.reason, row.reason) << row.bytes;
    }
    EXPECT_FALSE(readRequest(ReadTwo.substr(0, ReadTwo.size() - 1)));
}

TEST(Frame_Reader, takesAReplyOnlyForWhatWasAsked) {
    const Request request = *readRequest(ReadTwo);
    EXPECT_TRUE(answers(*readReply(ReplyToTwo, 2), request));
    EXPECT_EQ(hexBytes(readReply(ReplyToTwo, 2)->items.at(0).data), "AA BB");
    const struct {
        const char* fault;
        std::size_t at;
        char byte;
    } rows[] = {{"first count too large", 4, 3}, {"second count too small", 8, 9}, {"count beyond the end", 5, 1}};
    for (const auto& row : rows) {
        std::string broken = ReplyToTwo;
        broken[row.at] = row.byte;
        EXPECT_FALSE(answers(*readReply(broken, 2), request)) << row.fault;
    }
    EXPECT_FALSE(answers(*readReply(bytesOfHex("00 00 00 00 01 00 01 AC A5"), 1), request)) << "an item is missing";
    EXPECT_FALSE(readReply("\x02\x40"));
}

TEST(Frame, repliesAsTheControllerDoes) {
    Reply reply = emptyReply(*readRequest(bytesOfHex("02 06 00 41 00 10 00 00 04 00 11 29")));
    reply.items.push_back({4, bytesOfHex("11 22 33 44")});
    EXPECT_EQ(hexBytes(encodeReply(reply)), "02 06 00 41 04 00 11 22 33 44 1D 3A");
    EXPECT_EQ(hexBytes(encodeReply(emptyReply({true, {{256, 2}}, "ab"}))), "02 00 00 40 AC A5");
}

}  // namespace
}  // namespace vornex
