// A record as a controller: what it shows at each moment, and what is no record.
#include <fstream>

#include "Sim_Client.h"
#include "sim/plant/Played_Record.h"
#include "text/Hex.h"
#include "text/Text_Input.h"

namespace vornex::sim {
namespace {

using test::Ack;
using test::Answer;
using test::Read;
using test::Write;
using Line = Played_Record::Line;

const char Start[] = R"({"event":"start","version":2,"labelFile":"","labelText":"","maxBytes":240,"retries":2})";

std::string timed(const char* event, int at, const std::string& rest) {
    const std::string digits = std::to_string(1000000 + at * 1000 % 1000000).substr(1);
    return std::string("{\"event\":\"") + event + "\",\"time\":\"2026-03-29T01:59:5" + std::to_string(at / 1000) + "." +
           digits + "+01:00\"," + rest + "}\n";
}
std::string exchange(int sentAt, const char* frame, int repliedAt, const std::string& reply) {
    return timed("frame", sentAt, std::string("\"frame\":\"") + frame + "\"") +
           timed("reply", repliedAt, "\"reply\":\"" + reply + "\"");
}

std::string recordOf(const std::string& text) {
    const std::string path = ::testing::TempDir() + "played.jsonl";
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

// A reply with a wrong byte, a write, a request without a reply, a lost link.
std::string night() {
    std::string bad = Answer;
    bad[22] ^= 1;
    return recordOf(Start + std::string("\n") + timed("link", 0, R"("link":"up")") + exchange(5, Read, 8, bad) +
                    exchange(10, Write, 20, Ack) + exchange(30, Read, 1030, "") +
                    timed("link", 1030, R"("link":"down")") + timed("link", 2030, R"("link":"up")") +
                    exchange(2040, Read, 2050, Answer));
}

TEST(Played_Record, showsEachMomentAsItWas) {
    struct Moment {
        double now;
        Line line;
        const char* bytes;
    };
    const struct {
        const char* name;
        Play play;
        std::vector<Moment> moments;
        std::string told;
    } rows[] = {
        {"as it was",
         {},
         {{19, Line::Up, "00 00 00 00"},
          {20, Line::Up, "11 22 33 44"},
          {30, Line::Silent, "11 22 33 44"},
          {1030, Line::Down, "11 22 33 44"},
          {2030, Line::Silent, "11 22 33 44"},
          {2050, Line::Up, "11 22 33 44"}},
         "the end of the record"},
        {"ten times as fast", {"", 10}, {{1, Line::Up, "00 00 00 00"}, {103, Line::Down, "11 22 33 44"}}, ""},
        {"without gaps", {"", 1, false, true}, {{19, Line::Up, "00 00 00 00"}, {30, Line::Up, "11 22 33 44"}}, "end"},
        {"again",
         {"", 1, true},
         {{2055, Line::Up, "11 22 33 44"}, {2085, Line::Silent, "11 22 33 44"}},
         "begins again"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Play play = row.play;
        play.path = night();
        std::string told;
        Played_Record record(play, [&](const std::string& words) { told += words + "\n"; });
        Memory memory(1 << 20);
        for (const Moment& moment : row.moments) {
            record.advance(moment.now, memory);
            EXPECT_EQ(record.line(), moment.line) << moment.now;
            EXPECT_EQ(hexBytes(memory.read(4096, 4)), moment.bytes) << moment.now;
            EXPECT_EQ(record.unknown(4096, 6), moment.bytes[0] == '0' ? 6u : 2u) << moment.now;
        }
        EXPECT_EQ(told.empty(), row.told.empty()) << told;
        EXPECT_NE(told.find(row.told), std::string::npos) << told;
    }
}

TEST(Played_Record, aGapAtTheEndIsLeftOutToo) {
    Play play;
    play.path =
        recordOf(Start + std::string("\n") + exchange(10, Write, 20, Ack) + timed("link", 30, R"("link":"down")"));
    for (const bool skips : {false, true}) {
        play.loops = true;
        play.skipsGaps = skips;
        Played_Record record(play, {});
        Memory memory(1 << 20);
        record.advance(500, memory);  // the next pass begins at 1000
        EXPECT_EQ(record.line(), skips ? Line::Up : Line::Down);
        EXPECT_EQ(hexBytes(memory.read(4096, 4)), "11 22 33 44");
    }
}

TEST(Played_Record, saysWhatIsWrongAndWhere) {
    const std::string head = Start + std::string("\n");
    const struct {
        std::string text;
        const char* words;
    } rows[] = {
        {"", "played.jsonl: the record is empty"},
        {head, "played.jsonl: the record holds no good reply"},
        {std::string("\xFF\xFE{\0", 4), "played.jsonl:1: is UTF-16 text; save it as UTF-8"},
        {"{}", "played.jsonl:1: no line of a record"},
        {"[\"event\"]", "played.jsonl:1: no line of a record"},
        {R"({"event":"idle"})", "played.jsonl:1: a record begins with its start"},
        {R"({"event":"start","version":3})", "played.jsonl:1: a record of another version"},
        {head + R"({"event":"frame","frame":"02"})", "played.jsonl:2: \"frame\" is no request"},
        {head + R"({"event":"link","link":"up","time":"now"})", "played.jsonl:2: 'now' is not a time like"},
        {head + R"({"event":"reply","reply":""})", "played.jsonl:2: a reply without a frame"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.words);
        Play play;
        play.path = recordOf(row.text);
        try {
            Played_Record record(play, {});
            ADD_FAILURE() << "accepted";
        } catch (const File_Error& mistake) {
            EXPECT_NE(std::string(mistake.what()).find(row.words), std::string::npos) << mistake.what();
        }
    }
}

TEST(Played_Record, aMistakeFurtherOnEndsThePlayingWithTheLastValues) {
    std::string told;
    Play play;
    play.path = recordOf(Start + std::string("\n") + exchange(10, Write, 20, Ack) + "{\"event\":");
    Played_Record record(play, [&](const std::string& words) { told = words; });
    Memory memory(1 << 20);
    record.advance(5000, memory);
    EXPECT_TRUE(record.failed());
    EXPECT_NE(told.find("played.jsonl:4: "), std::string::npos) << told;
    EXPECT_EQ(hexBytes(memory.read(4096, 4)), "11 22 33 44");
}

}  // namespace
}  // namespace vornex::sim
