// One verb for several controllers: a process of this program for each, so that none holds up the others, and their
// lines joined.
#ifndef VORNEX_LABEL_SEVERAL_H
#define VORNEX_LABEL_SEVERAL_H

#include <string>
#include <vector>

#include "label/Tool.h"

namespace vornex {

// Runs the command line again for each controller, which the process takes from VORNEX_CONTROLLER, and prints their
// whole lines as they come; a heading of CSV once. Ctrl-C and SIGTERM end all of them, and so does an output that
// cannot be written. The exit code is that of the first controller, in the order given, that did not end well.
Exit_Code runForEach(Tool& tool, const std::vector<std::string>& controllers, char** argv);

// In such a process: it ends when the one that started it does.
void endWithParent();

}  // namespace vornex

#endif
