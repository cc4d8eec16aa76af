// From the command line to the verb and the exit code.
#ifndef VORNEX_LABEL_CLI_H
#define VORNEX_LABEL_CLI_H

namespace vornex {

// Runs the tool; the result is the process's exit code. Everything that goes wrong has been told on stderr.
int runTool(int argc, char** argv);

}  // namespace vornex

#endif
