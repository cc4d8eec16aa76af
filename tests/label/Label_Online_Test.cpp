// vornex-label against a simulator, both as processes: what a commissioning engineer sees when things go wrong.
#include <signal.h>

#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "Sim_Process.h"
#include "Tool_Run.h"

namespace vornex::test {
namespace {

long timesApplied(Sim_Process& sim) {
    EXPECT_EQ(sim.finish(), 0) << sim.log();
    return sim.counted("faults");
}

TEST(Online, readsWritesAndExitsAsDocumented) {
    Sim_Process sim({"-l", PLANT, "-q"});
    const struct {
        const char* arguments;
        int code;
        const char* text;
    } rows[] = {
        {"write --verify Setpoint=-77 'Motors[3].Axis[2].Setpoint=42.5'", 0, "Setpoint = -77 rpm  verified"},
        {"read Setpoint 'Motors[3].Axis[2].Setpoint'", 0, "Motors[3].Axis[2].Setpoint = 42.5 mm"},
        {"write 'Grid=[1,2,3,4,5]' --verify -o csv", 0, "\"Grid[0,0]\",\"[1, 2, 3, 4, 5]\""},
        {"read 'Grid[%%]' --index 1", 0, "Grid[1,0] = 5"},
        {"read 'Grid[0,1]' -c 3", 0, "Grid[0,1] = [2, 3, 4]"},
        {"write 'Buf=\"hello\"'", 0, "  acknowledged\n"},
        {"write 'Buf=\"hello\"' --dry-run", 0, "Buf[0]: the text has 5 bytes, the other 27 of the array become 0\n"},
        {"write 'Buf=[1]' --dry-run", 0, "Buf[0]: 1 of 32 elements are written, the others stay as they are\n"},
        {"write 'Motors[1].Speed=16777217' --dry-run", 0,
         "'16777217' is stored as 16777216, the nearest number that 4 bytes hold\n"},
        {"read Buf[0] -c 32 --as text", 0, "\"hello\""},
        {"write Setpoint=1 --dry-run", 0, "frame 02 08 00 40 68 00 00 00 02 00 01 00 "},
        {"read Setpoint --trace -", 0, ": good, header 02 04 00 41\n"},
        {"read Setpoint", 0, "Setpoint = -77 rpm"},  // the dry run sent nothing
        {"dump 104 2", 0, "00000068  B3 FF "},
        {"watch Setpoint --until 'Setpoint<0' -n 100", 0, "Setpoint = -77 rpm"},
        {"watch Setpoint --until 'Setpoint>0' -n 2 -i 1", 5, "was not met"},
        {"stats 'Motors[*]' -n 5", 0, "packing: "},
        {"read NoSuchLabel", 2, "no label 'NoSuchLabel' in "},
        {"read 'NoSuch*'", 2, "no label matches 'NoSuch*'"},
        {"read Grid[0,1] -c 12", 2, "has 11 elements from here on"},
        {"write Setpoint=40000", 2, "'40000' is not a whole number from -32768 to 32767"},
        {"read Buf[0] -c 3 --as f32", 1, "view f32 takes 4 bytes, 'Buf[0]' gives 3: choose -c or another view"},
        {"write Grid=1", 2, "begins an array of 12 elements"},
        {"read Setpoint -m 0", 1, "--max-bytes"},
        // an index that leaves its array is never followed into another variable
        {"write 'Motors[%%].Axis[1].Setpoint=99' --index 7 --verify", 2, "would become 'Motors[4].Axis[1].Setpoint'"},
        {"write 'Motors[%%].Axis[1].Setpoint=99' --index 7 --wrap --dry-run", 0, "Motors[4].Axis[1].Setpoint at"},
        {"read 'Grid[1,%%]' --index 5", 2, "would become 'Grid[2,1]'"},
        {"read 'Grid[1,%%]' --index 5 --wrap", 0, "Grid[2,1] = "},
        {"read 'Grid[%%+1,0]' --index 1", 0, "Grid[2,0] = "},
        {"read 'Buf[%%]' --index 26", 0, "Buf[1a] = "},
        {"read Setpoint --index 1", 1, "no label is a template (%%)"},
        {"read 'Motors[%%].Temp'", 2, "a template, and no index number was given"},
        {"read Motors[1].Spede", 2, "did you mean 'Speed'?"},
        {"watch Grid[9,0]", 2, "index 9 is outside 0 to 2\n    Grid[9,0]\n         ^"},
        {"write Grid[1,0=3", 2, "no label 'Grid[1,0'"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run(row.arguments + on(sim.port()));
        EXPECT_EQ(outcome.code, row.code) << row.arguments << "\n" << outcome.text;
        EXPECT_TRUE(outcome.holds(row.text)) << row.arguments << "\n" << outcome.text;
    }
}

TEST(Online, saysThatNobodyAnswers) {
    int freePort = 0;
    {
        Sim_Process gone({"-l", PLANT, "-q"});
        freePort = gone.port();
    }
    const Outcome refused = run("read Speed" + on(freePort));
    EXPECT_EQ(refused.code, 3) << refused.text;
    EXPECT_TRUE(refused.holds("no connection to 127.0.0.1:")) << refused.text;

    Sim_Process mute({"-l", PLANT, "-q", "--fault", "drop", "-o", "json"});
    const Outcome unanswered = run("read Speed -R 1 -T 100" + on(mute.port()));
    EXPECT_EQ(unanswered.code, 4);
    EXPECT_TRUE(unanswered.holds("Speed = ?\n")) << unanswered.text;  // not 0
    EXPECT_TRUE(unanswered.holds("the driver gave up: no reply (code 44, type 3)")) << unanswered.text;
    const Outcome unwritten = run("write Speed=5 -R 0 -T 100" + on(mute.port()));
    EXPECT_EQ(unwritten.code, 4) << unwritten.text;
    EXPECT_TRUE(unwritten.holds("may not be written")) << unwritten.text;
    EXPECT_EQ(timesApplied(mute), 3);
}

// Every label of an array has its own value, the replies all have one length: a reply taken for another shows.
TEST(Online, neverShowsTheReplyToAnotherRequest) {
    const std::string file = std::string(WORK_DIR) + "/spread.json";
    std::ofstream labels(file);
    labels << "{\"format\":1,\"labels\":[";
    std::string names, expected;
    for (int i = 0; i < 12; ++i) {
        const std::string name = "V" + std::to_string(i), value = std::to_string(1000 + i);
        labels << (i ? "," : "") << "{\"name\":\"" << name << "\",\"type\":\"3\",\"at\":" << i * 100
               << ",\"sim\":\"const(" << value << ")\"}";
        names += " " + name;
        expected += name + " = " + value + "\n";
    }
    labels << "]}" << std::flush;
    for (const char* fault : {"late(5)@p=0.3", "count@p=0.3", "dup@p=0.3", "glue@p=0.2", "long@p=0.3"}) {
        Sim_Process sim({"-l", file, "-q", "--fault", fault, "--seed", "3", "-o", "json"});
        const std::string target = " -t 127.0.0.1:" + std::to_string(sim.port());
        const Outcome outcome = run("read -l " + file + target + " -R 40 -T 150" + names);
        EXPECT_EQ(outcome.code, 0) << fault << "\n" << outcome.text;
        EXPECT_EQ(outcome.text, expected) << fault;
        EXPECT_GT(timesApplied(sim), 0) << fault;
    }
}

TEST(Online, namesWhatWasWrongWithAReply) {
    const std::pair<const char*, const char*> rows[] = {
        {"junk@n=1", "check value is wrong"},  // and no item count that was asked for, which is the lesser news
        {"crc@n=1", "check value is wrong"},  {"count@n=1", "item counts are not those asked for"},
        {"short@n=1", "no complete reply"},   {"long@n=1", "more"},
    };
    for (const auto& row : rows) {
        Sim_Process sim({"-l", PLANT, "-q", "--fault", row.first});
        const Outcome outcome = run("read Setpoint -R 0 -T 200" + on(sim.port()));
        EXPECT_EQ(outcome.code, 4) << row.first;
        EXPECT_TRUE(outcome.holds(row.second)) << row.first << ": " << outcome.text;
    }
}

TEST(Online, watchTellsLossReturnAndFreshValues) {
    Sim_Process sim({"-l", PLANT, "-q", "--fault", "refuse(300)@n=3", "-o", "json"});
    const Outcome outcome = run("watch Setpoint -i 20 -n 12 -T 300 -R 0" + on(sim.port()));
    EXPECT_EQ(outcome.code, 0) << outcome.text;
    const std::size_t lost = outcome.text.find("connection lost");
    const std::size_t back = outcome.text.find("-- connected", lost);
    ASSERT_NE(lost, std::string::npos) << outcome.text;
    ASSERT_NE(back, std::string::npos) << outcome.text;
    EXPECT_NE(outcome.text.find("Setpoint = 1500 rpm", back), std::string::npos)
        << outcome.text;  // again, although equal
    EXPECT_EQ(outcome.text.find("Setpoint = ", lost), outcome.text.find("Setpoint = ", back)) << outcome.text;
    EXPECT_EQ(timesApplied(sim), 1);
}

TEST(Online, aRecordedLinkReplaysEqualAndABentOneDoesNot) {
    const std::string record = std::string(WORK_DIR) + "/link.jsonl";
    Sim_Process sim({"-l", PLANT, "-q", "--fault", "crc@p=0.2", "--fault", "count@p=0.1"});
    run("write Setpoint=5 'Recipe[1]=[1,2]' --verify -R 20 --force --trace " + record + on(sim.port()));
    EXPECT_EQ(run("replay " + record).code, 0);
    std::ifstream in(record);
    std::string text((std::istreambuf_iterator<char>(in)), {});
    const std::size_t status = text.find("\"status\":1");
    ASSERT_NE(status, std::string::npos);
    std::ofstream(record) << text.replace(status, 10, "\"status\":0");
    const Outcome bent = run("replay " + record);
    EXPECT_EQ(bent.code, 5);
    EXPECT_TRUE(bent.holds("recorded: result 0")) << bent.text;
    std::ofstream(record) << text.substr(0, status);
    EXPECT_EQ(run("replay " + record).code, 1);  // cut in the middle of a line
}

TEST(Online, aRecordWithATableReplays) {
    const std::string table = std::string(WORK_DIR) + "/table.csv";
    const std::string record = std::string(WORK_DIR) + "/table.jsonl";
    std::ofstream(table) << "kind,name,type,at\nlabel,A,3,100\n";
    Sim_Process sim({"-l", table, "-q"});
    run("-l " + table + " read A --force --trace " + record + " -t 127.0.0.1:" + std::to_string(sim.port()));
    EXPECT_EQ(run("replay " + record).code, 0);
}

// What only needs the beginning of an array does not hold the rest of it.
TEST(Online, arraysOfMillionsAreWrittenButNotListed) {
    const std::string file = std::string(WORK_DIR) + "/millions.json";
    std::ofstream(file)
        << R"({"format": 1, "structs": {"S": {"size": 4, "members": [{"name": "Id", "type": "3", "at": 0}]}},
        "labels": [{"name": "Big", "type": "1[0..1999999]", "at": 0}, {"name": "S", "type": "S[0..900000000]", "at": 0}]})";
    const struct {
        const char* arguments;
        int code;
        const char* text;
    } rows[] = {
        {"write Big=[1,2] --dry-run", 0, "Big[0] at 0, 2 bytes"},
        {"write Big[1999999]=9 --dry-run", 0, "at 1999999, 1 bytes"},
        {"write Big[1999999]=[9,9] --dry-run", 2, "do not fit"},
        {"write S[800000000].Id=9 --dry-run", 0, "at 3200000000, 2 bytes"},
        {"write S=9 --dry-run", 2, "'S' is more than one variable"},
        {"read Big -t 127.0.0.1:1", 2, "'Big' makes more than a million elements"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run("-l " + file + " " + row.arguments);
        EXPECT_EQ(outcome.code, row.code) << row.arguments << "\n" << outcome.text;
        EXPECT_TRUE(outcome.holds(row.text)) << row.arguments << "\n" << outcome.text;
    }
}

TEST(Online, aForgedRecordIsRefusedWithItsLine) {
    const char start[] =
        "{\"event\":\"start\",\"version\":2,\"labelFile\":\"\",\"labelText\":\"\",\"maxBytes\":1,\"retries\":0}\n";
    const struct {
        bool afterStart;
        const char* line;
        const char* reason;
    } rows[] = {
        {false, "{\"event\":\"idle\"}", ":1: the record does not begin with its start"},
        {false, "{\"event\":\"start\",\"version\":1}",
         ":1: a record of another version of the tool: this one reads version 2"},
        {false, "{\"event\":\"start\",\"version\":2,\"maxBytes\":0,\"retries\":0}",
         "\"maxBytes\" is not a whole number from 1"},
        {true, "{\"event\":\"jump\"}", ":2: unknown event 'jump'"},
        {true, "{\"event\":\"frame\"}", ":2: "},
        {true, "{\"event\":\"reply\",\"reply\":\"0\",\"countsDiffer\":false,\"status\":1}", ":2: "},
        {true, "{\"event\":\"reply\",\"reply\":\"\",\"countsDiffer\":false,\"status\":1e300}",
         "\"status\" is not a whole number"},
        {true, "{\"event\":\"memory\",\"typeCode\":1,\"address\":4294967296}",
         "\"address\" is not a whole number from 0"},
        {true, "{\"event\":\"poll\",\"definitions\":[[\"A\",\"0\",1,8000000]]}",
         ":2: \"definitions\" need more than 200000 requests"},
        {true, "[[[[[[", ":2: values nest too deep"},
    };
    const std::string record = std::string(WORK_DIR) + "/forged.jsonl";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        std::ofstream(record) << (row.afterStart ? start : "") << row.line << "\n";
        const Outcome outcome = run("replay " + record);
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(outcome.holds(row.reason)) << outcome.text;
    }
}

// What exists is kept unless it is told otherwise.
TEST(Online, anOutputThatExistsIsRefused) {
    Sim_Process sim({"-l", PLANT, "-q"});
    const std::string csv = WORK_DIR "/kept.csv";
    std::ofstream(csv) << "kept\n";
    const struct {
        std::string arguments;
        int code;
        std::string text;
    } rows[] = {
        {"watch Speed -n 2 --csv " + csv, 1, csv + " exists; --append continues it, --force replaces it"},
        {"watch Speed -n 2 --csv " + csv + " --append", 1, "has other columns than this run"},
        {"watch Speed -n 2 --csv " PLANT " --force", 1, "is read by this run"},
        {"read Speed --trace " PLANT ".txt -T 100 -t 127.0.0.1:1", 3, "no connection"},
        {"read Speed --trace trace.log", 1, "a trace ends in .txt"},
        {"ls | head -n 1", 0, "LABEL"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run("-l " PLANT " -t 127.0.0.1:" + std::to_string(sim.port()) + " " + row.arguments);
        EXPECT_EQ(outcome.code, row.code) << row.arguments << "\n" << outcome.text;
        EXPECT_TRUE(outcome.holds(row.text)) << row.arguments << "\n" << outcome.text;
    }
    EXPECT_EQ(std::ifstream(csv).get(), 'k');             // refused, not touched
    EXPECT_FALSE(std::ifstream(PLANT ".txt").is_open());  // no connection, no file
    EXPECT_EQ(
        run("-l " PLANT " -t 127.0.0.1:" + std::to_string(sim.port()) + " watch Speed -n 2 -i 1 --force --csv " + csv)
            .code,
        0);
    EXPECT_EQ(
        run("-l " PLANT " -t 127.0.0.1:" + std::to_string(sim.port()) + " watch Speed -n 2 -i 1 --append --csv " + csv)
            .code,
        0);
    std::ifstream lines(csv);
    int headings = 0, rounds = 0;
    for (std::string line; std::getline(lines, line);)
        ++(line.rfind("time,", 0) == 0 ? headings : rounds);
    EXPECT_EQ(headings, 1);
    EXPECT_GE(rounds, 2);  // of both runs
}

// However often the key is pressed meanwhile: what has said its last word is not killed by a late signal.
TEST(Online, ctrlCEndsAWatchWithItsSummary) {
    Sim_Process sim({"-l", PLANT, "-q"});
    Process tool({TOOL, "-l", PLANT, "-t", "127.0.0.1:" + std::to_string(sim.port()), "watch", "Setpoint", "-i",
                  "86400000", "-o", "csv"});
    for (std::string line; line.find("Setpoint") == std::string::npos && tool.nextLine(line);) {
    }
    for (const double until = clockMs() + 100; clockMs() < until;)
        tool.signal(SIGINT);
    EXPECT_EQ(tool.finish(false), 130) << tool.log();
    EXPECT_NE(tool.log().find("1 rounds, 1 exchanges, 0 retries"), std::string::npos) << tool.log();
}

}  // namespace
}  // namespace vornex::test
