#include "Cli.h"

int main(int argc, char** argv) { return vornex::runTool(argc, argv); }
