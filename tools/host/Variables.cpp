#include "host/Variables.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include "host/Selection.h"
#include "labels/Label_Explain.h"
#include "labels/Template_Text.h"
#include "text/Nearest_Word.h"

namespace vornex {

namespace {

[[noreturn]] void noSuchLabel(const Label_File& file, const std::string& argument, const Template_Index& index) {
    if (isGlob(argument)) {
        throw Host_Error(Host_Error::Kind::Label, "no label matches '" + argument + "' in " + file.path);
    }
    std::string message = "no label '" + argument + "' in " + file.path;
    std::string text = argument;
    if (isTemplate(argument)) {
        if (!index.number) message += " (a template, and no index number was given)";
        text = templateText(file, argument, index.number.value_or(0)).value_or(argument);
    }
    if (const std::optional<Label_Problem> problem = explainLabel(file, text)) {
        message += problemWords(text, *problem);
    }
    throw Host_Error(Host_Error::Kind::Label, message);
}

// The driver carries an index that passes an array's end into other elements: what people hardly ever mean.
void refuseCarry(Session& session, const Label_File& file, const Variable& variable, const Template_Index& index) {
    if (!isTemplate(variable.range.label) || index.mayWrap) return;
    const auto plain = templateText(file, variable.range.label, variable.range.index);
    if (plain && session.resolve(driverSpelling(file, *plain), 0) == variable.address) return;
    throw Host_Error(Host_Error::Kind::Label, "index " + std::to_string(variable.range.index) + " leaves the array: '" +
                                                  variable.range.label + "' would become '" + variable.text + "'");
}

// The first wanted element below this beginning of a label text, and how many follow it in its array without a gap, as
// far as one value reaches. Nothing is held but that.
std::optional<Variable> firstOf(Session& session, const Label_File& file, const std::string& beginning,
                                const std::function<bool(const Leaf&)>& isWanted, Extent& extent) {
    std::optional<Variable> first;
    const Label* definition = nullptr;
    std::uint64_t end = 0;
    extent = Extent::Element;
    const auto take = [&](const Leaf& leaf) {
        const bool isMatch = isWanted(leaf);
        if (!first && !isMatch) return true;
        if (first) {
            const bool isNext = leaf.definition == definition && leaf.address == end;
            if (isMatch) extent = isNext ? Extent::Array : Extent::Several;
            if (!isNext || end - first->address >= LongestValue) return false;
        } else {
            first = variableOf(leaf);
            definition = leaf.definition;
        }
        end = std::uint64_t(leaf.address) + leaf.bytes;
        return true;
    };
    Leaf_Filter filter;
    filter.texts = {{beginning, false}};
    filter.index = &session.labelIndex();
    forEachLeaf(file, take, filter);
    if (first) first->elements = static_cast<std::uint32_t>((end - first->address) / first->bytes);
    return first;
}

// A path without indexes that leads to the element, or to something behind it where it has bits.
bool isPathOf(const Leaf& leaf, const std::string& path) {
    const std::string own = pathOf(leaf.text);
    return own == path || (!meaningOf(*leaf.definition).bits.empty() && leadsOnFrom(own, path));
}

void takeBit(Variable& variable, const std::string& name) {
    if (const Named_Number* const bit = findName(variable.meaning->bits, name)) return makeBit(variable, *bit);
    throw Host_Error(Host_Error::Kind::Label, "'" + variable.text + "' has no bit '" + name + "'" +
                                                  didYouMean(name, namesOf(variable.meaning->bits)));
}

// Spellings that the file's walk does not produce, templates above all: the driver says where they point to, the
// definition with the same path says what lies there.
Variable resolveSpelling(Session& session, const Label_File& file, const std::string& argument,
                         const Template_Index& index) {
    const int number = index.number.value_or(0);
    const std::optional<std::uint32_t> address = session.resolve(argument, number);
    if (!address) noSuchLabel(file, argument, index);
    const std::string path = pathOf(argument);
    const auto isMeant = [&](const Leaf& leaf) { return leaf.address == *address && isPathOf(leaf, path); };
    Extent extent = Extent::Element;
    std::optional<Variable> variable = firstOf(session, file, path.substr(0, path.find('.')), isMeant, extent);
    if (!variable) noSuchLabel(file, argument, index);
    if (pathOf(variable->text) != path) takeBit(*variable, path.substr(path.rfind('.') + 1));
    variable->range.label = argument;
    variable->range.index = number;
    refuseCarry(session, file, *variable, index);
    return *variable;
}

// The addresses that count are the driver's; the file's own arithmetic only says what is where.
void useDriverAddress(Session& session, const Label_File& file, Variable& variable) {
    const std::optional<std::uint32_t> address = session.resolve(variable.range.label, variable.range.index);
    if (!address) {
        throw Host_Error(Host_Error::Kind::Label,
                         "the driver does not resolve label '" + variable.text + "' of " + file.path);
    }
    variable.address = *address;
}

}  // namespace

void seeAs(Variable& variable, View view) {
    variable.view = view;
    variable.isRaw = true;
    variable.unit.clear();
}

void requireTemplate(const std::vector<std::string>& arguments, const Template_Index& index) {
    if (!index.number || std::any_of(arguments.begin(), arguments.end(), isTemplate)) return;
    throw Host_Error(Host_Error::Kind::Settings, "an index number is given, but no label is a template (%%)");
}

std::vector<Variable> findVariables(Session& session, const Label_File& file, const std::vector<std::string>& arguments,
                                    const Template_Index& index) {
    Selection selection(file, arguments);
    const auto take = [&selection](const Leaf& leaf) {
        selection.take(leaf);
        return true;
    };
    forEachLeaf(file, take, selection.filter());
    selection.endRun();
    std::vector<Variable> variables;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::vector<Variable>& found = selection.at(i);
        if (found.empty() && isGlob(arguments[i])) noSuchLabel(file, arguments[i], index);
        if (found.empty()) found.push_back(resolveSpelling(session, file, arguments[i], index));
        for (Variable& variable : found)
            useDriverAddress(session, file, variable);
        if (variables.empty()) {
            variables = std::move(found);
        } else {
            variables.insert(variables.end(), std::make_move_iterator(found.begin()),
                             std::make_move_iterator(found.end()));
        }
    }
    return variables;
}

