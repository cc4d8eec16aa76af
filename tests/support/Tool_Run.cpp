#include "Tool_Run.h"

#include <gtest/gtest.h>

namespace vornex::test {

Outcome run(const std::string& arguments, const On_Line& onLine, const std::string& environment) {
    // without what the user who runs the tests has set
    const std::string own = "env -u VORNEX_LABELS -u VORNEX_TARGET XDG_CONFIG_HOME=" WORK_DIR " ";
    return runCommand(WORK_DIR, own + environment + " " TOOL " " + arguments, onLine);
}

void expectAll(const std::vector<Expected>& rows) {
    for (const Expected& row : rows) {
        const Outcome outcome = run(row.arguments);
        EXPECT_EQ(outcome.code, row.code) << row.arguments << "\n" << outcome.text;
        EXPECT_TRUE(outcome.holds(row.text)) << row.arguments << "\n" << outcome.text;
    }
}

std::string on(int port) { return " -l " PLANT " -t 127.0.0.1:" + std::to_string(port) + " "; }

}  // namespace vornex::test
