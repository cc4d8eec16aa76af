// The label file as a table: what spreadsheets make of it is read, mistakes are told with their place, nothing is lost.
#include "labels/Label_Csv.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace vornex {
namespace {

std::string errorOf(const std::string& text) {
    try {
        parseLabelCsv(text, "f");
    } catch (const File_Error& error) {
        return error.what();
    }
    return "accepted";
}

TEST(Label_Csv, readsWhatSpreadsheetsWrite) {
    const char* const rows[] = {
        // separators, line ends, byte-order mark, columns in another order, an empty row and an empty column
        "kind,name,type,at,view,unit\nlabel,Grid,\"4[0..2,0..3]/16\",300,s16,\"m\"\"/s\"\n",
        "\xEF\xBB\xBFkind;name;type;at;view;unit\r\nlabel;Grid;4[0..2,0..3]/16;300;s16;\"m\"\"/s\"\r\n",
        ("# a note with \"quotes\"\nat;unit;;type;view;name;kind\n;;;;;;\n"
         "0x12C;\"m\"\"/s\";;4[0..2,0..3]/16; s16;Grid;label"),
    };
    for (const char* text : rows) {
        const Label_File file = parseLabelCsv(text, "f");
        ASSERT_EQ(file.labels.size(), 1u) << text;
        EXPECT_EQ(file.labels[0].name, "Grid") << text;
        EXPECT_EQ(formatType(file.labels[0].type), "4[0..2,0..3]/16") << text;
        EXPECT_EQ(file.labels[0].at, 300u) << text;
        EXPECT_EQ(file.labels[0].view, View::S16) << text;
        EXPECT_EQ(meaningOf(file.labels[0]).unit, "m\"/s") << text;
    }
}

TEST(Label_Csv, losesNothingBothWays) {
    const std::string json =
        "{\n  \"format\": 1,\n  \"target\": \"plc:2000\",\n  \"structs\": {\n"
        "    \"AxisT\": {\"size\": 4, \"members\": [\n"
        "      {\"name\": \"Pos\", \"type\": \"INT\", \"at\": 0, \"view\": \"hex\", \"unit\": \"mm\", \"decimals\": 2, "
        "\"scale\": "
        "0.05, \"offset\": -1e-07, \"min\": 0, \"max\": 3e+09, \"low\": 1, \"high\": 2.5, \"states\": {\"0\": \"off; "
        "on\", \"40000\": "
        "\"auto\"}, \"bits\": {\"Door open\": 15}, \"description\": \" Where, \\\"it\\\" is\", \"sim\": "
        "\"ramp(0,3,5)\"},\n"
        "      {\"name\": \"Err\", \"type\": \"1[1..2]\", \"at\": 2}\n    ]},\n"
        "    \"MotorT\": {\"size\": 12, \"members\": [\n"
        "      {\"name\": \"Axis\", \"type\": \"AxisT[0..1]\", \"at\": 4}\n    ]}\n  },\n"
        "  \"labels\": [\n"
        "    {\"name\": \" a;b,c \\\"d\\\" \\\\  e\", \"type\": \"10\", \"at\": 4294967040, \"unit\": "
        "\"\xC2\xB0\x43\"},\n"
        "    {\"name\": \"#M\", \"type\": \"MotorT[-2..4]/36\", \"at\": 500}\n  ]\n}\n";
    const Label_File file = parseLabelFile(json, "f");
    EXPECT_EQ(formatLabelJson(file), json);
    for (const char separator : {',', ';'}) {
        const std::string table = formatLabelCsv(file, separator);
        EXPECT_EQ(formatLabelJson(parseLabelCsv(table, "f")), json) << table;
    }
}

TEST(Label_Csv, namesLineAndColumnOfMistakes) {
    const struct {
        const char* text;
        const char* error;
    } rows[] = {
        {"", "f:1: the table is empty"},
        {"kind,name,type,at,scale\nlabel,A,3,0,0;1\n", "f:2:13: scale '0;1' is not a number"},
        {"kind,name,type,at,states\nlabel,A,3,0,off\n", "f:2:13: 'off' in states is not LEFT=RIGHT"},
        {"kind,name,kind\n", "f:1:11: column 'kind' stands twice"},
        {"name,type\n", "f:1:1: column 'kind' is missing"},
        {"kind,name,type,at\nlabel,\xC3\xA4,3,1OO\n", "f:2:11: at '1OO' is not a whole number"},
        {"kind,name,type,at\nlabel,A,3,4294967296\n", "f:2:11: at '4294967296' is not"},
        {"kind,name,type,at\nlabel,A,4[0..2],0\nlabel,B,4[2..0],0\n", "f:3:9: index bounds '2..0' are upside down"},
        {"kind,name,type,at,view\nlabel,A,3,0,i16\n", "f:2:13: unknown view 'i16'"},
        {"kind,name,type,at\nlabel,\"A\nB,3,0\n", "f:2:7: the quote that begins here is never closed"},
        {"kind,name,type,at\nlabel,\"A\"B,3,0\n", "f:2:10: text after the closing quote"},
        {"kind,name,type,at\nlabel,A\"B,3,0\n", "f:2:8: a quote inside a cell"},
        {"kind,name,type,at,view\nlabel,A,4[0..2,0..3],5\n", "f:2:9: ']' is missing"},
        {"kind,name,type,at\nlable,A,3,0\n", "f:2:1: 'lable' is no kind of row"},
        {"kind,name,type,at,size\nlabel,A,3,0,2\n", "f:2:13: a label has no 'size'"},
        {"kind,name,type,at\nlabel,A,3,0,x\n", "f:2:13: a cell beyond the last column"},
        {"kind,name,type,at\nmember,T.A,3,0\n", "f:2:8: there is no row for the structure 'T'"},
        {"kind,name,type,at\nmember,A,3,0\n", "f:2:8: a member's name is STRUCTURE.MEMBER"},
        {"kind,name,size\nstruct,T,4\nstruct,T,4\n", "f:3:8: structure 'T' stands twice"},
        {"kind,name,type,at,unit\nlabel,A,3,0,\xB0"
         "C\n",
         "f:2:13: the text is not UTF-8"},
        {"kind,name,type,at,unit\nlabel,A,3,0,\"\xED\xA0\x80\"\n", "f:2:13: the text is not UTF-8"},
        {"kind,name,type,at,unit\nlabel,A,3,0,\xC3\n", "f:2:13: the text is not UTF-8"},
        // only all rows together show these; a cell with a line end in it counts its lines
        {"kind,name,type,at,\nlabel,A,3,0,\"\n\"\nlabel,A,3,2,\n", "f:4: label 'A': the name is used twice"},
        {"kind,name,type,at,size\nmember,T.A,7,2,\nstruct,T,,,4\n", "f:2: member 'T.A': 1 x 4 bytes at 2 end past"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(errorOf(row.text).substr(0, std::string(row.error).size()), row.error) << row.text;
}

// What is accepted has to come back the same, what is not has to name its line; nothing may crash.
TEST(Label_Csv, bentTablesAreReadWholeOrRefusedWithTheirLine) {
    const std::string table = formatLabelCsv(readLabelFile(EXAMPLES_DIR "/plant.json"), ';');
    std::mt19937 random(1);
    const auto below = [&random](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    const std::string letters = ";;,\"\"\n\r#.[]09 xA\xC3";
    int refused = 0;
    for (int i = 0; i < 3000; ++i) {
        std::string text = table;
        for (std::size_t change = 1 + below(3); change > 0; --change) {
            const std::size_t at = below(text.size());
            if (below(2) == 0)
                text.insert(at, 1, letters[below(letters.size())]);
            else
                text.erase(at, 1 + below(9));
        }
        try {
            const std::string json = formatLabelJson(parseLabelCsv(text, "f"));
            EXPECT_EQ(formatLabelJson(parseLabelFile(json, "f")), json);
        } catch (const File_Error& error) {
            ++refused;
            const std::string words = error.what();
            EXPECT_EQ(words.compare(0, 2, "f:"), 0) << words;
            EXPECT_GT(std::atoi(words.c_str() + 2), 0) << words;
        }
    }
    EXPECT_GT(refused, 500);
    EXPECT_LT(refused, 2900);
}

}  // namespace
}  // namespace vornex