Variable firstVariable(Session& session, const Label_File& file, const std::string& argument,
                       const Template_Index& index, Extent& extent) {
    const auto isMeant = [&](const Leaf& leaf) { return bitNamed(leaf, argument) || leadsOnFrom(argument, leaf.text); };
    std::optional<Variable> first;
    extent = Extent::Several;
    if (!isGlob(argument)) first = firstOf(session, file, argument, isMeant, extent);
    if (first && leadsOnFrom(first->text, argument) && first->text != argument)
        takeBit(*first, argument.substr(first->text.size() + 1));
    if (!first) return findVariables(session, file, {argument}, index).front();
    useDriverAddress(session, file, *first);
    return *first;
}

Variable findVariable(Session& session, const Label_File& file, const std::string& argument,
                      const Template_Index& index, bool& wholeArray) {
    Extent extent = Extent::Element;
    Variable variable = firstVariable(session, file, argument, index, extent);
    if (extent == Extent::Several) {
        throw Host_Error(Host_Error::Kind::Label,
                         "'" + argument + "' is more than one variable: name an element or member");
    }
    wholeArray = extent == Extent::Array;
    return variable;
}

std::string pathOf(const std::string& text) {
    std::string path;
    bool inIndex = false;
    for (char letter : text) {
        if (letter == '[') inIndex = true;
        if (!inIndex) path += letter;
        if (letter == ']') inIndex = false;
    }
    return path;
}

bool globMatches(const std::string& pattern, const std::string& text) {
    std::size_t p = 0, t = 0, star = std::string::npos, retry = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            retry = t;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == text[t])) {
            ++p;
            ++t;
        } else if (star != std::string::npos) {  // let the last star take one character more
            p = star + 1;
            t = ++retry;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*')
        ++p;
    return p == pattern.size();
}

}  // namespace vornex
