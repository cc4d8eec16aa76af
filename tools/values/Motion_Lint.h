// What a label file has wrong in its motions.
#ifndef VORNEX_VALUES_MOTION_LINT_H
#define VORNEX_VALUES_MOTION_LINT_H

#include <vector>

#include "labels/Label_Lint.h"

namespace vornex {

// Rule "sim". Errors: motions that the simulator refuses, and more of them than it takes. Warnings: a constant that a
// float does not hold, with what the simulator stores instead.
std::vector<Lint_Finding> lintMotions(const Label_File& file);

}  // namespace vornex

#endif
