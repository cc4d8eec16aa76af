// The command line of vornex-label: what it tells, and what it shows of the words that it is given.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "Tool_Run.h"

namespace vornex::test {
namespace {

TEST(Command_Line, tellsWhichWordIsWrong) {
    expectAll({{"raed Speed", 1, "vornex-label: 'raed' is no verb; did you mean 'read'?; see --help\n"},
               {"raed --help", 1, "'raed' is no verb"},
               {"help raed", 1, "'raed' is no verb; did you mean 'read'?"},
               {"labels lnit", 1, "'lnit' is no verb; did you mean 'lint'?"},
               {"labels", 1, "'labels' needs a verb"},
               {"-q", 1, "a verb is missing"},
               {"read", 1, "LABEL is required"},
               {"--targt x read Speed", 1, "'--targt' is no option of vornex-label; did you mean '--target'?"},
               {"read Speed --cuont 3", 1, "'--cuont' is no option of vornex-label read; did you mean '--count'?"},
               {"ls -T 5", 1, "'-T' is no option of vornex-label ls"},
               {"labels names a b", 1, "'b' was not expected"},
               {"read Speed -c 1.5", 1, "--count: '1.5' is not a whole number from 1 to 1000000; see --help\n"},
               {"bench x -d 0", 1, "--duration: '0' is not a number from 0.01 to 3600;"},
               {"ls -o xml", 1, "--output: xml not in {text,json,csv}"},
               {"man --all no/such", 1, "no/such/vornex-label.1: its folder"},
               {"--help >/dev/full", 8, "standard output: No space left on device"}});
}

// A terminal obeys them: what comes from a file or from the command line could make it show something else.
TEST(Command_Line, controlCharactersAreShownAndNeverSent) {
    std::ofstream(WORK_DIR "/name.json")
        << "{\"format\":1,\n\"labels\":[{\"name\":\"A\\u001b[2J\",\"type\":3,\"at\":0}]}";
    std::ofstream(WORK_DIR "/unit.csv") << "kind,name,type,at,unit\nlabel,A,3,0,\"\xC2\x9B\"\n";
    std::ofstream(WORK_DIR "/wide.json", std::ios::binary) << std::string("{\0\"\0", 4);
    std::ofstream(WORK_DIR "/marked.csv", std::ios::binary) << std::string("\xFF\xFEk\0", 4);
    const std::string many(300, '9');
    expectAll({{"ls -l name.json", 2, "name.json:2: \"name\" holds a control character\n"},
               {"ls -l unit.csv", 2, "unit.csv:2: label 'A': \"unit\" holds a control character\n"},
               {"ls -l wide.json", 2, "wide.json: is UTF-16 text; save it as UTF-8\n"},
               {"ls -l marked.csv", 2, "marked.csv: is UTF-16 text; save it as UTF-8\n"}});
    const std::pair<std::string, const char*> rows[] = {
        {"check \"$(printf 'Sp\\033[2J')\" -l " PLANT,
         "no label has the name 'Sp\\x1B[2J'\n    Sp\\x1B[2J\n    ^^^^^^^^^\n"},
        {"check \"$(printf 'Sp\\033[2J')\" -o csv -l " PLANT, "\nSp\\x1B[2J,"},
        {"check \"$(printf 'S\\302\\233p')\" -o json -l " PLANT, "\"label\":\"S\\u009Bp\","},
        {"ls \"$(printf 'Sp\\033[2J')\" -l " PLANT, "no label 'Sp\\x1B[2J' in "},
        {"\"$(printf 're\\033ad')\"", "'re\\x1Bad' is no verb; did you mean 'read'?"},
        {"decode \"$(printf '0\\033')\"", "\\x1B"},
        {"write Speed=" + many + " --dry-run -l " PLANT,
         "'99999999999999999999999999999999999999999999999999999999999…' is not"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = run(row.first);
        EXPECT_TRUE(outcome.holds(row.second)) << row.first << "\n" << outcome.text;
        EXPECT_EQ(outcome.text.find('\033'), std::string::npos) << row.first;
        EXPECT_EQ(outcome.text.find("\xC2\x9B"), std::string::npos) << row.first;
    }
}

TEST(Command_Line, helpTellsWhatTheVerbTakes) {
    const struct {
        const char* verb;
        const char* told;
        const char* untold;
    } rows[] = {
        {"read", "--trace FILE", "--elements"},
        {"ls", "--labels FILE", "--target"},
        {"info", "--library FILE", "--labels"},
        {"check", "--library FILE", "--timeout"},
        {"replay", "--library FILE", "--timeout"},
        {"labels lint", "--labels FILE", "--library"},
        {"bench", "--duration TIME", "--rounds"},
        {"", "labels convert", "completion"},
        {"write", "--target", "--count"},
        {"watch", "--target", "--count"},
        {"dump", "--target", "--elements"},
        {"stats", "--target", "--elements"},
        {"decode", "--labels FILE", "Link options"},
        {"labels convert", "--labels FILE", "Link options"},
        {"labels names", "--labels FILE", "--trace"},
        {"man", "--all DIR", "Link options"},
        {"help", "VERB", "Link options"},
        {"completion", "--help", "Link options"},
    };
    for (const auto& row : rows) {
        const Outcome help = run(row.verb + std::string(" --help"));
        EXPECT_EQ(help.code, 0) << row.verb;
        EXPECT_NE(help.text.find(row.told), std::string::npos) << row.verb << help.text;
        EXPECT_EQ(help.text.find(row.untold), std::string::npos) << row.verb << help.text;
        EXPECT_EQ(run(std::string("help ") + row.verb).text, help.text) << row.verb;
        std::istringstream lines(help.text);
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(line.size(), 80u) << line;
    }
}

TEST(Command_Line, manualPagesHaveNothingToWarnOf) {
    const std::string pages = WORK_DIR "/pages";
    std::filesystem::remove_all(pages);
    std::filesystem::create_directories(pages);
    EXPECT_EQ(run("man --all pages").code, 0);
    EXPECT_TRUE(run("man labels lint | cmp - pages/vornex-label-labels-lint.1 && echo same").holds("same"));
    std::size_t count = 0;
    for (const auto& page : std::filesystem::directory_iterator(pages)) {
        const std::string man = "man --warnings -E UTF-8 -l -Tutf8 -Z '" + page.path().string() + "' 2>&1 >/dev/null";
        EXPECT_NE(std::system(("test -n \"$(" + man + ")\"").c_str()), 0) << page.path();
        ++count;
    }
    EXPECT_EQ(count, 20u);
}

}  // namespace
}  // namespace vornex::test
