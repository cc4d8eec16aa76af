// The Tab key in a real bash, with the completion that the programs write themselves.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "Bash_Terminal.h"
#include "labels/Label_Continuation.h"

namespace vornex::test {

namespace fs = std::filesystem;

class Completion : public testing::Test {
protected:
    Completion() : folder(fs::path(WORK_DIR) / "completion"), bash(prepare(folder), PROGRAMS) {
        bash.run("source <(vornex-label completion); source <(vornex-sim --completion)");
    }

    static std::string prepare(const fs::path& folder) {
        fs::remove_all(folder);
        fs::create_directories(folder / "folder");
        fs::copy_file(PLANT, folder / "plant.json");
        fs::copy_file(PLANT, folder / "my labels.json");
        return folder;
    }

    const fs::path folder;
    Bash_Terminal bash;
};

TEST_F(Completion, completesTheLine) {
    const struct {
        const char* typed;
        const char* line;
    } rows[] = {
        {"vornex-label rea", "vornex-label read "},
        {"vornex-label -l plant.json rea", "vornex-label -l plant.json read "},
        {"vornex-label labels l", "vornex-label labels lint "},
        {"vornex-label help dec", "vornex-label help decode "},
        {"vornex-label -l plant.json read --cou", "vornex-label -l plant.json read --count "},
        {"vornex-label watch -l plant.json --unt", "vornex-label watch -l plant.json --until "},
        {"vornex-label --output=j", "vornex-label --output=json "},
        {"vornex-label ls -o j", "vornex-label ls -o json "},
        {"vornex-label read --as byt", "vornex-label read --as bytes "},
        {"vornex-label read --as UDI", "vornex-label read --as UDINT "},
        // labels, as far as the next dot or bracket
        {"vornex-label -l plant.json read Hea", "vornex-label -l plant.json read Heartbeat "},
        {"vornex-label read -t 127.0.0.1:2000 -l plant.json Hea",
         "vornex-label read -t 127.0.0.1:2000 -l plant.json Heartbeat "},
        {"vornex-label --labels=plant.json read Hea", "vornex-label --labels=plant.json read Heartbeat "},
        {"vornex-label -l ~/my\\ labels.json -q read Speed Hea",
         "vornex-label -l ~/my\\ labels.json -q read Speed Heartbeat "},
        {"vornex-label -l plant.json read Mot", "vornex-label -l plant.json read Motors\\["},
        {"vornex-label -l plant.json read Motors\\[2].Te", "vornex-label -l plant.json read Motors\\[2\\].Temp "},
        {"vornex-label -l plant.json read Motors[2].Te", "vornex-label -l plant.json read Motors\\[2\\].Temp "},
        {"vornex-label -l plant.json read 'Motors[2].Te", "vornex-label -l plant.json read 'Motors[2].Temp' "},
        {"vornex-label -l plant.json read \"Motors[%%].Te", "vornex-label -l plant.json read \"Motors[%%].Temp\" "},
        {"vornex-label -l plant.json read 'Grid[1,", "vornex-label -l plant.json read 'Grid[1,"},
        {"vornex-label -l plant.json read 'Buf[1f", "vornex-label -l plant.json read 'Buf[1f]' "},
        {"vornex-label -l plant.json write Hea", "vornex-label -l plant.json write Heartbeat"},
        {"vornex-label -l plant.json read Nothing", "vornex-label -l plant.json read Nothing"},
        {"vornex-label -l missing.json read Hea", "vornex-label -l missing.json read Hea"},
        // files and folders
        {"vornex-label -l pla", "vornex-label -l plant.json "},
        {"vornex-label -l my", "vornex-label -l my\\ labels.json "},
        {"vornex-label -l 'my", "vornex-label -l 'my labels.json' "},
        {"vornex-label -l fol", "vornex-label -l folder/"},
        {"vornex-label labels lint fol", "vornex-label labels lint folder/"},
        {"vornex-label man --all f", "vornex-label man --all folder/"},
        {"vornex-label man --all pla", "vornex-label man --all pla"},
        {"vornex-sim --fau", "vornex-sim --fault "},
        {"vornex-sim -o j", "vornex-sim -o json "},
        {"vornex-sim -l pla", "vornex-sim -l plant.json "},
        {"vornex-sim --log fol", "vornex-sim --log folder/"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(bash.lineAfter(row.typed + std::string("\t")), row.line) << bash.shown;
}

TEST_F(Completion, listsWhatIsPossible) {
    const struct {
        const char* typed;
        std::vector<std::string> listed;
        const char* hidden;
    } rows[] = {
        {"vornex-label -l plant.json ", {"read", "labels", "help"}, "completion"},
        {"vornex-label labels ", {"convert", "lint", "names"}, "read"},
        {"vornex-label -l plant.json read ", {"Speed", "Motors[", "Product"}, "folder"},
        {"vornex-label -l plant.json read Motors\\[", {"Motors[1].", "Motors[4]."}, "Speed"},
        {"vornex-label ls --", {"--labels", "--elements", "--output"}, "--target"},
        {"vornex-label read --", {"--labels", "--count", "--target", "--trace"}, "--elements"},
        {"vornex-sim --", {"--labels", "--fault", "--max-clients"}, "--target"},
    };
    for (const auto& row : rows) {
        bash.lineAfter(row.typed + std::string("\t\t"));
        const std::string list = bash.shown.substr(std::min(bash.shown.find('\n'), bash.shown.size()));
        const std::string words = list.substr(0, list.find("$ "));  // what follows is the line again
        for (const std::string& word : row.listed)
            EXPECT_NE(words.find(word), std::string::npos) << row.typed << word << "\n" << bash.shown;
        EXPECT_EQ(words.find(row.hidden), std::string::npos) << row.typed << row.hidden << "\n" << bash.shown;
    }
}

// Hundreds of thousands of elements: bash gets a list that it can show, and what it inserts is never too much.
TEST(Label_Continuation, isCutWhenTheyAreMany) {
    Label_File file;
    const auto add = [&file](const std::string& name, const std::string& type) {
        Label label;
        label.name = name;
        label.type = parseType(type);
        file.labels.push_back(label);
    };
    for (int number = 100000; number < 400000; ++number)
        add("Station" + std::to_string(number), "3");
    add("Large", "1[0..2000000000]");
    add("Grid", "4[1..3,-2..1]/16");
    const Label_Continuation all = continueLabel(file, "");
    EXPECT_LE(all.texts.size(), 1000u);
    EXPECT_FALSE(all.isWhole);
    EXPECT_NE(std::find(all.texts.begin(), all.texts.end(), "Station399"), all.texts.end());
    EXPECT_NE(std::find(all.texts.begin(), all.texts.end(), "Large["), all.texts.end());
    const Label_Continuation few = continueLabel(file, "Station39999");
    EXPECT_EQ(few.texts.size(), 10u);
    EXPECT_TRUE(few.isWhole);
    EXPECT_TRUE(continueLabel(file, "Large[1").texts.empty());
    EXPECT_EQ(continueLabel(file, "Grid[3,").texts,
              (std::vector<std::string>{"Grid[3,-2]", "Grid[3,-1]", "Grid[3,0]", "Grid[3,1]"}));
}

}  // namespace vornex::test
