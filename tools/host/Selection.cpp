#include "host/Selection.h"

namespace vornex {

namespace {

// The glob may match the element, or a structure or array that it lies in: 'Motors[*]' stands for all their members.
bool globCovers(const std::string& pattern, const std::string& leaf) {
    if (globMatches(pattern, leaf)) return true;
    for (std::size_t at = leaf.find_first_of(".["); at != std::string::npos; at = leaf.find_first_of(".[", at + 1)) {
        if (globMatches(pattern, leaf.substr(0, at))) return true;
    }
    return false;
}

}  // namespace

Variable variableOf(const Leaf& leaf) {
    Variable variable;
    variable.text = leaf.text;
    variable.unit = meaningOf(*leaf.definition).unit;
    variable.ownView = leaf.view;
    variable.meaning = leaf.definition->meaning;
    variable.view = leaf.view;
    variable.address = leaf.address;
    variable.bytes = leaf.bytes;
    variable.range = {driverLabel(leaf), 0, leaf.code, leaf.bytes};
    return variable;
}

const Named_Number* bitNamed(const Leaf& leaf, const std::string& argument) {
    const std::size_t size = leaf.text.size();
    if (argument.size() <= size || argument[size] != '.' || argument.compare(0, size, leaf.text) != 0) return nullptr;
    return findName(meaningOf(*leaf.definition).bits, argument.substr(size + 1));
}

void makeBit(Variable& variable, const Named_Number& bit) {
    variable.text += "." + bit.name;
    seeAs(variable, View::Bool);
    variable.bit = static_cast<std::uint32_t>(bit.number);
    variable.elements = 1;
}

bool isGlob(const std::string& text) { return text.find_first_of("*?") != std::string::npos; }

Selection::Selection(const Label_File& labelFile, const std::vector<std::string>& texts)
    : file(labelFile), arguments(texts), found(texts.size()), runStart(texts.size(), 0) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (isGlob(arguments[i]))
            globs.push_back(i);
        else
            plain[arguments[i]].push_back(i);
    }
}

Leaf_Filter Selection::filter() const {
    Leaf_Filter wanted;
    for (const std::string& argument : arguments)
        wanted.texts.push_back({argument.substr(0, argument.find_first_of("*?")), isGlob(argument)});
    return wanted;
}

void Selection::take(const Leaf& leaf) {
    if (leaf.definition != runDefinition || leaf.address != runEnd) endRun();
    for (const std::size_t i : globs) {
        if (globCovers(arguments[i], leaf.text)) add(i, leaf);
    }
    if (!plain.empty()) takePlain(leaf);
    runDefinition = leaf.definition;
    runEnd = std::uint64_t(leaf.address) + leaf.bytes;
}

void Selection::endRun() {
    for (const std::size_t i : inRun) {
        for (; runStart[i] < found[i].size(); ++runStart[i]) {
            Variable& variable = found[i][runStart[i]];
            const std::uint64_t elements = (runEnd - variable.address) / variable.bytes;
            variable.elements = variable.bit ? 1 : static_cast<std::uint32_t>(elements);
        }
    }
    inRun.clear();
}

// The arguments that name the element, what it lies in, or one of its bits: looked up, for there may be thousands.
void Selection::takePlain(const Leaf& leaf) {
    for (std::size_t end = leaf.text.find_first_of(".["); end != std::string::npos;
         end = leaf.text.find_first_of(".[", end + 1))
        takeNamed(leaf, leaf.text.substr(0, end));
    takeNamed(leaf, leaf.text);
    for (const Named_Number& bit : meaningOf(*leaf.definition).bits)
        takeNamed(leaf, leaf.text + "." + bit.name, &bit);
}

void Selection::takeNamed(const Leaf& leaf, const std::string& text, const Named_Number* bit) {
    const auto named = plain.find(text);
    if (named == plain.end()) return;
    for (const std::size_t i : named->second) {
        add(i, leaf);
        if (bit) makeBit(found[i].back(), *bit);
    }
}

void Selection::add(std::size_t i, const Leaf& leaf) {
    if (++held > MostElementsHeld) {
        throw Host_Error(Host_Error::Kind::Label,
                         "'" + arguments[i] + "' makes more than a million elements of " + file.path);
    }
    found[i].push_back(variableOf(leaf));
    inRun.push_back(i);
}

}  // namespace vornex
