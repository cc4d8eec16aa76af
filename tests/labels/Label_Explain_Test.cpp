// What the tool says about a label text against what the driver says: texts from the example file, bent at random.
#include "labels/Label_Explain.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "host/Driver_Labels.h"
#include "host/Driver_Library.h"

namespace vornex {
namespace {

using Resolve = int (*)(QString, ControlInformationM&);

class Bender {
public:
    explicit Bender(unsigned seed) : random(seed) {}

    std::string bend(std::string text) {
        for (int change = below(4); change > 0; --change) {
            const std::size_t at = static_cast<std::size_t>(below(static_cast<int>(text.size()) + 1));
            const int kind = below(3);
            if (kind == 0)
                text.insert(at, 1, letter());
            else if (at == text.size())
                continue;
            else if (kind == 1)
                text.erase(at, 1);
            else
                text[at] = letter();
        }
        return text;
    }

private:
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random); }
    char letter() {
        static const char letters[] = "....[[]],,,0123456789afgz- AeS";
        return letters[below(sizeof letters - 1)];
    }
    std::mt19937 random;
};

class Label_Explain : public ::testing::Test {
protected:
    Label_Explain()
        : library(LIBRARY),
          file(readLabelFile(EXAMPLES_DIR "/plant.json")),
          resolve(reinterpret_cast<Resolve>(library.symbol("_Z17get_label_address7QStringR19ControlInformationM"))) {
        QList<Label_Type_Info> labels = driverLabels(file);
        library.PassVarName_2(&labels);
    }

    int driverCode(const std::string& text) const {
        ControlInformationM info;
        return resolve(QString::fromUtf8(text.c_str()), info);
    }

    Driver_Library library;
    const Label_File file;
    const Resolve resolve;
};

TEST_F(Label_Explain, agreesWithTheDriverOnBentTexts) {
    ASSERT_NE(resolve, nullptr);
    std::vector<std::string> texts;
    forEachLeaf(file, [&texts](const Leaf& leaf) {
        texts.push_back(leaf.text);
        return true;
    });
    Bender bender(1);
    int refused = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string text = bender.bend(texts[static_cast<std::size_t>(i) % texts.size()]);
        const std::optional<Label_Problem> problem = explainLabel(file, text);
        ASSERT_EQ(problem ? problem->code : LabelGood, driverCode(text)) << "'" << text << "'";
        if (!problem) continue;
        ++refused;
        EXPECT_FALSE(problem->reason.empty());
        EXPECT_LE(problem->at, text.size()) << text;
        EXPECT_EQ(ignoredTail(file, text), "") << text;
    }
    EXPECT_GT(refused, 8000);
}

TEST_F(Label_Explain, namesWhatIsNotLookedAt) {
    const struct {
        const char* text;
        const char* tail;
    } rows[] = {
        {"Speed", ""}, {"Speed.x", ".x"}, {"Motors[1].Id.a.b", ".a.b"}, {"Line[2].Inlet.Level", ""}, {"Speed.", "."}};
    for (const auto& row : rows) {
        EXPECT_EQ(driverCode(row.text), 0) << row.text;
        EXPECT_EQ(ignoredTail(file, row.text), row.tail) << row.text;
    }
}

TEST_F(Label_Explain, suggestsTheNearestName) {
    const struct {
        const char* text;
        const char* words;
    } rows[] = {
        {"sped", "did you mean 'Speed'?"},
        {"HEARTBEAT", "did you mean 'Heartbeat'?"},
        {"Motors[1].Tmp", "did you mean 'Temp'?"},
        {"Line[1].Feed[1].Axis[2].Positon", "did you mean 'Position'?"},
        {"Motors[1].Quux", "it has Id, Speed, Temp, Running, Hours, Axis"},
        {"Zzzzzzzz", "no label has the name 'Zzzzzzzz'"},
    };
    for (const auto& row : rows) {
        const std::optional<Label_Problem> problem = explainLabel(file, row.text);
        ASSERT_TRUE(problem) << row.text;
        EXPECT_NE(problem->reason.find(row.words), std::string::npos) << problem->reason;
    }
}

TEST(Mark_Line, countsCharactersNotBytes) {
    EXPECT_EQ(markLine("Motor[9]", 6, 1), "      ^");
    EXPECT_EQ(markLine("T\xC3\xBCr[9]", 5, 1), "    ^");
    EXPECT_EQ(markLine("Motor", 5, 1), "     ^");
    EXPECT_EQ(markLine("", 0, 1), "^");
}

}  // namespace
}  // namespace vornex
