// What the verbs of the group "labels" share.
#ifndef VORNEX_LABEL_VERBS_LABELS_VERBS_H
#define VORNEX_LABEL_VERBS_LABELS_VERBS_H

#include <string>

#include "label/verbs/Verb_Table.h"

namespace vornex {

// What the name of a label file to be written says: "csv" or "json"; empty for any other name, under which it would be
// read as what it is not.
std::string labelFormatOf(const std::string& path);

void addImport(Verbs& verbs, CLI::App& group);

}  // namespace vornex

#endif
