// The label file: what is read, what is refused and with which line, and the walk over its elements.
#include "labels/Label_File.h"

#include <gtest/gtest.h>

namespace vornex {
namespace {

std::string errorOf(const std::string& text) {
    try {
        parseLabelFile(text, "f");
    } catch (const File_Error& error) {
        return error.what();
    }
    return "accepted";
}

// A file with one label, or with the structure S and one label.
std::string withLabel(const std::string& label) { return "{\"format\":1,\n\"labels\":[\n{" + label + "}]}"; }
std::string withStruct(const std::string& type) {
    return "{\"format\":1,\"structs\":{\n\"S\":{" + type + "}},\"labels\":[]}";
}

// Two members of each structure in the next one, which doubles what lies below: 2^levels elements in a byte.
std::string doubling(int levels) {
    std::string text = "{\"format\":1,\"structs\":{";
    for (int i = 0; i < levels; ++i) {
        const std::string type = i + 1 < levels ? "\"S" + std::to_string(i + 1) + "\"" : "\"1\"";
        text += (i == 0 ? "\"S" : ",\"S") + std::to_string(i) +
                "\":{\"size\":1,\"members\":[{\"name\":\"a\",\"type\":" + type +
                ",\"at\":0},{\"name\":\"b\",\"type\":" + type + ",\"at\":0}]}";
    }
    return text + "},\n\"labels\":[{\"name\":\"X\",\"type\":\"S0\",\"at\":0}]}";
}

std::string chain(int levels) {
    std::string text = "{\"format\":1,\"structs\":{";
    for (int i = 0; i < levels; ++i) {
        text += "\"S" + std::to_string(i) + "\":{\"size\":1,\"members\":[{\"name\":\"M\",\"type\":\"S" +
                std::to_string(i + 1) + "\",\"at\":0}]},";
    }
    return text + "\"S" + std::to_string(levels) + "\":{\"size\":1,\"members\":[]}},\"labels\":[]}";
}

struct Bad_File {
    const char* what;
    std::string text;
    const char* error;
};

void expectRefused(const std::vector<Bad_File>& rows) {
    for (const Bad_File& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_NE(errorOf(row.text).find(row.error), std::string::npos) << errorOf(row.text);
    }
}

TEST(Label_File, refusesFilesWithFileAndLine) {
    expectRefused({
        {"syntax", "{\"format\":1,\n\"labels\":[,]}", "f:2: column 11: "},
        {"format", "{\"format\":2,\"labels\":[]}", "f:1: the format is not 1"},
        {"no labels", "{\"format\":1}", "f:1: the key \"labels\" is missing"},
        {"key twice", "{\"format\":1,\n\"format\":1}", "f:2: the key \"format\" stands twice"},
        {"target", "{\"format\":1,\n\"target\":\"host\",\"labels\":[]}", "f:2: target 'host' is not HOST:PORT"},
        {"port", "{\"format\":1,\n\"target\":\"host:0x50000\",\"labels\":[]}",
         "f:2: target 'host:0x50000' is not HOST:PORT: a port is a number from 1 to 65535"},
        {"port", "{\"format\":1,\"target\":\"h:65536\",\"labels\":[]}", "f:1: target 'h:65536'"},
        {"not an object", "[]", "f:1: the file is a list, not an object"},
        {"endless nesting", "{\"labels\":" + std::string(100, '['), "f:1: nested too deep"},
    });
}

TEST(Label_File, refusesLabelsWithFileLineAndLabel) {
    expectRefused({
        {"no name", withLabel("\"type\":\"3\""), "f:3: the key \"name\" is missing"},
        {"empty name", withLabel("\"name\":\"\",\"type\":\"3\",\"at\":0"), "f:3: label '': the name is empty"},
        {"dot in name", withLabel("\"name\":\"A.B\",\"type\":\"3\",\"at\":0"), "f:3: label 'A.B': a name cannot hold"},
        {"no address", withLabel("\"name\":\"A\",\"type\":\"3\""), "f:3: label 'A': the key \"at\" is missing"},
        {"code 0", withLabel("\"name\":\"A\",\"type\":\"0\",\"at\":0"),
         "f:3: label 'A': type code (a structure goes by its name) '0' is not a whole number from 1 to 11"},
        {"code 12", withLabel("\"name\":\"A\",\"type\":\"12\",\"at\":0"),
         "f:3: label 'A': type code (a structure goes by its name) '12' is not"},
        {"type a number", withLabel("\"name\":\"A\",\"type\":3,\"at\":0"),
         "f:3: label 'A': \"type\" is a whole number, not a text"},
        {"bounds", withLabel("\"name\":\"A\",\n\"type\":\"3[4..3]\",\"at\":0"),
         "f:4: label 'A': index bounds '4..3' are upside down"},
        {"one bound", withLabel("\"name\":\"A\",\"type\":\"3[4]\",\"at\":0"),
         "f:3: label 'A': index bounds '4' are not"},
        {"bound too large", withLabel("\"name\":\"A\",\"type\":\"3[0..2147483647]\",\"at\":0"),
         "index bound '2147483647' is not a whole number from"},
        {"no close", withLabel("\"name\":\"A\",\"type\":\"3[0..3\",\"at\":0"), "']' is missing"},
        {"radix", withLabel("\"name\":\"A\",\"type\":\"3[0..3]/37\",\"at\":0"),
         "radix '37' is not a whole number from 2 to 36"},
        {"radix alone", withLabel("\"name\":\"A\",\"type\":\"3/16\",\"at\":0"), "a radix needs index bounds"},
        {"view", withLabel("\"name\":\"A\",\"type\":\"3\",\"at\":0,\"view\":\"u24\""), "unknown view 'u24'"},
        {"view too wide", withLabel("\"name\":\"A\",\"type\":\"3\",\"at\":0,\"view\":\"f32\""),
         "view f32 needs 4 bytes, an element has 2"},
        {"negative address", withLabel("\"name\":\"A\",\"type\":\"3\",\"at\":-1"), "\"at\" is not a whole number"},
        {"fraction", withLabel("\"name\":\"A\",\"type\":\"3\",\"at\":1.5"), "\"at\" is not a whole number"},
        {"33-bit address", withLabel("\"name\":\"A\",\"type\":\"3\",\"at\":4294967296"),
         "\"at\" is not a whole number"},
        {"65-bit address", withLabel("\"name\":\"A\",\"type\":\"3\",\"at\":36893488147419103232"), "\"at\" is not"},
        {"end past the space", withLabel("\"name\":\"A\",\"type\":\"5\",\"at\":4294967293"), "end past the 32-bit"},
        {"count beyond 64 bits",
         withLabel("\"name\":\"A\",\"type\":\"5[0..2000000000,0..2000000000,0..2000000000]\",\"at\":0"), "end past"},
        {"name twice", withLabel("\"name\":\"A\",\"type\":\"3\",\"at\":0},\n{\"name\":\"A\",\"type\":\"3\",\"at\":0"),
         "f:4: label 'A': the name is used twice"},
        {"unknown structure", withLabel("\"name\":\"A\",\"type\":\"Nope\",\"at\":0"),
         "label 'A': neither a type nor a structure is called 'Nope'"},
        {"unknown type", withLabel("\"name\":\"A\",\"type\":\"DIN\",\"at\":0"), "did you mean 'DINT'?"},
        {"address in hex", withLabel("\"name\":\"A\",\"type\":\"3\",\"at\":\"0x1G\""), "\"at\" is not a whole number"},
        {"the tools' own name", withLabel("\"name\":\"@memory\",\"type\":\"3\",\"at\":0"), "stands for bare memory"},
    });
}

TEST(Label_File, refusesStructuresAndWhatTheyMultiply) {
    expectRefused({
        {"structure called as a type",
         "{\"format\":1,\"structs\":{\n\"Int\":{\"size\":1,\"members\":[]}},\"labels\":[]}",
         "f:2: structure 'Int': a structure cannot have the name of a type"},
        {"structure size", withStruct("\"size\":0,\"members\":[]"),
         "f:2: structure 'S': \"size\" is not a whole number"},
        {"member outside", withStruct("\"size\":3,\"members\":[{\"name\":\"M\",\"type\":\"3\",\"at\":2}]"),
         "f:2: member 'S.M': 1 x 2 bytes at 2 end past the structure's size 3"},
        {"contains itself", withStruct("\"size\":3,\"members\":[{\"name\":\"M\",\"type\":\"S\",\"at\":0}]"),
         "f:2: structure 'S': it contains itself"},
        {"a chain of structures", chain(40000), "structures nest too deep"},
        {"a bomb of nested structures", doubling(30),
         "f:2: label 'X': with its structures spelled out, the file has more than a million members"},
        {"view of a structure",
         withStruct("\"size\":3,\"members\":[{\"name\":\"M\",\"type\":\"S\",\"at\":0,\"view\":\"u8\"}]"),
         "member 'S.M': a structure has no view"},
    });
}

// A list of digits takes a hundred times its size in memory.
TEST(Label_File, endsAtMillionsOfValues) {
    std::string list, cells = "kind,name\n";
    for (int i = 0; i < 4000001; ++i) {
        list += "0,";
        if (i < 2000001) cells += ',';
    }
    EXPECT_EQ(errorOf("{\"format\":1,\n\"labels\":[" + list + "0]}"), "f:2: more than four million values");
    try {
        parseLabels(cells, "f.csv");
        ADD_FAILURE() << "accepted";
    } catch (const File_Error& error) {
        EXPECT_NE(std::string(error.what()).find("more than two million cells"), std::string::npos) << error.what();
    }
}

TEST(Label_File, readsCommentsKeysAndLines) {
    const Label_File file = parseLabelFile(
        "\xEF\xBB\xBF// note\r\n{ \"format\": 1, /* two\r\nlines */ \"target\": \"plc:2000\",\r\n"
        "\"structs\": {\"S\": {\"size\": 4, \"members\": [{\"name\": \"M\", \"type\": \"7\", \"at\": 0, \"view\": "
        "\"f32\"}]}},\r\n"
        "\"labels\": [\r\n{\"name\": \"A\", \"type\": \"S[1..2]\", \"at\": 4294967288, \"unit\": \"rpm\"}]}",
        "f");
    EXPECT_EQ(file.target, "plc:2000");
    ASSERT_EQ(file.labels.size(), 1u);
    EXPECT_EQ(file.labels[0].line, 6);
    EXPECT_EQ(file.labels[0].at, 4294967288u);
    EXPECT_EQ(meaningOf(file.labels[0]).unit, "rpm");
    EXPECT_EQ(elementBytes(file, file.labels[0].type), 4u);
    EXPECT_EQ(file.structs.at("S").members[0].view, View::F32);
}

TEST(Label_File, aPathThatCannotBeReadIsNamed) {
    const std::pair<const char*, const char*> rows[] = {
        {"no/such/file.json", "no/such/file.json: cannot be read: No such file or directory"},
        {"/dev/zero", "/dev/zero: has more than 64 MiB"},
        {EXAMPLES_DIR, EXAMPLES_DIR ": is a folder, not a file"},
    };
    for (const auto& row : rows) {
        try {
            readLabelFile(row.first);
            ADD_FAILURE() << row.first << " was read";
        } catch (const File_Error& error) {
            EXPECT_STREQ(error.what(), row.second);
        }
    }
}

struct Expected_Leaf {
    const char* text;
    std::uint32_t address;
    int code;
    View view;
};

TEST(Label_File, walksLeavesInFileOrderRowMajor) {
    const Label_File file = parseLabelFile(
        R"({"format":1,"structs":{
            "In":{"size":3,"members":[{"name":"B","type":"1[-1..0]","at":1,"view":"bool"}]},
            "Out":{"size":8,"members":[{"name":"Id","type":"3","at":0},{"name":"In","type":"In[1..1]","at":4}]}},
          "labels":[{"name":"G","type":"4[0..1,2..3]","at":"0x12C"},{"name":"O","type":"Out[9..10]/16","at":500},
                    {"name":"T","type":"10","at":900},{"name":"S","type":"STRING(9)[1..2]","at":1200}]})",
        "f");
    const Expected_Leaf expected[] = {
        {"G[0,2]", 300, 4, View::U16},
        {"G[0,3]", 302, 4, View::U16},
        {"G[1,2]", 304, 4, View::U16},
        {"G[1,3]", 306, 4, View::U16},
        {"O[9].Id", 500, 3, View::U16},
        {"O[9].In[1].B[-1]", 505, 1, View::Bool},
        {"O[9].In[1].B[0]", 506, 1, View::Bool},
        {"O[a].Id", 508, 3, View::U16},
        {"O[a].In[1].B[-1]", 513, 1, View::Bool},
        {"O[a].In[1].B[0]", 514, 1, View::Bool},
        {"T", 900, 10, View::Text},
        {"S[1]", 1200, 1, View::Text},
        {"S[2]", 1209, 1, View::Text},
    };
    std::size_t i = 0;
    forEachLeaf(file, [&](const Leaf& leaf) {
        if (i >= std::size(expected)) return false;
        EXPECT_EQ(leaf.text, expected[i].text);
        EXPECT_EQ(leaf.address, expected[i].address) << leaf.text;
        EXPECT_EQ(leaf.code, expected[i].code) << leaf.text;
        EXPECT_EQ(leaf.view, expected[i].view) << leaf.text;
        return ++i < std::size(expected);
    });
    EXPECT_EQ(i, std::size(expected));
}

