#include "Tool_Run.h"

namespace vornex::test {

Outcome run(const std::string& arguments, const On_Line& onLine, const std::string& environment) {
    // without what the user who runs the tests has set
    const std::string own = "env -u VORNEX_LABELS -u VORNEX_TARGET XDG_CONFIG_HOME=" WORK_DIR " ";
    return runCommand(WORK_DIR, own + environment + " " TOOL " " + arguments, onLine);
}

std::string on(int port) { return " -l " PLANT " -t 127.0.0.1:" + std::to_string(port) + " "; }

}  // namespace vornex::test
