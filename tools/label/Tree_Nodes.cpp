#include "label/Tree_Nodes.h"

#include <algorithm>
#include <functional>

#include "host/Variables.h"
#include "label/Tool.h"
#include "labels/Label_Explain.h"
#include "text/Text.h"

namespace vornex {

namespace {

using Nodes = std::vector<Tree_Node>;

std::string withBounds(const Label& label) {
    const std::string type = formatType(label.type);
    const std::size_t open = type.find('[');
    return open == std::string::npos ? label.name : label.name + type.substr(open, type.find(']') + 1 - open);
}

Tree_Node nodeBelow(const Tree_Node& parent, const Label& label, const std::string& name, std::uint32_t address) {
    Tree_Node node;
    node.name = name;
    node.path = parent.path.empty() ? name : parent.path + "." + name;
    node.label = &label;
    node.address = address;
    node.elements = elementCount(label.type);
    node.depth = parent.path.empty() ? 0 : parent.depth + 1;
    return node;
}

void collectMembers(const Label_File& file, const Tree_Node& parent, Nodes& nodes);

void collect(const Label_File& file, const Label& label, const Tree_Node& parent, Nodes& nodes) {
    const Tree_Node node = nodeBelow(parent, label, withBounds(label), parent.address + label.at);
    nodes.push_back(node);
    collectMembers(file, node, nodes);
}

void collectMembers(const Label_File& file, const Tree_Node& parent, Nodes& nodes) {
    if (parent.label->type.code != 12) return;
    for (const Label& member : file.structs.at(parent.label->type.structName).members)
        collect(file, member, parent, nodes);
}

// With and without indexes: "Line.Feed.Speed" is what people write when they do not care for them.
bool matches(const std::string& pattern, const std::string& path) {
    return globMatches(pattern, path) || globMatches(pattern, pathOf(path));
}

// Marks the nodes whose path, from `begin` on, matches, with what they lie in and what lies in them. False: none does.
bool keepMatches(const Nodes& nodes, const std::string& pattern, std::size_t begin, std::vector<bool>& keep) {
    bool any = false;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (!matches(pattern, nodes[i].path.substr(begin))) continue;
        any = true;
        keep[i] = true;
        for (std::size_t below = i + 1; below < nodes.size() && nodes[below].depth > nodes[i].depth; ++below)
            keep[below] = true;
        std::size_t depth = nodes[i].depth;
        for (std::size_t above = i; above-- > 0 && depth > 0;) {
            if (nodes[above].depth >= depth) continue;
            depth = nodes[above].depth;
            keep[above] = true;
        }
    }
    return any;
}

Nodes kept(const Nodes& nodes, const std::vector<bool>& keep) {
    Nodes found;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (keep[i]) found.push_back(nodes[i]);
    }
    return found;
}

bool isGlob(const std::string& text) { return text.find_first_of("*?") != std::string::npos; }

[[noreturn]] void nothingMatches(const Label_File& file, const std::string& pattern, const std::string& words = "") {
    const char* const what = isGlob(pattern) ? "no label matches '" : "no label '";
    throw Tool_Error(Exit_Code::Label, what + pattern + "' in " + file.path + words);
}

std::vector<Path_Step> stepsOf(const Label_File& file, const std::string& pattern, const std::string& path) {
    std::vector<Path_Step> steps;
    const std::optional<Label_Problem> problem = explainPath(file, path, steps);
    if (problem) nothingMatches(file, pattern, problemWords(path, *problem));
    return steps;
}

// What a pattern finds that names elements: the path to them, and what lies in the last one. A glob may follow.
void addBranch(const Label_File& file, const std::string& pattern, Nodes& nodes) {
    const std::size_t glob = pattern.find_first_of("*?");
    const std::size_t end = glob == std::string::npos ? pattern.size() : pattern.rfind('.', glob);
    if (end == std::string::npos) nothingMatches(file, pattern);
    Tree_Node parent;
    for (const Path_Step& step : stepsOf(file, pattern, pattern.substr(0, end))) {
        const std::string name = step.indexes.empty() ? withBounds(*step.label) : step.label->name + step.indexes;
        parent = nodeBelow(parent, *step.label, name, step.address);
        if (!step.indexes.empty()) parent.elements = 1;
        nodes.push_back(parent);
    }
    Nodes below;
    collectMembers(file, parent, below);
    std::vector<bool> keep(below.size(), glob == std::string::npos);
    if (glob != std::string::npos && !keepMatches(below, pattern.substr(end + 1), parent.path.size() + 1, keep))
        nothingMatches(file, pattern);
    for (const Tree_Node& node : kept(below, keep))
        nodes.push_back(node);
}

std::string nameOf(const std::string& segment) { return segment.substr(0, segment.find('[')); }

// "Motors[1].Axis" takes "Motors[1].Axis[2].Error", "Motors" every element in it.
bool leadsTo(const std::vector<std::string>& segments, const std::string& element) {
    const std::vector<std::string> texts = split(element, '.');
    if (segments.size() > texts.size()) return false;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const bool isWhole = segments[i].find('[') == std::string::npos;
        if (segments[i] != (isWhole ? nameOf(texts[i]) : texts[i])) return false;
    }
    return true;
}

}  // namespace

std::vector<Tree_Node> treeNodes(const Label_File& file, const std::vector<std::string>& patterns) {
    Nodes all, branches;
    for (const Label& label : file.labels)
        collect(file, label, Tree_Node(), all);
    if (patterns.empty()) return all;
    std::vector<bool> keep(all.size(), false);
    for (const std::string& pattern : patterns) {
        if (!keepMatches(all, pattern, 0, keep)) addBranch(file, pattern, branches);
    }
    Nodes found = kept(all, keep);
    found.insert(found.end(), branches.begin(), branches.end());
    return found;
}

Element_Filter::Element_Filter(const Label_File& labelFile, const std::vector<std::string>& patterns)
    : file(labelFile) {
    for (const std::string& pattern : patterns) {
        Wanted wanted;
        wanted.pattern = pattern;
        if (!isGlob(pattern)) {
            for (const Path_Step& step : stepsOf(file, pattern, pattern))
                wanted.segments.push_back(step.label->name + step.indexes);
        }
        all.push_back(wanted);
    }
}

bool Element_Filter::takes(const std::string& element) {
    bool any = all.empty();
    for (Wanted& wanted : all) {
        const bool isGood =
            wanted.segments.empty() ? matches(wanted.pattern, element) : leadsTo(wanted.segments, element);
        wanted.found = wanted.found || isGood;
        any = any || isGood;
    }
    return any;
}

void Element_Filter::requireAll() const {
    for (const Wanted& wanted : all) {
        if (!wanted.found) nothingMatches(file, wanted.pattern);
    }
}

}  // namespace vornex
