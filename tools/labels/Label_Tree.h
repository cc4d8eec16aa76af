// The one place where a label file is checked, whatever notation it came in.
#ifndef VORNEX_LABELS_LABEL_TREE_H
#define VORNEX_LABELS_LABEL_TREE_H

#include "labels/Label_File.h"
#include "text/Json_Tree.h"

namespace vornex {

// The label file that the tree of a JSON file, or a tree of the same shape, describes. Throws File_Error with the line
// that the tree remembers for the mistake.
Label_File labelFileOf(const Json_Node& root, const std::string& path);

}  // namespace vornex

#endif
