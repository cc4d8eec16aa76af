// vornex-label as a process of its own.
#ifndef VORNEX_TESTS_TOOL_RUN_H
#define VORNEX_TESTS_TOOL_RUN_H

#include "Process.h"

namespace vornex::test {

// Runs the tool in WORK_DIR; `arguments` as in a shell. `environment` stands before it: "NAME=value ".
Outcome run(const std::string& arguments, const On_Line& onLine = nullptr, const std::string& environment = "");

// What a run is to end with.
struct Expected {
    const char* arguments;
    int code;
    const char* text;  // stands in the output
};
void expectAll(const std::vector<Expected>& rows);

// The options for the example's labels and a controller on this port of this machine.
std::string on(int port);

}  // namespace vornex::test

#endif
