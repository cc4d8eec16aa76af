// Which labels are to hold which values: a recipe, as a file or on the command line.
#ifndef VORNEX_VALUES_RECIPE_H
#define VORNEX_VALUES_RECIPE_H

#include <optional>
#include <string>
#include <vector>

#include "labels/Label_Type.h"
#include "text/Text_Input.h"

namespace vornex {

struct Assignment {
    std::string label;
    std::string value;         // as it is typed
    std::optional<View> view;  // that the value is seen under; nothing: the label's own
    bool isRaw = false;        // the value is as the bytes have it, not as it is shown
    std::string place = {};    // "recipe.csv:7: ", for messages
};

// "LABEL=VALUE", blanks around both left out. Throws std::invalid_argument.
Assignment parseAssignment(const std::string& text);

// The file's text in one of three forms, found out by its beginning:
// - JSON: an object a line, or a list of objects, each with "label" and "value", and "view" if it is another one than
// the
//   label's: what `read -o json` prints
// - CSV with the columns label and value, and view if there is one: what `read -o csv` prints
// - LABEL=VALUE, one a line; # begins a comment at the beginning of a line
// Other keys and columns are left alone. Throws File_Error with the line for what is none of these, a value that was
// not known when the file was written, and a label that stands twice.
std::vector<Assignment> parseRecipe(const std::string& text, const std::string& path);

}  // namespace vornex

#endif
