#include "labels/Views.h"

#include "labels/Label_Type.h"

namespace vornex {
namespace {

using Kind = View_Entry::Kind;

// In the order of View.
constexpr View_Entry Views[] = {
    {View::U8, "u8", Kind::Unsigned, 1},        {View::S8, "s8", Kind::Signed, 1},
    {View::U16, "u16", Kind::Unsigned, 2},      {View::S16, "s16", Kind::Signed, 2},
    {View::U32, "u32", Kind::Unsigned, 4},      {View::S32, "s32", Kind::Signed, 4},
    {View::U64, "u64", Kind::Unsigned, 8},      {View::S64, "s64", Kind::Signed, 8},
    {View::F32, "f32", Kind::Float, 4},         {View::F64, "f64", Kind::Float, 8},
    {View::Bool, "bool", Kind::Bool, 0},        {View::Hex, "hex", Kind::Hex, 0},
    {View::Text, "text", Kind::Text, 0},        {View::Bytes, "bytes", Kind::Bytes, 0},
    {View::Default, "default", Kind::Bytes, 0},
};

// By type code.
constexpr Element_Type ElementTypes[] = {
    {0, View::Default}, {1, View::U8},  {1, View::U8},  {2, View::U16}, {2, View::U16},    {4, View::U32},
    {4, View::U32},     {4, View::U32}, {8, View::U64}, {8, View::U64}, {255, View::Text}, {255, View::Text},
};

}  // namespace

const View_Entry& viewEntry(View view) { return Views[static_cast<std::size_t>(view)]; }

std::string viewName(View view) { return viewEntry(view).name; }

std::optional<View> parseView(const std::string& name) {
    for (const View_Entry& entry : Views) {
        if (name == entry.name && entry.view != View::Default) return entry.view;
    }
    return std::nullopt;
}

std::vector<std::string> viewNames() {
    std::vector<std::string> names;
    for (const View_Entry& entry : Views)
        names.push_back(entry.name);
    names.pop_back();  // "default" is not written
    return names;
}

const char* kindName(Kind kind) {
    constexpr const char* Names[] = {"unsigned", "signed", "float", "bool", "hex", "text", "bytes"};
    return Names[static_cast<std::size_t>(kind)];
}

const std::vector<Type_Name>& typeNames() {
    static const std::vector<Type_Name> names = {
        {"BOOL", 1, View::Bool, "true or false, in a byte"},
        {"BYTE", 1, View::Hex, "8 bits"},
        {"SINT", 1, View::S8, "whole number with a sign"},
        {"USINT", 1, View::U8, "whole number"},
        {"CHAR", 1, View::Text, "a character"},
        {"WORD", 3, View::Hex, "16 bits"},
        {"INT", 4, View::S16, "whole number with a sign"},
        {"UINT", 3, View::U16, "whole number"},
        {"DWORD", 5, View::Hex, "32 bits"},
        {"DINT", 6, View::S32, "whole number with a sign"},
        {"UDINT", 5, View::U32, "whole number"},
        {"REAL", 7, View::F32, "floating point"},
        {"LWORD", 8, View::Hex, "64 bits"},
        {"LINT", 9, View::S64, "whole number with a sign"},
        {"ULINT", 8, View::U64, "whole number"},
        {"LREAL", 9, View::F64, "floating point"},
        {"STRING", 10, View::Text, "a text of 255 bytes, which can be read only"},
    };
    return names;
}

const Element_Type& elementType(int code) { return ElementTypes[code]; }

}  // namespace vornex
