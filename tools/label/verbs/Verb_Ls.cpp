// ls: the label file as a tree.
#include <algorithm>
#include <memory>

#include "host/Variables.h"
#include "label/Tool.h"
#include "label/verbs/Verb_Table.h"
#include "text/Text.h"

namespace vornex {

namespace {

// A line of the tree: a label or a member, arrays as one line.
struct Node {
    std::string path;  // "Line[1..2].Feed[1..2].Speed"
    std::string name;  // the last part of it
    const Label* label = nullptr;
    std::uint32_t address = 0;  // of the first element
    std::size_t depth = 0;
};

std::string withBounds(const Label& label) {
    const std::string type = formatType(label.type);
    const std::size_t open = type.find('[');
    return open == std::string::npos ? label.name : label.name + type.substr(open, type.find(']') + 1 - open);
}

void collect(const Label_File& file, const Label& label, const Node& parent, std::vector<Node>& nodes) {
    Node node;
    node.name = withBounds(label);
    node.path = parent.path.empty() ? node.name : parent.path + "." + node.name;
    node.label = &label;
    node.address = parent.address + label.at;
    node.depth = parent.path.empty() ? 0 : parent.depth + 1;
    nodes.push_back(node);
    if (label.type.code != 12) return;
    for (const Label& member : file.structs.at(label.type.structName).members)
        collect(file, member, node, nodes);
}

// With and without indexes: "Line.Feed.Speed" is what people write when they do not care for them.
bool matchesAny(const std::vector<std::string>& patterns, const std::string& path) {
    return std::any_of(patterns.begin(), patterns.end(), [&path](const std::string& pattern) {
        return globMatches(pattern, path) || globMatches(pattern, pathOf(path));
    });
}

std::string typeName(const Type_Ref& type) {
    const std::string name = elementName(type);
    return type.radix == 10 ? name : name + "/" + std::to_string(type.radix);
}

// None of a structure: its members have one.
std::string viewWord(const Label& label) { return label.type.code == 12 ? "" : viewName(viewOf(label)); }

std::uint64_t bytesOf(const Label_File& file, const Label& label) {
    return elementCount(label.type) * elementBytes(file, label.type);
}

class Tree {
public:
    Tree(Tool& userTool, const std::vector<std::string>& patterns) : tool(userTool), file(userTool.labels()) {
        for (const Label& label : file.labels)
            collect(file, label, Node(), nodes);
        if (!patterns.empty()) keepMatches(patterns);
        for (const Node& node : nodes) {
            width = std::max(width, 2 * node.depth + displayWidth(node.name));
            typeWidth = std::max(typeWidth, displayWidth(typeName(node.label->type)));
        }
    }

    void print() {
        if (!nodes.empty()) {
            tool.out.text(padded("LABEL", width) + "  " + padded("TYPE", typeWidth) +
                          "  VIEW   ADDRESS     BYTES  UNIT");
        }
        for (const Node& node : nodes)
            printNode(node);
    }

private:
    // A match keeps what it lies in, so that the tree stays one, and what lies in it.
    void keepMatches(const std::vector<std::string>& patterns) {
        std::vector<bool> keep(nodes.size(), false);
        bool any = false;
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            if (!matchesAny(patterns, nodes[i].path)) continue;
            any = true;
            keep[i] = true;
            for (std::size_t below = i + 1; below < nodes.size() && nodes[below].depth > nodes[i].depth; ++below) {
                keep[below] = true;
            }
            std::size_t depth = nodes[i].depth;
            for (std::size_t above = i; above-- > 0 && depth > 0;) {
                if (nodes[above].depth >= depth) continue;
                depth = nodes[above].depth;
                keep[above] = true;
            }
        }
        if (!any) throw Tool_Error(Exit_Code::Label, "no label matches '" + patterns.front() + "' in " + file.path);
        std::vector<Node> kept;
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            if (keep[i]) kept.push_back(nodes[i]);
        }
        nodes.swap(kept);
    }

    void printNode(const Node& node) {
        const Label& label = *node.label;
        const std::uint64_t bytes = bytesOf(file, label);
        const std::string type = typeName(label.type), view = viewWord(label);
        Row row;
        row.fields.reserve(9);
        row.add(key::label, node.path).add(key::type, type).add(key::view, view);
        row.add(key::address, node.address).add(key::bytes, bytes).add(key::elements, elementCount(label.type));
        row.add(key::elementBytes, elementBytes(file, label.type))
            .add(key::unit, label.unit)
            .add(key::depth, node.depth);
        std::string line = padded(std::string(2 * node.depth, ' ') + node.name, width) + "  " +
                           padded(type, typeWidth) + "  " + padded(view, 5) +
                           padded(std::to_string(node.address), 9, Align::Right) +
                           padded(std::to_string(bytes), 10, Align::Right);
        tool.out.row(row, label.unit.empty() ? line : line + "  " + label.unit);
    }

    Tool& tool;
    const Label_File& file;
    std::vector<Node> nodes;
    std::size_t width = 5;
    std::size_t typeWidth = 4;
};

void printElement(Tool& tool, const Leaf& leaf, std::size_t width) {
    const std::string& unit = leaf.definition->unit;
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
    forEachLeaf(tool.labels(), [&](const Leaf& leaf) {
        if (!patterns.empty() && !matchesAny(patterns, leaf.text)) return true;
        if (found.size() == MostElementsHeld) refuseSoMany(tool.labels());
        found.push_back(leaf);
        width = std::max(width, displayWidth(leaf.text));
        return true;
    });
    if (found.empty() && !patterns.empty()) {
        throw Tool_Error(Exit_Code::Label, "no label matches '" + patterns.front() + "'");
    }
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
        "line; their address is that of the first element. Needs neither a controller nor the driver.",
        {{"ls -l plant.json", "Everything."},
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
