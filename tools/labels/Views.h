// How people see the bytes of an element: the one table of views, and of the element types that they are for.
#ifndef VORNEX_LABELS_VIEWS_H
#define VORNEX_LABELS_VIEWS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vornex {

// Default: what the element's type says.
enum class View { U8, S8, U16, S16, U32, S32, U64, S64, F32, F64, Bool, Hex, Text, Bytes, Default };

struct View_Entry {
    enum class Kind { Unsigned, Signed, Float, Bool, Hex, Text, Bytes };
    View view;
    const char* name;  // in the label file and behind --as
    Kind kind;
    std::uint32_t width;  // bytes of one value; 0: any number of bytes make one
};

const View_Entry& viewEntry(View view);
// "u16"; "default" for Default.
std::string viewName(View view);
std::optional<View> parseView(const std::string& name);
// All names but "default".
std::vector<std::string> viewNames();
// "unsigned": the kind in one word, for programs of another language that show values.
const char* kindName(View_Entry::Kind kind);

// An elementary type by its code, 1 to 11.
struct Element_Type {
    std::uint32_t bytes;
    View view;  // what Default stands for
};
const Element_Type& elementType(int code);

}  // namespace vornex

#endif
