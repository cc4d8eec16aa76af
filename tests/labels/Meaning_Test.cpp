// What a label file says its values mean: what is read, what is refused with its line, what is passed over with a word.
#include <gtest/gtest.h>

#include "labels/Label_Csv.h"
#include "labels/Label_Tree.h"
#include "text/Text_Input.h"

namespace vornex {
namespace {

std::string withKeys(const std::string& keys) {
    return "{\"format\": 1,\n\"labels\": [\n{\"name\": \"A\", \"at\": 0, " + keys + "}]}";
}

TEST(Meaning, isReadFromEveryKey) {
    const Label_File file = parseLabelFile(
        withKeys(R"("type": "WORD", "unit": "bar", "description": "behind the valve", "decimals": 1, "scale": 0.1,
        "offset": -5, "min": 0, "max": 18446744073709551615, "low": 1.5, "high": 1e3,
        "states": {"0": "off", "0xFF": "by hand"}, "bits": {"Door": 0, "Overload": 15})"),
        "f");
    const Meaning& meaning = meaningOf(file.labels.at(0));
    EXPECT_EQ(meaning.unit, "bar");
    EXPECT_EQ(meaning.description, "behind the valve");
    EXPECT_EQ(meaning.decimals, 1);
    EXPECT_EQ(meaning.scale, 0.1);
    EXPECT_EQ(meaning.offset, -5);
    EXPECT_EQ(meaning.min, 0);
    EXPECT_EQ(meaning.max, 18446744073709551615.0);
    EXPECT_EQ(meaning.low, 1.5);
    EXPECT_EQ(meaning.high, 1000);
    ASSERT_EQ(meaning.states.size(), 2u);
    EXPECT_EQ(findNumber(meaning.states, 255)->name, "by hand");
    ASSERT_EQ(meaning.bits.size(), 2u);
    EXPECT_EQ(findName(meaning.bits, "Overload")->number, 15);
    EXPECT_TRUE(file.warnings.empty());
}

TEST(Meaning, isRefusedWhereItMakesNone) {
    const struct {
        const char* keys;
        const char* error;
    } rows[] = {
        {R"j("type": "INT", "scale": 0)j", "f:3: label 'A': \"scale\" is 0"},
        {R"j("type": "INT", "scale": 1e-320)j", "\"scale\" is 0 or next to it"},
        {R"j("type": "INT", "scale": "0.1")j", "\"scale\" is a text, not a number"},
        {R"j("type": "INT", "offset": 1e999)j", "f:3: number overflow parsing '1e999'"},
        {R"j("type": "INT", "decimals": 18)j", "\"decimals\" is not a whole number from 0 to 17"},
        {R"j("type": "INT", "min": 2, "max": 1)j", "\"min\" is above \"max\""},
        {R"j("type": "INT", "low": 2, "high": 1)j", "\"low\" is above \"high\""},
        {R"j("type": "BOOL", "scale": 2)j", "only numbers have scale"},
        {R"j("type": "STRING(8)", "max": 2)j", "view text shows none"},
        {R"j("type": "REAL", "states": {"0": "off"})j", "only whole numbers and bool have states"},
        {R"j("type": "BOOL", "states": {"2": "off"})j", "the state 'off' is 2, which view bool does not hold"},
        {R"j("type": "SINT", "states": {"-129": "off"})j", "which view s8 does not hold"},
        {R"j("type": "INT", "states": {"off": 0})j", "\"off\" is a whole number, not a text"},
        {R"j("type": "INT", "states": {"off": "0"})j", "\"states\": 'off' is not a whole number"},
        {R"j("type": "INT", "states": {"0": "1"})j", "the state '1' is a number"},
        {R"j("type": "INT", "states": {"0": "a", "1": "a"})j", "two states have the name or the number of 'a'"},
        {R"j("type": "INT", "states": {"0": "a,b"})j", "the state 'a,b' has one of"},
        {R"j("type": "INT", "states": {"0": "raw(1)"})j", "begins with @ or raw("},
        {R"j("type": "WORD", "bits": {"Door": 16})j", "the bit 'Door' is 16, the element has 0 to 15"},
        {R"j("type": "WORD", "bits": {"Door": 1, "Gate": 1})j", "two bits have the name or the place of 'Gate'"},
        {R"j("type": "WORD", "bits": {"A.B": 1})j", "the bit 'A.B' is empty or has one of"},
        {R"j("type": "WORD", "bits": {"A": 1.5})j", "\"bits\": the place of 'A' is a number, not a whole number"},
        {R"j("type": "STRING(9)", "bits": {"A": 1})j", "has no bits"},
    };
    for (const auto& row : rows) {
        try {
            parseLabelFile(withKeys(row.keys), "f");
            ADD_FAILURE() << row.keys << " is accepted";
        } catch (const File_Error& error) {
            EXPECT_NE(std::string(error.what()).find(row.error), std::string::npos) << row.keys << ": " << error.what();
        }
    }
}

TEST(Unknown_Keys, arePassedOverWithAWord) {
    const struct {
        const char* text;
        const char* path;
        const char* warning;
    } rows[] = {
        {"{\"format\": 1,\n\"lables\": 3, \"labels\": []}", "f.json",
         "f.json:2: unknown key \"lables\"; did you mean 'labels'?"},
        {"{\"format\": 1, \"labels\": [{\"name\": \"A\", \"type\": \"3\",\n\"at\": 0, \"unti\": \"bar\"}]}", "f.json",
         "f.json:2: label 'A': unknown key \"unti\"; did you mean 'unit'?"},
        {"{\"format\": 1, \"structs\": {\"S\": {\"size\": 1, \"members\": [], \"pad\": 1}}, \"labels\": []}", "f.json",
         "f.json:1: structure 'S': unknown key \"pad\""},
        {"kind,name,typ,type,at\nlabel,A,x,3,0\n", "f.csv", "f.csv:1:11: unknown column 'typ'; did you mean 'type'?"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseLabels(row.text, row.path).warnings, std::vector<std::string>{row.warning}) << row.text;
}

TEST(Label_Keys, standOnThePageOfTheLabelFile) {
    const std::string page = wholeText(LABELS_PAGE);
    for (const Label_Key& key : labelKeys()) {
        const std::string row = "| `" + std::string(key.name) + "` | " + key.meaning + " |";
        EXPECT_NE(page.find(row), std::string::npos) << row;
    }
}

}  // namespace
}  // namespace vornex
