// The verbs of vornex-label that need no controller, run as a user runs them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "Tool_Run.h"

namespace vornex::test {
namespace {

const char Plant[] = " -l " PLANT " ";

TEST(Check, tellsTheDriversCodeAndThePlace) {
    const struct {
        const char* label;
        int code;             // the driver's
        const char* outcome;  // as -o csv has it: resolved, type, address, at, length
    } rows[] = {
        {"Speed", 0, "Speed,3,100,,"},
        {"Speed.x", 0, "Speed.x,3,100,,"},
        {"Motors[2].Temp", 0, "Motors[2].Temp,4,556,,"},
        {"Buf[1f]", 0, "Buf[1f],1,731,,"},
        {"Motors[%%].Temp", 0, "Motors[2].Temp,4,556,,"},
        {"Speed[1]", 1, "Speed[1],,,5,3"},
        {"Motors[1]", 1, "Motors[1],,,9,1"},
        {"Motors.Id", 3, "Motors.Id,,,6,1"},
        {"Nope.Id", 2, "Nope.Id,,,0,4"},
        {"Recipe", 3, "Recipe,,,6,1"},
        {"Recipe[0]", 3, "Recipe[0],,,7,1"},
        {"Recipe[9]", 3, "Recipe[9],,,7,1"},
        {"Recipe[3]x", 3, "Recipe[3]x,,,7,2"},
        {"Buf[1g]", 3, "Buf[1g],,,4,2"},
        {"Line[1].Feed[2].Axis[3].Error", 3, "Line[1].Feed[2].Axis[3].Error,,,21,1"},
        {"Line[1].Feed[2].Spede", 7, "Line[1].Feed[2].Spede,,,16,5"},
        {"Motors[1].Axis[%%].Error", 3, "Motors[1].Axis[%%].Error,,,15,2"},
        {"Recipe%%", 2, "Recipe%%,,,0,8"},
        {"Speed[%%]", 1, "Speed[%%],,,5,4"},
        {"Motors.Id%%", 1, "Motors.Id%%,,,9,2"},
        {"", 6, ",,,0,1"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run(std::string("check -o csv ") + (std::strstr(row.label, "%%") ? "--index 2" : "") +
                                    Plant + "'" + row.label + "'");
        EXPECT_EQ(outcome.code, row.code == 0 ? 0 : 2) << row.label;
        const std::string expected = std::string("\n") + row.label + (row.code == 0 ? ",true," : ",false,") +
                                     std::to_string(row.code) + "," + row.outcome + ",";
        EXPECT_TRUE(outcome.holds(expected)) << expected << "\n" << outcome.text;
    }
    // the indexes' comma is quoted in CSV
    expectAll(
        {{"check -o json -l " PLANT " 'Grid[1]' 'Grid[2,4]' 'Grid[2,3]'", 2,
          "\"code\":1,\"resolved\":\"Grid[1]\",\"typeCode\":null,\"address\":null,\"markAt\":4,\"markLength\":3"},
         {"check -o json -l " PLANT " 'Grid[2,4]'", 2,
          "\"markAt\":7,\"markLength\":1,\"reason\":\"index 4 is outside 0 to 3"},
         {"check -l " PLANT " 'Motors[%%].Speed' --index 9", 2, "leaves the array and would become Motors[4].Speed"},
         {"check -l " PLANT " 'Motors[%%].Speed' --index 9 --wrap", 0, "-> Motors[4].Speed"},
         {"check -l " PLANT " Speed --index 1", 1, "no label is a template"}});
}

TEST(Check, comparesEveryElementWithTheFile) {
    expectAll({{"check --all -l " PLANT, 0, "200 resolve, 0 do not"},
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
        {"decode -o json 02080040000100000200123472bd 02000040aca5", 0, "\"header\":\"02 00 00 40\""},
        {"decode -o json 0206004164000000020054de -l " PLANT, 0,
         "\"checkValue\":\"0xDE54\",\"checkRight\":true,\"header\":null,\"item\":0,\"address\":100,\"bytes\":2,"
         "\"data\":null,"
         "\"labels\":"
         "\"Speed\""},
    });
}

TEST(Ls, showsTreeAndElements) {
    expectAll(
        {{"ls -l " PLANT, 0, "\nBuf[0..31]        1/16    hex        700        32\n"},
         {"ls Line.Feed.Axis.Error -l " PLANT, 0, "\n      Error     4       s16       1072         2\n"},
         {"ls 'Motors[3]*Temp' --elements -o csv -l " PLANT, 0, "\nMotors[3].Temp,4,s16,604,2,C\n"},
         {"ls 'Nope*' -l " PLANT, 2, "no label matches 'Nope*'"},
         // paths with all indexes, with some, with a glob behind them
         {"ls 'Motors[2].Speed' -l " PLANT, 0, "\nMotors[2]  MotorT             548        48\n  Speed    7 "},
         {"ls 'Line[2].Feed.Axis[2].Error' -l " PLANT, 0, "\n      Error   4       s16       1244         2\n"},
         {"ls 'Motors[3].S*' -o csv -l " PLANT, 0, "\nMotors[3].Speed,7,f32,600,4,1,4,rpm,1,\n"},
         {"ls 'Buf[1A]' -l " PLANT, 0, "\nBuf[1a]  1/16  hex        726         1\n"},
         {"ls 'Motors[%%].Temp' -l " PLANT, 0, "\nMotors[1..4]  MotorT             500       192\n  Temp"},
         {"ls 'Line.Feed[2].Speed' --elements -l " PLANT, 0, "\nLine[2].Feed[2].Speed  7 "},
         {"ls Motors --elements -o csv -l " PLANT, 0, "\nMotors[4].Axis[2].Ready,1,bool,"},
         {"ls Speed 'Motors[1].Spede' -l " PLANT, 2, "did you mean 'Speed'?\n    Motors[1].Spede\n              ^"},
         {"ls Speed 'Nope*' --elements -l " PLANT, 2, "no label matches 'Nope*'"},
         {"ls 'Motors[5]' -l " PLANT, 2, "index 5 is outside 1 to 4\n"},
         {"ls Speed.x -l " PLANT, 2, "'Speed' is no structure and has no members\n"}});
}

TEST(Labels, convertKeepsEverythingAndOverwritesNothing) {
    expectAll({{"labels convert " PLANT " a.csv --force --separator ';' --bom", 0, "a.csv: 15 labels, 4 structures"},
               {"labels convert a.csv b.json --force -q", 0, ""},
               {"labels convert b.json c.csv --force --separator ';' --bom", 0, "c.csv"},
               {"labels convert b.json a.csv", 1, "a.csv exists"},
               {"labels convert b.json a.txt", 1, "a.txt: a label file ends in .json or .csv; --to takes another name"},
               {"labels convert b.json a --to csv --force", 0, "a: 15 labels"},
               {"labels convert b.json /nosuch/a.csv", 1, "/nosuch/a.csv: its folder: No such file"},
               {"check --all -l a.csv", 0, "200 resolve, 0 do not"}});
    EXPECT_EQ(runCommand(WORK_DIR, "cmp a.csv c.csv").code, 0);
}

TEST(Labels, lintNamesFileLineAndLabel) {
    std::ofstream(WORK_DIR "/octal.csv") << "kind,name,type,at\nlabel,A,3,98\n";
    std::ofstream(WORK_DIR "/sim.csv") << "kind,name,type,at,size,view,sim\nlabel,A,9,0,,f64,\"ramp(0,1e308,0)\"\n"
                                          "struct,T,,,4\nmember,T.B,7,0,,,\"ramp(0,x,9)\"\n"
                                          "label,T,T,8\nlabel,L,7,16,,f32,const(0.123456789)\n"
                                          "label,M,1[0..2000000],32,,,toggle(9)\n";
    std::ofstream(WORK_DIR "/bad.csv") << "kind,name,type,at\nlabel,A,5,0\nlabel,B,3,2\n";
    expectAll({{"labels lint bad.csv", 0, "bad.csv:3: warning: B: shares bytes 2 to 3 with 'A' (line 2) [overlap]"},
               {"labels lint bad.csv --strict -o json", 2, "\"line\":3,\"severity\":\"warning\",\"rule\":\"overlap\""},
               {"labels lint bad.csv --end 3", 2, "bad.csv:2: error: A: bytes 0 to 3 go past the end"},
               {"labels lint bad.csv --end x", 1, "--end: 'x' is not a whole number from 1 to 4294967296"},
               {"labels lint bad.csv --end=-1", 1, "--end: '-1' is not"},
               {"labels lint octal.csv --end=0100 -q", 0, ""},  // a hundred, not 64
               {"labels lint sim.csv", 2, "sim.csv:2: error: A: a time is at least 1 ms [sim]\n"},
               {"labels lint sim.csv", 2, "sim.csv:4: error: T.B: 'x' is not a number [sim]\n"},
               {"labels lint sim.csv", 2, "sim.csv:6: warning: L: '0.123456789' is stored as 0.12345679, the nearest"},
               {"labels lint sim.csv", 2, "sim.csv:7: error: M[999997]: more than a million elements with a motion"},
               {"labels lint " PLANT, 0, "15 labels, nothing found"}});
}

TEST(Labels, namesAreWhatTheDissectorReads) {
    expectAll({{"labels names bad.csv", 0, "\n0\t4\tunsigned\t4\tA\n2\t2\tunsigned\t2\tB\n"}});
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
        std::istringstream objects(run(Plant + std::string(command) + " -q -o json").text);
        std::size_t fields = 0;
        for (std::string line; std::getline(objects, line);) {
            if (line.rfind("vornex-label: ", 0) == 0) continue;
            const nlohmann::json object = nlohmann::json::parse(line, nullptr, false);
            ASSERT_TRUE(object.is_object()) << command << ": " << line;
            fields = object.size();
        }
        EXPECT_GT(fields, 1u) << command;
        std::istringstream table(run(Plant + std::string(command) + " -q -o csv").text);
        std::string heading;
        std::getline(table, heading);
        EXPECT_EQ(static_cast<std::size_t>(std::count(heading.begin(), heading.end(), ',')) + 1, fields) << command;
    }
}

}  // namespace
}  // namespace vornex::test
