// A watch that runs for days, and what a database's collector gets of it.
#include <signal.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "Sim_Process.h"
#include "Tool_Run.h"

namespace vornex::test {
namespace {

namespace fs = std::filesystem;

std::string textIn(const fs::path& folder) {
    std::string text;
    for (const auto& entry : fs::directory_iterator(folder)) {
        std::ifstream stream(entry.path());
        text.append((std::istreambuf_iterator<char>(stream)), {});
    }
    return text;
}

long linesWith(const std::string& text, const std::string& pattern) {
    std::istringstream lines(text);
    long found = 0;
    for (std::string line; std::getline(lines, line);)
        found += std::regex_match(line, std::regex(pattern)) ? 1 : 0;
    return found;
}

TEST(Watch_Log, keepsEachRoundOrTheChangesAlone) {
    const fs::path folder = fs::path(WORK_DIR) / "log";
    const struct {
        const char* options;
        const char* line;  // of Setpoint, which stands still
        long rounds;
    } rows[] = {
        {"", "\\d{4}-.*T.*[+-]\\d\\d:\\d\\d,Setpoint,1500,1500,rpm,,fresh", 7},
        {"--log-format json",
         "\\{\"time\":\"2.*\",\"label\":\"Setpoint\",\"value\":1500,\"raw\":1500,\"unit\":\"rpm\",.*\\}", 7},
        {"--log-format influx", "vornex,controller=127.0.0.1:\\d+,label=Setpoint,unit=rpm value=1500 \\d{19}", 7},
        {"--changes", ".*,Setpoint,1500,1500,rpm,,fresh", 1},
    };
    for (const auto& row : rows) {
        fs::remove_all(folder);
        Sim_Process sim({"-l", PLANT, "-q"});
        const Outcome outcome =
            run(std::string("watch Setpoint Cycles -q -i 1 -n 7 --log log ") + row.options + on(sim.port()));
        EXPECT_EQ(outcome.code, 0) << outcome.text;
        EXPECT_EQ(linesWith(textIn(folder), row.line), row.rounds) << row.options << "\n" << textIn(folder);
    }
}

TEST(Watch_Log, isMendedAfterAKill) {
    const fs::path folder = fs::path(WORK_DIR) / "log";
    fs::remove_all(folder);
    Sim_Process sim({"-l", PLANT, "-q"});
    {
        Process tool({TOOL, "watch", "Cycles", "-i", "1", "--log", folder.string(), "-l", PLANT, "-t",
                      "127.0.0.1:" + std::to_string(sim.port())});
        EXPECT_NE(tool.readLine().find("Cycles = "), std::string::npos);
        EXPECT_NE(tool.readLine().find("Cycles = "), std::string::npos);
        tool.signal(SIGKILL);
        EXPECT_EQ(tool.finish(false), -1);
    }
    const fs::path file = *fs::directory_iterator(folder);
    std::ofstream(file, std::ios::app) << "2026-05-17T21:40:01.123+02:00,Cyc";  // as if in the middle of a write
    const Outcome outcome = run("watch Cycles -q -i 1 -n 3 --log log" + on(sim.port()));
    EXPECT_EQ(outcome.code, 0) << outcome.text;
    const std::string text = textIn(folder);
    EXPECT_GE(linesWith(text, ".*,Cycles,\\d+,\\d+,,,fresh"), 4) << text;  // of both runs
    EXPECT_EQ(linesWith(text, "time,label,value,raw,unit,band,state"), 1) << text;
    EXPECT_EQ(linesWith(text, ".*,Cyc(|2.*)"), 0) << text;
}

TEST(Watch_Log, refusesWhatItCannotDo) {
    Sim_Process sim({"-l", PLANT, "-q"});
    std::ofstream(WORK_DIR "/no-folder") << "x";
    const struct {
        const char* arguments;
        int code;
        const char* text;
    } rows[] = {
        {"watch Speed --log no-folder", 1, "no-folder: "},
        {"watch Speed --log log --rotate 1w", 1, "--rotate: '1w' is not 1h, 1d or a size like 50M"},
        {"watch Speed --duration soon", 1, "--duration: 'soon' is not a duration like 90s"},
        {"read Speed -o influx", 1, "--output"},
        {"-o influx read Speed", 1, "-o influx is for values with times"},
        {"watch Speed -i 1 --duration 0.2s -q", 0, ""},
        {"stats Speed -d 50ms", 0, "exchanges in 0."},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run(row.arguments + on(sim.port()));
        EXPECT_EQ(outcome.code, row.code) << row.arguments << "\n" << outcome.text;
        EXPECT_TRUE(outcome.holds(row.text)) << row.arguments << "\n" << outcome.text;
    }
}

// Each type has its field, and what has a meaning in the protocol is escaped.
TEST(Watch_Log, writesTheLineProtocol) {
    std::ofstream(WORK_DIR "/points.json") << R"x({"format": 1, "labels": [
        {"name": "Temp, oven=1 \"top\" a\\b\\", "type": "4", "at": 0, "view": "s16", "unit": "C", "sim": "const(-7)"},
        {"name": "Flow", "type": "7", "at": 4, "view": "f32", "sim": "const(0.1)"},
        {"name": "On", "type": "1", "at": 8, "view": "bool", "sim": "const(1)"},
        {"name": "Mask", "type": "3", "at": 10, "view": "hex", "sim": "const(500)"},
        {"name": "Name", "type": "10", "at": 100, "view": "text", "sim": "const(a \"b\" c)"},
        {"name": "Large", "type": "8", "at": 400, "view": "s64", "sim": "const(-9007199254740993)"},
        {"name": "Larger", "type": "8", "at": 408, "view": "u64", "sim": "const(18446744073709551615)"}]})x";
    Sim_Process sim({"-l", WORK_DIR "/points.json", "-q"});
    const std::string target = "127.0.0.1:" + std::to_string(sim.port());
    const Outcome outcome = run("watch '*' -l points.json -o influx -i 1 -n 1 -t " + target);
    EXPECT_EQ(outcome.code, 0);
    const std::string head = "vornex,controller=" + target + ",label=";
    for (const std::string& point :
         {head + "Temp\\,\\ oven\\=1\\ \"top\"\\ a/b/,unit=C value=-7 ", head + "Flow value=0.1 ",
          head + "On bool=true ", head + "Mask value=500 ", head + "Name text=\"a \\\"b\\\" c\" ",
          head + "Large value=-9007199254740992,integer=-9007199254740993i ",
          head + "Larger value=1.8446744073709552e+19,text=\"18446744073709551615\" "}) {
        EXPECT_TRUE(outcome.holds(point)) << point << "\n" << outcome.text;
    }
    EXPECT_TRUE(outcome.holds("I! 1 rounds")) << outcome.text;
    const Outcome alone = run("watch Flow -l points.json -o influx -n 1 -T 50 --no-wait -t 127.0.0.1:1");
    EXPECT_TRUE(alone.holds("E! no connection to 127.0.0.1:1")) << alone.text;
}

}  // namespace
}  // namespace vornex::test
