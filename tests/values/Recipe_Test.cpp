// Recipes in their three forms, and what is refused in each.
#include "values/Recipe.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace vornex {
namespace {

std::string shown(const std::vector<Assignment>& recipe) {
    std::string text;
    for (const Assignment& line : recipe)
        text += line.place + line.label + "=" + line.value + (line.view ? " as " + viewName(*line.view) : "") + "\n";
    return text;
}

TEST(Recipe, isReadInEachForm) {
    const struct {
        const char* name;
        const char* text;
        const char* recipe;
    } rows[] = {
        {"lines", "# start\n\nSpeed = 1500\r\nText=\"a=b # c\"\n", "r:3: Speed=1500\nr:4: Text=\"a=b # c\"\n"},
        {"lines that begin like a table", "label=5\nvalue=7\n", "r:1: label=5\nr:2: value=7\n"},
        {"objects", "{\"label\":\"A\",\"value\":1,\"time\":\"x\"}\n\n{\"value\":true,\"label\":\"B\"}\n",
         "r:1: A=1\nr:3: B=true\n"},
        {"objects with CRLF", "\r\n{\"label\":\"A\",\"value\":1}\r\n{\"label\":\"B\",\"value\":2}\r\n",
         "r:2: A=1\nr:3: B=2\n"},
        {"an object over several lines", "{\n \"label\": \"A\",\n \"value\": [1, 2.50, \"0x1F\"]\n}\n",
         "r:3: A=[1, 2.50, 0x1F]\n"},
        {"a list of objects", "[{\"label\":\"A\",\"value\":false},\n{\"label\":\"B\",\"value\":-3}]",
         "r:1: A=false\nr:2: B=-3\n"},
        {"numbers to the last digit",
         "{\"label\":\"A\",\"value\":18446744073709551615}\n{\"label\":\"B\",\"value\":0.1000}\n"
         "{\"label\":\"C\",\"value\":\"18446744073709551615\"}",
         "r:1: A=18446744073709551615\nr:2: B=0.1000\nr:3: C=18446744073709551615\n"},
        {"a text of another view", "{\"label\":\"T\",\"value\":\"[1]\",\"view\":\"text\"}", "r:1: T=\"[1]\" as text\n"},
        {"a table", "\xEF\xBB\xBFtime;label;value;view\nx;A;1,5;f32\nx;B;\"a;b\";text\n",
         "r:2: A=1,5 as f32\nr:3: B=\"a;b\" as text\n"},
        {"a table without views", "value,label\n5,A\n\"[1, 2]\",B\n", "r:2: A=5\nr:3: B=[1, 2]\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(shown(parseRecipe(row.text, "r")), row.recipe) << row.name;
}

TEST(Recipe, isRefusedWithItsLine) {
    const struct {
        const char* text;
        const char* reason;
    } rows[] = {
        {"", "r: holds no values"},
        {"# nothing\n", "r: holds no values"},
        {"label,value\n", "r: holds no values"},
        {"A=1\nB 2\n", "r:2: 'B 2' is not LABEL=VALUE"},
        {"A=1\n=2\n", "r:2: '=2' is not LABEL=VALUE"},
        {"A=1\nB=2\nA=3\n", "r:3: 'A' stands already in r:1"},
        {"{\"label\":\"A\",\"value\":1}\n{\"label\":\"A\",\"value\":1}\n", "r:2: 'A' stands already in r:1"},
        {"{\"label\":\"A\",\"value\":1}\n{\"label\":\"B\",\"value\":null}\n", "r:2: no value: it was not known"},
        {"{\"label\":\"A\",\"value\":1}\n{\"label\":\"B\"}\n", "r:2: an object without label and value"},
        {"{\"label\":7,\"value\":1}\n", "r:1: label is no text"},
        {"{\"label\":\"A\",\"value\":{}}\n", "r:1: \"value\" is an object"},
        {"{\"label\":\"A\",\"value\":1,\"view\":\"f23\"}\n", "r:1: unknown view 'f23'"},
        {"{\"label\":\"A\",\"value\":1}\n{\"label\":\"B\",\"val", "r:2: "},
        {"[1]", "r:1: not an object with label and value"},
        {"label,value,state\nA,1,fresh\nB,,unknown\n", "r:3: no value: it was not known"},
        {"label,value\nA,1\nB\n", "r:3: a row without label and value"},
        {"label,value\nA,\"1\n", "r:2:3: "},
    };
    for (const auto& row : rows) {
        try {
            ADD_FAILURE() << row.text << "was taken as\n" << shown(parseRecipe(row.text, "r"));
        } catch (const File_Error& error) {
            EXPECT_EQ(std::string(error.what()).rfind(row.reason, 0), 0u) << row.text << "\n" << error.what();
        }
    }
}

}  // namespace
}  // namespace vornex
