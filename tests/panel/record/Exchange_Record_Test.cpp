// What is kept of the link replays wherever it begins, and stays within its limit.
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <mutex>

#include <gtest/gtest.h>

#include "Sim_Process.h"
#include "Test_Bytes.h"
#include "Tool_Run.h"
#include "host/Session.h"
#include "panel/record/Exchange_Record.h"
#include "panel/record/Sample_Reader.h"
#include "panel/record/Save_Record.h"
#include "trace/Record_Reader.h"

namespace vornex::panel {

namespace {

using namespace vornex::test;

const Driver_Library& driver() {
    static const Driver_Library library(LIBRARY);
    return library;
}

// Lets a test wait for what the link does.
class Link_Events : public Exchange_Observer {
public:
    void exchangeDone(const Exchange& exchange) override {
        const std::lock_guard<std::mutex> lock(mutex);
        ++exchanges;
        gaveUp += exchange.gaveUp();
        changed.notify_all();
    }
    bool waitFor(int exchangesMore, int giveUps = 0) {
        std::unique_lock<std::mutex> lock(mutex);
        const int wanted = exchanges + exchangesMore;
        return changed.wait_for(lock, std::chrono::milliseconds(WaitLimit),
                                [&] { return exchanges >= wanted && gaveUp >= giveUps; });
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    int exchanges = 0;
    int gaveUp = 0;
};

// Nine requests of a round, four in a frame: the frames of the next round are others than those of this one.
const char LongArrays[] = R"({"format":1,"labels":[{"name":"W","type":"3","at":9000},
    {"name":"A","type":"1[0..399]","at":0}, {"name":"B","type":"1[0..399]","at":1000},
    {"name":"C","type":"1[0..399]","at":2000}, {"name":"D","type":"1[0..399]","at":3000},
    {"name":"E","type":"1[0..199]","at":4000}]})";
const Label_Range Setpoint = {"W", 0, 3, 2};

std::vector<Label_Range> arrays(std::size_t most) {
    std::vector<Label_Range> ranges = {
        {"A[0]", 0, 1, 400}, {"B[0]", 0, 1, 400}, {"C[0]", 0, 1, 400}, {"D[0]", 0, 1, 400}, {"E[0]", 0, 1, 200}};
    ranges.resize(std::min(most, ranges.size()));
    return ranges;
}

std::string replayOf(const std::string& path) { return run("replay " + path).text; }

}  // namespace

// Frames that begin with the end of the list, retries that the driver counts across good replies, give-ups, writes and
// one-shot reads between: none of them may lead to a record that begins where a fresh driver does not.
TEST(Exchange_Record, replaysWhereverItBegins) {
    const std::string path = WORK_DIR "/kept.jsonl";
    const std::string labels = WORK_DIR "/long_arrays.json";
    std::ofstream(labels) << LongArrays;
    Sim_Process sim({"-l", labels, "-q", "--seed", "3", "--fault", "crc@p=0.015", "--fault", "drop@n=900..903",
                     "--fault", "count@p=0.005"});
    const Label_File file = readLabelFile(labels);
    Host_Settings settings;
    settings.target = "127.0.0.1:" + std::to_string(sim.port());
    settings.timeoutMs = 50;
    settings.settleMs = 0;
    Session session(driver(), settings, file);
    Exchange_Record record(recordHead(settings, file), 256 << 10);
    Link_Events events;
    session.addObserver(record);
    session.addObserver(events);
    session.connect();
    std::uint64_t dropped = 0;
    for (int save = 0; save < 12; ++save) {
        if (save % 3 != 1) session.poll(arrays(save % 3 == 0 ? 5 : 2), {Milliseconds(0), 0, false});
        for (int i = 0; i < 10; ++i) {
            ASSERT_TRUE(events.waitFor(25 + save));
            for (int queued = 0; queued < 8; ++queued)
                session.startWrite(Setpoint, std::string(Setpoint.bytes, char(queued)));
            session.startRead(Setpoint);
        }
        const Record_Snapshot shot = record.snapshot();
        EXPECT_LE(record.extent().bytes, record.extent().limit);
        dropped = record.extent().dropped;
        ASSERT_TRUE(saveRecord(shot, path, Existing_File::Replace));
        EXPECT_EQ(replayOf(path).find("equal: "), 0u) << save << "\n" << replayOf(path);
    }
    session.stop();
    EXPECT_GT(dropped, 2000u) << "the record was never cut";
    EXPECT_TRUE(events.waitFor(0, 1)) << "nothing was given up";
    sim.finish();
}

