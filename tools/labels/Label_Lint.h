// What a label file that reads well may still have wrong.
#ifndef VORNEX_LABELS_LABEL_LINT_H
#define VORNEX_LABELS_LABEL_LINT_H

#include <cstdint>
#include <string>
#include <vector>

#include "labels/Label_File.h"

namespace vornex {

struct Lint_Finding {
    // Error: reads or writes of the label go wrong, or the simulator refuses the file. Warning: likely a mistake.
    enum class Severity { Error, Warning };
    Severity severity = Severity::Warning;
    std::string rule;     // one word, for scripts
    int line = 0;         // in the file, 0: unknown
    std::string subject;  // "Motors", "MotorT.Speed", "MotorT"
    std::string text;     // a sentence about the subject
};

// Everything that is found, in the order of lines. `memoryEnd` is the address after the controller's last byte; 0: not
// known. Rules: "overlap" (labels or members that share bytes), "end" (past the controller's memory), "unused"
// (structures that no label reaches, so their members cannot be reached either), "case" (names that differ in upper and
// lower case alone), "view" (a view of another width than its element), "empty" (a structure without members),
// "size" (a label too large for one read).
std::vector<Lint_Finding> lintLabels(const Label_File& file, std::uint64_t memoryEnd);

const char* severityName(Lint_Finding::Severity severity);

}  // namespace vornex

#endif