TEST(Label_File, walkStopsWhenTold) {
    int seen = 0;
    const Label_File file = parseLabelFile(withLabel("\"name\":\"A\",\"type\":\"1[0..2000000000]\",\"at\":0"), "f");
    forEachLeaf(file, [&](const Leaf&) { return ++seen < 3; });
    EXPECT_EQ(seen, 3);
}

TEST(Label_File, walkPassesByLargeArraysOfStructuresWithoutElements) {
    const Label_File file = parseLabelFile(
        R"({"format": 1, "structs": {"E": {"size": 1, "members": []}, "S": {"size": 1, "members": [
            {"name": "Deep", "type": "E", "at": 0}]}},
            "labels": [{"name": "A", "type": "S[0..2000000000]", "at": 0}, {"name": "B", "type": "3", "at": 0}]})",
        "f");
    int seen = 0;
    forEachLeaf(file, [&](const Leaf&) { return ++seen > 0; });
    EXPECT_EQ(seen, 1);
}

// Each would take minutes if the large arrays were walked.
TEST(Label_File, findsAnElementBehindLargeArraysOfStructures) {
    const Label_File file = parseLabelFile(
        R"({"format": 1, "structs": {"S": {"size": 2, "members": [{"name": "Id", "type": "3", "at": 0}]}},
            "labels": [{"name": "A", "type": "S[0..2000000000]", "at": 0},
                       {"name": "AB", "type": "S[1..3]", "at": 0}]})",
        "f");
    const std::pair<const char*, std::uint32_t> rows[] = {
        {"AB[2].Id", 2}, {"A[2000000000].Id", 4000000000}, {"A[0].Id", 0}};
    for (const auto& row : rows) {
        const std::optional<Leaf> found = findLeaf(file, row.first);
        ASSERT_TRUE(found) << row.first;
        EXPECT_EQ(found->text, row.first);
        EXPECT_EQ(found->address, row.second);
    }
    for (const char* text : {"B[2].Id", "AB[4].Id", "A[x].Id", "A[1,2].Id", "A[01].Id", "A[].Id", "A[5", "A[5]"})
        EXPECT_FALSE(findLeaf(file, text)) << text;
}

// Labels of the example must not lie on each other: a write of one would show in another.
TEST(Label_File, examplePlantHasNoOverlaps) {
    const Label_File file = readLabelFile(EXAMPLES_DIR "/plant.json");
    std::map<std::uint32_t, std::string> owner;
    std::size_t leaves = 0;
    forEachLeaf(file, [&](const Leaf& leaf) {
        ++leaves;
        for (std::uint32_t i = 0; i < leaf.bytes; ++i) {
            const auto placed = owner.emplace(leaf.address + i, leaf.text);
            EXPECT_TRUE(placed.second) << leaf.text << " lies on " << placed.first->second;
        }
        return true;
    });
    EXPECT_GT(leaves, 100u);
}

}  // namespace
}  // namespace vornex
