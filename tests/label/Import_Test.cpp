// Symbol tables of other programs: taken as label files, told of, and read and written through the driver.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "Sim_Process.h"
#include "Tool_Run.h"

namespace vornex::test {
namespace {

#define PRESS IMPORT_DATA "/press.csv "
#define TANK IMPORT_DATA "/tank.txt "

std::string textOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// As a German spreadsheet writes it: byte-order mark, CRLF, semicolons, decimal commas, a title above the headings.
TEST(Import, takesASpreadsheetAndTellsTheRest) {
    const std::string made = WORK_DIR "/press.json";
    std::filesystem::remove(made);
    const std::string import = "labels import " PRESS + made + " --map address=Offset";
    EXPECT_TRUE(run(import + " --dry-run").holds("\"name\": \"Druck\", \"type\": \"INT\", \"at\": 100"));
    EXPECT_EQ(run(import + " --strict").code, 2);
    EXPECT_FALSE(std::filesystem::exists(made));  // neither of them writes

    const Outcome outcome = run(import);
    EXPECT_EQ(outcome.code, 2);
    for (const char* told : {
             "press.csv: above the headings, 1 row left out",
             "press.csv: columns left out: Besitzer",
             "press.csv:6: label 'Bereit': is the bit Status.Bereit; left out: its description",
             "press.csv:7: label 'Pumpe': is the bit Byte120.Pumpe",
             "press.csv:10: label 'Zeit': neither a type nor a structure is called 'TIME'",
             "press.csv:11: label 'Eingang': '%IW4' is an input or output",
             "press.csv:12: label 'Druck': the name is used twice, first in line 3",
             "press.csv:13: label 'Motor.Ein': a name cannot hold '.'",
             "press.csv:14: label 'Wort': only a BOOL lies at a bit; this is INT",
             "press.csv:15: label 'Grenze': max '3.5' has a point",
             "press.csv:16: label 'Leer': address '' is not a whole number",
             "press.csv: 6 labels, 7 not taken\n",
         }) {
        EXPECT_TRUE(outcome.holds(told)) << told << "\n" << outcome.text;
    }
    EXPECT_EQ(textOf(made), textOf(IMPORT_DATA "/press.json"));
    EXPECT_EQ(run(import).code, 1);  // it exists now
}

TEST(Import, findsOrRefusesTablesAndAddresses) {
    std::ofstream(WORK_DIR "/noname.csv") << "Symbole,Address,Type\nA,1,INT\n";
    std::ofstream(WORK_DIR "/xml.csv") << "<?xml version=\"1.0\"?><project/>\n";
    std::ofstream(WORK_DIR "/none.csv") << "";
    std::ofstream(WORK_DIR "/far.csv") << "Tag,Address,Type\nA,4294967294,DINT\nB,4294967296,INT\nC,%MX5,BOOL\n"
                                          "D,12.8,BOOL\nE,DB1,INT\nF,1,INTT\n";
    std::ofstream(WORK_DIR "/open.csv") << "Tag,Address,Type\n\"A,1,INT\n";
    expectAll({
        {"labels import " TANK "--count words --base 0x100", 0, "\"#1 level\", \"type\": \"UINT\", \"at\": 276"},
        {"labels import " TANK "--count words --base 0x100", 0, "\"Byte281\", \"type\": \"BYTE\", \"at\": 281"},
        {"labels import " TANK, 2, "tank.txt:3: label 'Valve': bit '9' is not a whole number from 0 to 7"},
        {"labels import noname.csv", 2, "noname.csv:1: no column is known as the name among Symbole, Address, Type"},
        {"labels import noname.csv --map name=Symbol", 2, "no column is called 'Symbol'; did you mean 'Symbole'?"},
        {"labels import noname.csv --map nam=Symbole", 1, "--map: 'nam' is no key of a label; did you mean 'name'?"},
        {"labels import noname.csv --map name=Symbole", 0, "\"name\": \"A\", \"type\": \"INT\", \"at\": 1"},
        {"labels import noname.csv x.txt --map name=Symbole", 1, "x.txt: a label file ends in .json or .csv"},
        {"labels import xml.csv", 2, "xml.csv:1: is XML; only tables (CSV) are imported"},
        {"labels import none.csv", 2, "none.csv:1: the table is empty"},
        {"labels import open.csv", 2, "open.csv:2:1: the quote that begins here is never closed"},
        {"labels import far.csv", 2, "far.csv:2: label 'A': 1 x 4 bytes at 4294967294 end past"},
        {"labels import far.csv", 2, "far.csv:3: label 'B': address '4294967296' is not"},
        {"labels import far.csv", 2, "far.csv:4: label 'C': '%MX5' names no bit"},
        {"labels import far.csv", 2, "far.csv:5: label 'D': bit '8' is not a whole number from 0 to 7"},
        {"labels import far.csv", 2, "far.csv:6: label 'E': 'DB1' is no address"},
        {"labels import far.csv", 2, "called 'INTT'; did you mean 'INT'?"},
        {"labels import far.csv", 2, "far.csv: 0 labels, 6 not taken; nothing written"},
    });
}

TEST(Import, givesLabelsThatTheDriverReadsAndWrites) {
    const std::string made = WORK_DIR "/online.csv";
    ASSERT_EQ(run("labels import " PRESS + made + " --map address=Offset --force -q").code, 2);
    Sim_Process sim({"-l", made, "-q"});
    const std::string online = " -l " + made + " -t 127.0.0.1:" + std::to_string(sim.port());
    const Outcome written = run("write Druck=12.5 'Tabelle[3]=-7' Byte120.Pumpe=on Rezept=Cola --verify" + online);
    EXPECT_EQ(written.code, 0) << written.text;
    const Outcome refused = run("write Druck=17" + online);
    EXPECT_EQ(refused.code, 2) << refused.text;
    const Outcome read = run("read Druck @100:INT @144:INT @120:BYTE Rezept Status.Bereit" + online);
    for (const char* shown : {"Druck = 12.5 bar\n", "@100:INT = 125\n", "@144:INT = -7\n", "@120:BYTE = 0x02\n",
                              "Rezept = \"Cola\"\n", "Status.Bereit = false"})
        EXPECT_TRUE(read.holds(shown)) << shown << "\n" << read.text;
}

}  // namespace
}  // namespace vornex::test
