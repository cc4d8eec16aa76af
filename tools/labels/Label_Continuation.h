// How a label text that is begun may go on, for completion on a command line.
#ifndef VORNEX_LABELS_LABEL_CONTINUATION_H
#define VORNEX_LABELS_LABEL_CONTINUATION_H

#include <string>
#include <vector>

#include "labels/Label_File.h"

namespace vornex {

struct Label_Continuation {
    std::vector<std::string> texts;  // all begin with what was begun
    bool isWhole = true;             // false: none of them is the text of an element yet
};

// One step on from `beginning`: the names, members or indexes that fit there. Looks at definitions only, so that it is
// quick however many elements there are. When more than a thousand fit, they are cut to shorter beginnings; dimensions
// with more than a million indexes are passed over.
Label_Continuation continueLabel(const Label_File& file, const std::string& beginning);

}  // namespace vornex

#endif
