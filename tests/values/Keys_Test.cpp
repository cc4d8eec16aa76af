// The keys of JSON and CSV are public: the table in the code and the one in the documents say the same.
#include <cctype>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace {

std::map<std::string, std::string> pairsIn(const char* file, const std::regex& pair) {
    std::ifstream stream(file);
    std::stringstream text;
    text << stream.rdbuf();
    const std::string all = std::regex_replace(text.str(), std::regex("\\{\\s+"), "{");
    std::map<std::string, std::string> found;
    for (std::sregex_iterator at(all.begin(), all.end(), pair), end; at != end; ++at) {
        EXPECT_TRUE(found.emplace((*at)[1], (*at)[2]).second) << "twice in " << file << ": " << (*at)[1];
    }
    return found;
}

TEST(Keys, eachIsDocumentedWithItsMeaningAndInCamelCase) {
    const auto keys = pairsIn(KEYS_HEADER, std::regex("Key \\w+\\{\"(\\w+)\",\\s*\"([^\"]+)\"\\}"));
    const auto documented = pairsIn(TOOLS_PAGE, std::regex("\\n\\| `(\\w+)` \\| ([^|]+) \\|"));
    EXPECT_GT(keys.size(), 80u);
    for (const auto& [name, meaning] : keys) {
        const auto row = documented.find(name);
        EXPECT_EQ(row == documented.end() ? "no row" : row->second, meaning) << name;
        EXPECT_TRUE(std::islower(name[0]) && name.find('_') == std::string::npos) << name;
    }
    EXPECT_EQ(documented.size(), keys.size());
}

}  // namespace
