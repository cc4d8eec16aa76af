// ls: the label file as a tree.
#include <algorithm>
#include <memory>

#include "label/Tool.h"
#include "label/Tree_Nodes.h"
#include "label/verbs/Verb_Table.h"
#include "text/Text.h"

namespace vornex {

namespace {

std::string typeName(const Type_Ref& type) {
    const std::string name = elementName(type);
    return type.radix == 10 ? name : name + "/" + std::to_string(type.radix);
}

// None of a structure: its members have one.
std::string viewWord(const Label& label) { return label.type.code == 12 ? "" : viewName(viewOf(label)); }

class Tree {
public:
    Tree(Tool& userTool, const std::vector<std::string>& patterns)
        : tool(userTool), file(userTool.labels()), nodes(treeNodes(file, patterns)) {
        for (const Tree_Node& node : nodes) {
            width = std::max(width, 2 * node.depth + displayWidth(node.name));
            typeWidth = std::max(typeWidth, displayWidth(typeName(node.label->type)));
        }
    }

    void print() {
        if (!nodes.empty()) {
            tool.out.text(padded("LABEL", width) + "  " + padded("TYPE", typeWidth) +
                          "  VIEW   ADDRESS     BYTES  UNIT");
        }
        for (const Tree_Node& node : nodes)
            printNode(node);
    }

private:
    void printNode(const Tree_Node& node) {
        const Label& label = *node.label;
        const Meaning& meaning = meaningOf(label);
        const std::uint64_t bytes = node.elements * elementBytes(file, label.type);
        const std::string type = typeName(label.type), view = viewWord(label);
        Row row;
        row.fields.reserve(9);
        row.add(key::label, node.path).add(key::type, type).add(key::view, view);
        row.add(key::address, node.address).add(key::bytes, bytes).add(key::elements, node.elements);
        row.add(key::elementBytes, elementBytes(file, label.type))
            .add(key::unit, meaning.unit)
            .add(key::depth, node.depth)
            .add(key::description, meaning.description);
        std::string line = padded(std::string(2 * node.depth, ' ') + node.name, width) + "  " +
                           padded(type, typeWidth) + "  " + padded(view, 5) +
                           padded(std::to_string(node.address), 9, Align::Right) +
                           padded(std::to_string(bytes), 10, Align::Right);
        const std::string words = meaning.unit.empty() || meaning.description.empty() ? "" : "  ";
        const std::string behind = meaning.unit + words + meaning.description;
        tool.out.row(row, behind.empty() ? line : line + "  " + behind);
    }

    Tool& tool;
    const Label_File& file;
    const std::vector<Tree_Node> nodes;
    std::size_t width = 5;
    std::size_t typeWidth = 4;
};

void printElement(Tool& tool, const Leaf& leaf, std::size_t width) {
    const std::string& unit = meaningOf(*leaf.definition).unit;
    const std::string type = elementName(leaf.definition->type);
    Row row;
    row.add(key::label, leaf.text).add(key::type, type).add(key::view, viewName(leaf.view));
    row.add(key::address, leaf.address).add(key::bytes, leaf.bytes).add(key::unit, unit);
    tool.out.row(row, padded(leaf.text, width) + "  " + padded(type, 5) + "  " + padded(viewName(leaf.view), 5) +
                          padded(std::to_string(leaf.address), 9, Align::Right) +
                          padded(std::to_string(leaf.bytes), 10, Align::Right) + (unit.empty() ? "" : "  " + unit));
}

void printElements(Tool& tool, const std::vector<std::string>& patterns) {
    std::vector<Leaf> found;
    std::size_t width = 5;
    Element_Filter filter(tool.labels(), patterns);
    forEachLeaf(tool.labels(), [&](const Leaf& leaf) {
        if (!filter.takes(leaf.text)) return true;
        if (found.size() == MostElementsHeld) refuseSoMany(tool.labels());
        found.push_back(leaf);
        width = std::max(width, displayWidth(leaf.text));
        return true;
    });
    filter.requireAll();
    for (const Leaf& leaf : found)
        printElement(tool, leaf, width);
}

}  // namespace

void addLsVerb(Verbs& verbs) {
    const auto patterns = std::make_shared<std::vector<std::string>>();
    const auto elements = std::make_shared<bool>(false);
    const Page page = {
        "List the labels of the label file as a tree",
        "One line per label and per member of a structure, with type, view, address and bytes. Arrays are one "
        "line; their address is that of the first element. A path with indexes, all of them or some, shows those "
        "elements with their addresses. Needs neither a controller nor the driver.",
        {{"ls -l plant.json", "Everything."},
         {"ls -l plant.json 'Motors[1].Speed'", "Where that element lies."},
         {"ls -l plant.json '*Speed'", "Every label or member whose path ends in Speed."},
         {"ls -l plant.json 'Motors.*' --elements -o csv", "Each element of an array by itself, as a table."}}};
    CLI::App& verb = verbs.add("ls", page, UsesLabels, [patterns, elements](Tool& tool) {
        if (*elements)
            printElements(tool, *patterns);
        else
            Tree(tool, *patterns).print();
        return Exit_Code::Ok;
    });
    addArgument(verb, "GLOB", *patterns, "Paths with * and ?, with or without indexes; none: all.", Need::May);
    addFlag(verb, "--elements", *elements, "Every element of arrays on a line of its own, no tree.");
}

}  // namespace vornex
