#include "Tool_Run.h"

namespace vornex::test {

Outcome run(const std::string& arguments, const On_Line& onLine, const std::string& environment) {
    return runCommand(WORK_DIR, "env " + environment + " " TOOL " " + arguments, onLine);
}

std::string on(int port) { return " -l " PLANT " -t 127.0.0.1:" + std::to_string(port) + " "; }

}  // namespace vornex::test
