// The verbs of vornex-label that need no controller, run as a user runs them.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

namespace {

struct Outcome {
    int code = -1;
    std::string text;  // stdout and stderr
};

Outcome run(const std::string& arguments) {
    Outcome outcome;
    FILE* const pipe = popen(("cd " WORK_DIR " && " TOOL " " + arguments + " 2>&1").c_str(), "r");
    if (!pipe) return outcome;
    std::array<char, 4096> part;
    for (std::size_t got = 0; (got = fread(part.data(), 1, part.size(), pipe)) > 0;)
        outcome.text.append(part.data(), got);
    const int status = pclose(pipe);
    outcome.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

struct Expected {
    const char* arguments;
    int code;
    const char* text;  // stands in the output
};

void expectAll(const std::vector<Expected>& rows) {
    for (const Expected& row : rows) {
        const Outcome outcome = run(row.arguments);
        EXPECT_EQ(outcome.code, row.code) << row.arguments << "\n" << outcome.text;
        EXPECT_NE(outcome.text.find(row.text), std::string::npos) << row.arguments << "\n" << outcome.text;
    }
}

const char Plant[] = " -l " PLANT " ";

TEST(Check, tellsTheDriversCodeAndThePlace) {
    const struct {
        const char* label;
        const char* outcome;  // as -o csv has it after the label: code, resolved, type, address, at, length
    } rows[] = {
        {"Speed", "0,Speed,3,100,,"},
        {"Speed.x", "0,Speed.x,3,100,,"},
        {"Motors[2].Temp", "0,Motors[2].Temp,4,556,,"},
        {"Buf[1f]", "0,Buf[1f],1,731,,"},
        {"Motors[%%].Temp", "0,Motors[2].Temp,4,556,,"},
        {"Speed[1]", "1,Speed[1],,,5,3"},
        {"Motors[1]", "1,Motors[1],,,9,1"},
        {"Motors.Id", "3,Motors.Id,,,6,1"},
        {"Nope.Id", "2,Nope.Id,,,0,4"},
        {"Recipe", "3,Recipe,,,6,1"},
        {"Recipe[0]", "3,Recipe[0],,,7,1"},
        {"Recipe[9]", "3,Recipe[9],,,7,1"},
        {"Recipe[3]x", "3,Recipe[3]x,,,7,2"},
        {"Buf[1g]", "3,Buf[1g],,,4,2"},
        {"Line[1].Feed[2].Axis[3].Error", "3,Line[1].Feed[2].Axis[3].Error,,,21,1"},
        {"Line[1].Feed[2].Spede", "7,Line[1].Feed[2].Spede,,,16,5"},
        {"Motors[1].Axis[%%].Error", "3,Motors[1].Axis[%%].Error,,,15,2"},
        {"Recipe%%", "2,Recipe%%,,,0,8"},
        {"Speed[%%]", "1,Speed[%%],,,5,4"},
        {"Motors.Id%%", "1,Motors.Id%%,,,9,2"},
        {"", "6,,,,0,1"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run(std::string("check -o csv --index 2") + Plant + "'" + row.label + "'");
        EXPECT_EQ(outcome.code, row.outcome[0] == '0' ? 0 : 2) << row.label;
        const std::string expected =
            std::string(row.label) + (row.outcome[0] == '0' ? ",true," : ",false,") + row.outcome;
        EXPECT_NE(outcome.text.find("\n" + expected + ","), std::string::npos) << expected << "\n" << outcome.text;
    }
    // the indexes' comma is quoted in CSV
    expectAll({{"check -o json -l " PLANT " 'Grid[1]' 'Grid[2,4]' 'Grid[2,3]'", 2,
                "\"code\":1,\"resolved\":\"Grid[1]\",\"type\":null,\"address\":null,\"at\":4,\"length\":3"},
               {"check -o json -l " PLANT " 'Grid[2,4]'", 2,
                "\"at\":7,\"length\":1,\"reason\":\"index 4 is outside 0 to 3"}});
}

TEST(Check, comparesEveryElementWithTheFile) {
    expectAll({{"check --all -l " PLANT, 0, "198 resolve, 0 do not"},
               {"check 'Motors*Temp' -v -l " PLANT, 0, "Motors[4].Temp              address 652  type 4"},
               {"check 'Zo*' -l " PLANT, 2, "no label matches 'Zo*'"},
               {"check Sped -l " PLANT, 2, "did you mean 'Speed'?"},
               {"check Speed", 1, "no label file"},
               {"check Speed --library nosuch.so -l " PLANT, 6, "nosuch.so"}});
}

TEST(Decode, tellsFramesRepliesAndFaults) {
    expectAll({
        {"decode 02 06 00 41 00 10 00 00 04 00 11 29", 0, "item 0: 4 bytes at 4096\n  expects a reply of 12 bytes"},
        {"decode 020600410010000004001129 0000000004001122334492db", 0, "item 0: 4 bytes at 4096: 11 22 33 44\n"},
        {"decode 02080040000100000200123472bd 02000040aca5 -l " PLANT, 0,
         "reply to the write, 6 bytes, check value 0xA5AC"},
        {"decode 0206004164000000020054de 00000000020001021bfe -l " PLANT, 0, "01 02   Speed = 513"},
        {"decode 0000000004001122334492dc", 5, "check value 0xDC92 WRONG, should be 0xDB92"},
        {"decode 020700410010000004001129", 5, "body length 7 makes a frame of 13 bytes, not 12"},
        // the counts are right for themselves, but not what was asked for
        {"decode 020c0041000100000200000200000a008a1f 000000000400aabbccdd08000102030405060708f1f3", 5,
         "WRONG: 10 bytes were asked for, the reply says 8"},
        {"decode 020c0041000100000200000200000a008a1f 000000001000aabb0a000102030405060708090a986e", 5,
         "WRONG: the count runs past the end of the reply"},
        {"decode 020600410010000004001129 00000000", 5, "too short for a check value"},
        {"decode 02zz", 1, "is not a run of bytes in hex"},
        {"decode -o json 0206004164000000020054de -l " PLANT, 0,
         "\"check\":\"0xDE54\",\"check_right\":true,\"item\":0,\"address\":100,\"length\":2,\"data\":null,\"labels\":"
         "\"Speed\""},
    });
}

TEST(Ls, showsTreeAndElements) {
    expectAll({{"ls -l " PLANT, 0, "\nBuf[0..31]        1/16    hex        700        32\n"},
               {"ls Line.Feed.Axis.Error -l " PLANT, 0, "\n      Error     4       s16       1072         2\n"},
               {"ls 'Motors[3]*Temp' --elements -o csv -l " PLANT, 0, "\nMotors[3].Temp,4,s16,604,2,C\n"},
               {"ls 'Nope*' -l " PLANT, 2, "no label matches 'Nope*'"}});
}

TEST(Labels, convertKeepsEverythingAndOverwritesNothing) {
    expectAll({{"labels convert " PLANT " a.csv --force --separator ';' --bom", 0, "a.csv: 13 labels, 4 structures"},
               {"labels convert a.csv b.json --force -q", 0, ""},
               {"labels convert b.json c.csv --force --separator ';' --bom", 0, "c.csv"},
               {"labels convert b.json a.csv", 1, "a.csv exists"},
               {"labels convert b.json /nosuch/a.csv", 1, "/nosuch/a.csv: cannot be written: No such file"},
               {"check --all -l a.csv", 0, "198 resolve, 0 do not"}});
    EXPECT_EQ(run("--version; cmp a.csv c.csv && echo same").text.find("same") != std::string::npos, true);
}

TEST(Labels, lintNamesFileLineAndLabel) {
    std::ofstream(WORK_DIR "/bad.csv") << "kind,name,type,at\nlabel,A,5,0\nlabel,B,3,2\n";
    expectAll({{"labels lint bad.csv", 0, "bad.csv:3: warning: B: shares bytes 2 to 3 with 'A' (line 2) [overlap]"},
               {"labels lint bad.csv --strict -o json", 2, "\"line\":3,\"severity\":\"warning\",\"rule\":\"overlap\""},
               {"labels lint bad.csv --end 3", 2, "bad.csv:2: error: A: bytes 0 to 3 go past the end"},
               {"labels lint bad.csv --end x", 1, "is no address"},
               {"labels lint " PLANT, 0, "13 labels, nothing found"}});
}

TEST(Labels, namesAreWhatTheDissectorReads) {
    expectAll({{"labels names bad.csv", 0, "\n0\t4\tu32\tA\n2\t2\tu16\tB\n"}});
}

TEST(Info, tellsLibraryAndRecords) {
    expectAll({{"info", 0, "library SONAME          libvornex_label_tcp.so.1\n"},
               {"info", 0, "entry points            17 of 17\n"},
               {"info --library libc.so.6", 6, "libc.so.6 is not the driver: no entry point SetComInfo"}});
}

// Whoever pipes into jq gets objects from every verb, and a heading with as many cells as each row in CSV.
TEST(Output_Formats, everyVerbSpeaksJsonAndCsv) {
    const char* const commands[] = {"ls",
                                    "ls --elements",
                                    "check --all",
                                    "info",
                                    "labels names",
                                    "labels lint --end 600",
                                    "decode 020c0041640000000200f40100000e00fccc 02000040aca5"};
    for (const char* command : commands) {
        std::istringstream objects(run(std::string(command) + Plant + "-q -o json").text);
        std::size_t fields = 0;
        for (std::string line; std::getline(objects, line);) {
            if (line.rfind("vornex-label: ", 0) == 0) continue;
            const nlohmann::json object = nlohmann::json::parse(line, nullptr, false);
            ASSERT_TRUE(object.is_object()) << command << ": " << line;
            fields = object.size();
        }
        EXPECT_GT(fields, 1u) << command;
        std::istringstream table(run(std::string(command) + Plant + "-q -o csv").text);
        std::string heading;
        std::getline(table, heading);
        EXPECT_EQ(static_cast<std::size_t>(std::count(heading.begin(), heading.end(), ',')) + 1, fields) << command;
    }
}

}  // namespace
