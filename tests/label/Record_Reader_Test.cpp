// A record is read as it was heard.
#include "trace/Record_Reader.h"

#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "Sim_Process.h"
#include "Tool_Run.h"

namespace vornex::test {

namespace {

std::string wholeOf(const std::string& path) {
    std::ifstream in(path);
    return {std::istreambuf_iterator<char>(in), {}};
}

// What a reader makes of the file, written down again.
std::string readAndWritten(const std::string& path) {
    std::string text;
    Record_Lines lines([&text](const std::string& line) { text += line; });
    const Record_Head head = readRecord(path, lines);
    std::string first;
    Record_Lines([&first](const std::string& line) { first += line; }).begin(head);
    return first + text;
}

}  // namespace

// Every kind of event, and of fault that is worded in another way.
TEST(Record_Reader, whatIsReadIsWrittenAgainToTheByte) {
    const std::string record = WORK_DIR "/read.jsonl";
    Sim_Process sim({"-l", PLANT, "-q", "--fault", "crc@n=3", "--fault", "count@n=5", "--fault", "drop@n=7", "--fault",
                     "long@n=9", "--fault", "short@n=11", "--fault", "rst@n=13", "--fault", "refuse(150)@n=15"});
    run("watch Speed Motors -n 12 -i 10 -T 100 --force --trace " + record + on(sim.port()));
    EXPECT_EQ(readAndWritten(record), wholeOf(record));
    const std::string text = wholeOf(record);
    for (const char* part : {"check value", "item counts", "no complete reply", "more than the reply has",
                             "no connection", "\"down\"", "\"still down\"", "\"poll\""})
        EXPECT_NE(text.find(part), std::string::npos) << part;

    run("write Setpoint=5 'Recipe[1]=[1,2]' --verify --force --trace " + record + on(sim.port()));
    EXPECT_EQ(readAndWritten(record), wholeOf(record));
    EXPECT_NE(wholeOf(record).find("\"event\":\"write\""), std::string::npos);
}

TEST(Record_Reader, whatIsNoRecordIsRefusedWithItsLine) {
    const std::string start =
        "{\"event\":\"start\",\"version\":2,\"labelFile\":\"\",\"labelText\":\"\",\"maxBytes\":1,\"retries\":0}\n";
    const std::pair<std::string, const char*> rows[] = {
        {"", ": is empty"},
        {"{\"event\":\"idle\"}", ":1: the record does not begin with its start"},
        {start + "{\"event\":\"reply\"}", ":2: a reply without its frame"},
        {start + "{\"event\":\"link\",\"time\":\"2026-02-30\",\"link\":\"up\",\"reason\":\"\"}", ":2: '2026-02-30' is"},
        {start + "{\"event\":\"link\",\"time\":\"\",\"link\":\"sideways\"}",
         ":2: unknown state of the link 'sideways'"},
        {start + "{\"event\":\"poll\",\"definitions\":[[\"A\",\"x\",1,1]]}", ":2: 'x' is not a whole number"},
        {start + "\n\n{\"event\":", ":4: "},
    };
    const std::string record = WORK_DIR "/no_record.jsonl";
    Record_Lines nobody([](const std::string&) {});
    for (const auto& [text, reason] : rows) {
        std::ofstream(record) << text;
        try {
            readRecord(record, nobody);
            ADD_FAILURE() << "accepted: " << text;
        } catch (const File_Error& error) {
            EXPECT_NE(std::string(error.what()).find(record + reason), std::string::npos) << error.what();
        }
    }
}

}  // namespace vornex::test
