#include <csignal>

#include "label/Cli.h"

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a failed write, told or not by the one who writes
    return vornex::runTool(argc, argv);
}
