// From what the user names (labels, globs, whole structures and arrays, templates) to variables.
#ifndef VORNEX_HOST_VARIABLES_H
#define VORNEX_HOST_VARIABLES_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/Session.h"

namespace vornex {

// One elementary variable of the controller.
struct Variable {
    std::string text;  // as it is shown: the label text without template marks
    std::string unit;
    View view = View::U8;
    View ownView = View::U8;                 // the label's, for which the meaning is
    std::shared_ptr<const Meaning> meaning;  // null: none
    bool isRaw = false;                      // shown and typed without its meaning
    std::optional<std::uint32_t> bit;        // the variable is this bit of the element
    std::uint32_t address = 0;               // as the driver resolves it
    std::uint32_t bytes = 0;                 // of one element
    std::uint32_t elements = 1;              // from this one to the end of its array
    Label_Range range;                       // one element, as the driver is asked for it
};
// Shown and typed under this view, as the bytes have it: neither scale nor states, and no unit.
void seeAs(Variable& variable, View view);

// The number for templates, 0 when none is given.
struct Template_Index {
    std::optional<int> number;
    bool mayWrap = false;  // a number past the array's end may lead to another element, as the driver carries it
};

// Throws Host_Error Settings for a number that no argument takes.
void requireTemplate(const std::vector<std::string>& arguments, const Template_Index& index);

// The variables of each argument, in the order of the arguments and then of the file. An argument is a label text, a
// label text with template marks (completed with `index`), an array or structure (all its elements), a named bit of an
// element ("Alarms.Overload"), or a glob with * and ?, which stands for whole elements. Throws Host_Error Label for an
// argument that names nothing, with the reason and the place, that the driver does not resolve, or whose index number
// does not stay as it is.
std::vector<Variable> findVariables(Session& session, const Label_File& file, const std::vector<std::string>& arguments,
                                    const Template_Index& index);

// What an argument stands for: one element, an array of them, or more than can be told by their first variable.
enum class Extent { Element, Array, Several };

// The first variable of the argument, without holding all of them: an array may have any number of elements.
Variable firstVariable(Session& session, const Label_File& file, const std::string& argument,
                       const Template_Index& index, Extent& extent);

// Exactly one variable: an element, or an array, which stands for its first element (`wholeArray` is then set).
Variable findVariable(Session& session, const Label_File& file, const std::string& argument,
                      const Template_Index& index, bool& wholeArray);

// The label text without its index groups: the path through the definitions.
std::string pathOf(const std::string& text);

// * and ? stand for any text and any character; [ and ] are index brackets and stand for themselves.
bool globMatches(const std::string& pattern, const std::string& text);

}  // namespace vornex

#endif
