// Which elements of a label file the arguments of a command name, found in one walk over the file.
#ifndef VORNEX_HOST_SELECTION_H
#define VORNEX_HOST_SELECTION_H

#include <string>
#include <unordered_map>
#include <vector>

#include "host/Variables.h"

namespace vornex {

// The element as a variable, at the address that the file works out.
Variable variableOf(const Leaf& leaf);
// The bit of the element that the argument names: "Alarms.Overload"; null when it names none.
const Named_Number* bitNamed(const Leaf& leaf, const std::string& argument);
// The variable is this bit from now on.
void makeBit(Variable& variable, const Named_Number& bit);
// Whether it holds * or ?
bool isGlob(const std::string& text);

// Collects what each argument matches. A run is what lies in one array without a gap. Each element costs a few
// look-ups, however many arguments there are; only globs are tried one by one. File and texts must outlive it.
class Selection {
public:
    Selection(const Label_File& labelFile, const std::vector<std::string>& texts);
    // What the walk need not look into.
    Leaf_Filter filter() const;
    // Elements in the order of the file. Throws Host_Error Label for more than MostElementsHeld.
    void take(const Leaf& leaf);
    // After the last one: now it is known how many elements follow each variable of the run.
    void endRun();
    // Of the argument with this number.
    std::vector<Variable>& at(std::size_t i) { return found[i]; }

private:
    void takePlain(const Leaf& leaf);
    void takeNamed(const Leaf& leaf, const std::string& text, const Named_Number* bit = nullptr);
    void add(std::size_t i, const Leaf& leaf);

    const Label_File& file;
    const std::vector<std::string>& arguments;
    std::vector<std::size_t> globs;
    std::unordered_map<std::string, std::vector<std::size_t>> plain;
    std::size_t held = 0;
    std::vector<std::vector<Variable>> found;
    std::vector<std::size_t> runStart;  // the first variable of the present run
    std::vector<std::size_t> inRun;     // the arguments with variables in it
    const Label* runDefinition = nullptr;
    std::uint64_t runEnd = 0;
};

}  // namespace vornex

#endif
