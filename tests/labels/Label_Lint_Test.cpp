#include "labels/Label_Lint.h"

#include <gtest/gtest.h>

#include "labels/Label_Csv.h"

namespace vornex {
namespace {

// "LINE rule subject" per finding, for a table whose first line is the heading.
std::vector<std::string> findingsOf(const std::string& rows, std::uint64_t memoryEnd = 0) {
    std::vector<std::string> found;
    for (const Lint_Finding& finding :
         lintLabels(parseLabelCsv("kind,name,type,at,size,view\n" + rows, "f"), memoryEnd))
        found.push_back(std::to_string(finding.line) + " " + finding.rule + " " + finding.subject);
    return found;
}

using Findings = std::vector<std::string>;

TEST(Label_Lint, findsEachMistakeOnce) {
    EXPECT_EQ(findingsOf("label,A,3,0,,\nlabel,B,3,2,,\nlabel,C,\"1[0..3]\",4,,\n"), Findings());
    // C begins inside A, which reaches past B
    EXPECT_EQ(findingsOf("label,A,\"1[0..9]\",0,,\nlabel,B,3,10,,\nlabel,C,3,8,,\n"), Findings({"4 overlap C"}));
    EXPECT_EQ(findingsOf("label,Long,\"1[0..99]\",0,,\nlabel,In,3,4,,\nlabel,Late,3,98,,\n"),
              Findings({"3 overlap In", "4 overlap Late"}));
    EXPECT_EQ(findingsOf("struct,T,,,4,\nmember,T.a,5,0,,\nmember,T.b,3,2,,\nlabel,L,T,0,,\n"),
              Findings({"4 overlap T.b"}));
    EXPECT_EQ(findingsOf("label,A,3,98,,\nlabel,B,3,99,,\n", 100), Findings({"3 overlap B", "3 end B"}));
    EXPECT_EQ(findingsOf("label,Speed,3,0,,\nlabel,SPEED,3,2,,\n"), Findings({"3 case SPEED"}));
    EXPECT_EQ(findingsOf("label,A,7,0,,f32\nlabel,B,8,8,,f32\nlabel,C,5,16,,hex\n"), Findings({"3 view B"}));
    EXPECT_EQ(findingsOf("label,A,\"5[0..4194304]\",0,,\n"), Findings({"2 size A"}));
}

TEST(Label_Lint, followsStructuresFromTheLabels) {
    EXPECT_EQ(
        findingsOf("struct,In,,,2,\nmember,In.a,3,0,,\nstruct,Out,,,4,\nmember,Out.in,In,0,,\n"
                   "struct,Lone,,,2,\nmember,Lone.a,In,0,,\nstruct,None,,,2,\nlabel,L,Out,0,,\nlabel,N,None,8,,\n"),
        Findings({"6 unused Lone", "8 empty None"}));
}

}  // namespace
}  // namespace vornex
