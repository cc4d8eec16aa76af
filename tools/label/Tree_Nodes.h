// The lines of the label file as a tree: labels and members, arrays as one line.
#ifndef VORNEX_LABEL_TREE_NODES_H
#define VORNEX_LABEL_TREE_NODES_H

#include <string>
#include <vector>

#include "labels/Label_File.h"

namespace vornex {

struct Tree_Node {
    std::string path;  // "Line[1..2].Feed[1..2].Speed", or "Line[2].Feed[1..2].Speed" when that element was named
    std::string name;  // the last part of it
    const Label* label = nullptr;
    std::uint32_t address = 0;  // of the first element
    std::uint64_t elements = 1;
    std::size_t depth = 0;
};

// What the patterns find, with what it lies in and what lies in it; everything when there are none. A pattern is a path
// with * and ?, with or without indexes; one that names elements gives a branch of its own, with their addresses.
// Throws Tool_Error Label for a pattern that finds nothing, with the mistake in it.
std::vector<Tree_Node> treeNodes(const Label_File& file, const std::vector<std::string>& patterns);

// The same for the texts of single elements.
class Element_Filter {
public:
    Element_Filter(const Label_File& file, const std::vector<std::string>& patterns);
    bool takes(const std::string& element);
    // Throws Tool_Error Label for a pattern that took none.
    void requireAll() const;

private:
    struct Wanted {
        std::string pattern;
        std::vector<std::string> segments;  // "Motors[1]", "Axis"; empty: it is a glob
        bool found = false;
    };
    const Label_File& file;
    std::vector<Wanted> all;
};

}  // namespace vornex

#endif