// Where writes come between all frames of the list, some may always be queued: nothing can be cut, and what is longer
// than the limit goes altogether until the record can begin again.
TEST(Exchange_Record, beginsOnlyWhereNothingIsQueued) {
    Exchange_Record record({}, 64 << 10);
    Exchange cyclic, write;
    cyclic.cyclic = true;
    cyclic.status = write.status = 1;
    cyclic.frame = "list";
    write.frame = "write";
    cyclic.transfer.reply = write.transfer.reply = std::string(4000, 'x');
    const auto serve = [&record](const Exchange& exchange) {
        record.frameGiven(exchange);
        record.exchangeDone(exchange);
    };
    record.pollSet({Setpoint});
    for (int i = 0; i < 100; ++i) {
        serve(cyclic);
        serve(write);
    }
    EXPECT_EQ(record.extent().exchanges, 0u);
    EXPECT_EQ(record.extent().dropped, 200u);
    serve(cyclic);
    EXPECT_EQ(record.extent().exchanges, 0u);
    for (int i = 0; i < 100; ++i)
        serve(cyclic);
    EXPECT_GT(record.extent().exchanges, 10u);
    EXPECT_EQ(record.extent().exchanges + record.extent().dropped, 301u);
}

TEST(Exchange_Record, savesNothingOverAnotherFileAndLeavesNoHalfOne) {
    Exchange_Record record({}, 1 << 20);
    const std::string path = WORK_DIR "/there.jsonl";
    std::ofstream(path) << "kept\n";
    EXPECT_THROW(saveRecord(record.snapshot(), path, Existing_File::Refuse), Output_Error);
    std::string text;
    std::getline(std::ifstream(path), text);
    EXPECT_EQ(text, "kept");
    std::remove(path.c_str());
    EXPECT_FALSE(saveRecord(record.snapshot(), path, Existing_File::Refuse, [] { return false; }));
    EXPECT_FALSE(std::ifstream(path)) << "an ended save left a file";
    EXPECT_THROW(saveRecord(record.snapshot(), "/dev/full", Existing_File::Replace), Output_Error);
}

// A loss is no value, a write's reply is none, and a value in two frames is known with the second.
TEST(Sample_Reader, tellsValuesOverTimeWithTheirGaps) {
    const Wall_Time start{};
    const auto at = [start](int ms) { return start + Milliseconds(ms); };
    Sample_Reader samples({{102, 2}, {98, 4}, {200, 1}});
    const auto reply = [&](int ms, std::uint32_t address, const char* hex, int status = 1) {
        Exchange exchange;
        exchange.repliedAt = at(ms);
        exchange.status = status;
        const std::string data = bytesOf(hex);
        exchange.request.items = {{address, static_cast<std::uint32_t>(data.size())}};
        const std::string count(1, static_cast<char>(data.size()));
        exchange.transfer.reply = sealed(std::string("\x02\0\0A", 4) + count + std::string(1, '\0') + data);
        exchange.transfer.state = Transfer_State::Complete;
        samples.exchangeDone(exchange);
    };
    reply(10, 100, "01 02 03 04");
    reply(20, 100, "09 09 09 09", 0);
    reply(30, 90, "00 00 00 00 00 00 00 00 AA BB");
    samples.linkChanged({{"gone"}, Link_Change::State::Down, at(40)});
    samples.linkChanged({{"still"}, Link_Change::State::StillDown, at(45)});
    reply(50, 102, "05 06");
    const auto told = [&](std::size_t place) {
        std::string text;
        for (const Recorded_Sample& sample : samples.samples(place))
            text += std::to_string((sample.at - start) / Milliseconds(1)) + ":" + hexOf(sample.bytes) + " ";
        return text;
    };
    EXPECT_EQ(told(0), "10:03 04 40: 50:05 06 ");
    EXPECT_EQ(told(1), "30:AA BB 01 02 40: ");
    EXPECT_EQ(told(2), "");
    EXPECT_EQ(sampleAt(samples.samples(0), at(9)), nullptr);
    EXPECT_EQ(hexOf(sampleAt(samples.samples(0), at(39))->bytes), "03 04");
    EXPECT_EQ(sampleAt(samples.samples(0), at(44)), nullptr) << "a value across a loss";
    EXPECT_EQ(hexOf(sampleAt(samples.samples(0), at(50))->bytes), "05 06");
}

}  // namespace vornex::panel
