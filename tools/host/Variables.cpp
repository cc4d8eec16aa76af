#include "host/Variables.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include "labels/Label_Explain.h"
#include "labels/Template_Text.h"
#include "text/Nearest_Word.h"

namespace vornex {

namespace {

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

// The bit of the element that the argument names: "Alarms.Overload"; null when it names none.
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

// The glob may match the element, or a structure or array that it lies in: 'Motors[*]' stands for all their members.
bool globCovers(const std::string& pattern, const std::string& leaf) {
    if (globMatches(pattern, leaf)) return true;
    for (std::size_t at = leaf.find_first_of(".["); at != std::string::npos; at = leaf.find_first_of(".[", at + 1)) {
        if (globMatches(pattern, leaf.substr(0, at))) return true;
    }
    return false;
}

// Collects what each argument matches in one walk over the file. A run is what lies in one array without a gap.
class Selection {
public:
    Selection(const Label_File& labelFile, const std::vector<std::string>& texts)
        : file(labelFile), arguments(texts), found(texts.size()), runStart(texts.size(), 0) {}

    Leaf_Filter filter() const {
        Leaf_Filter wanted;
        for (const std::string& argument : arguments)
            wanted.texts.push_back({argument.substr(0, argument.find_first_of("*?")), isGlob(argument)});
        return wanted;
    }

    void take(const Leaf& leaf) {
        if (leaf.definition != runDefinition || leaf.address != runEnd) endRun();
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const std::string& argument = arguments[i];
            const Named_Number* const bit = bitNamed(leaf, argument);
            if (bit || (isGlob(argument) ? globCovers(argument, leaf.text) : leadsOnFrom(argument, leaf.text))) {
                if (++held > MostElementsHeld) {
                    throw Host_Error(Host_Error::Kind::Label,
                                     "'" + argument + "' makes more than a million elements of " + file.path);
                }
                found[i].push_back(variableOf(leaf));
                if (bit) makeBit(found[i].back(), *bit);
            }
        }
        runDefinition = leaf.definition;
        runEnd = std::uint64_t(leaf.address) + leaf.bytes;
    }

    // Now it is known how many elements follow each variable of the run.
    void endRun() {
        for (std::size_t i = 0; i < found.size(); ++i) {
            for (; runStart[i] < found[i].size(); ++runStart[i]) {
                Variable& variable = found[i][runStart[i]];
                const std::uint64_t elements = (runEnd - variable.address) / variable.bytes;
                variable.elements = variable.bit ? 1 : static_cast<std::uint32_t>(elements);
            }
        }
    }

    std::vector<Variable>& at(std::size_t i) { return found[i]; }

private:
    const Label_File& file;
    const std::vector<std::string>& arguments;
    std::size_t held = 0;
    std::vector<std::vector<Variable>> found;
    std::vector<std::size_t> runStart;  // the first variable of the present run
    const Label* runDefinition = nullptr;
    std::uint64_t runEnd = 0;
};

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
std::optional<Variable> firstOf(const Label_File& file, const std::string& beginning,
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
    std::optional<Variable> variable = firstOf(file, path.substr(0, path.find('.')), isMeant, extent);
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
    if (!isGlob(argument)) first = firstOf(file, argument, isMeant, extent);
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
