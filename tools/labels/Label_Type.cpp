#include "labels/Label_Type.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "text/Number.h"
#include "text/Text.h"

namespace vornex {
namespace {

Index_Bounds parseBounds(const std::string& text) {
    const std::size_t dots = text.find("..");
    if (dots == std::string::npos) throw std::invalid_argument("index bounds '" + text + "' are not LOW..HIGH");
    const auto bound = [](const std::string& number) {
        // the driver is told one past the highest index
        constexpr int Most = std::numeric_limits<int>::max() - 1;
        return wholeNumber<int>(trimmed(number), std::numeric_limits<int>::min(), Most, "index bound");
    };
    const Index_Bounds bounds = {bound(text.substr(0, dots)), bound(text.substr(dots + 2))};
    if (bounds.high < bounds.low) throw std::invalid_argument("index bounds '" + text + "' are upside down");
    return bounds;
}

bool isNumber(const std::string& text) { return text.find_first_not_of("0123456789") == std::string::npos; }

// Whether a text begins with this word, in upper or lower case, and something other than a name goes on behind it.
bool beginsWithWord(const std::string& text, const std::string& word) {
    if (lowered(text.substr(0, word.size())) != word) return false;
    return text.size() == word.size() || std::string(" \t[").find(text[word.size()]) != std::string::npos;
}

// "STRING(20)"; false for another type's text.
bool parseText(const std::string& text, Type_Ref& type) {
    const std::size_t open = text.find('(');
    if (open == std::string::npos) return false;
    const Type_Name* const name = findTypeName(trimmed(text.substr(0, open)));
    if (!name || name->code < 10 || text.back() != ')') {
        throw std::invalid_argument("'" + text + "' is no type; a text of n bytes is STRING(n)");
    }
    const std::string length = trimmed(text.substr(open + 1, text.size() - open - 2));
    type.textBytes = wholeNumber<std::uint32_t>(length, 1, LongestText, "length of a STRING");
    type.code = 1;
    type.name = name;
    return true;
}

void parseElement(const std::string& text, Type_Ref& type) {
    if (text.empty()) throw std::invalid_argument("the type is missing");
    if (isNumber(text)) {
        type.code = wholeNumber(text, 1, 11, "type code (a structure goes by its name)");
    } else if (const Type_Name* const name = findTypeName(text)) {
        type.code = name->code;
        type.name = name;
    } else if (!parseText(text, type)) {
        type.code = 12;
        type.structName = text;
    }
}

// "[1..4, 0..2]" at this place; returns the place behind it.
std::size_t parseGroup(const std::string& text, std::size_t open, Type_Ref& type) {
    const std::size_t close = text.find(']', open);
    if (close == std::string::npos) throw std::invalid_argument("']' is missing in '" + text + "'");
    for (const std::string& bounds : splitTrimmed(text.substr(open + 1, close - open - 1), ','))
        type.bounds.push_back(parseBounds(bounds));
    return close + 1;
}

void parseParts(const std::string& text, Type_Ref& type);

// "ARRAY [1..4] OF INT"
void parseArray(const std::string& text, Type_Ref& type) {
    const std::size_t open = text.find_first_not_of(" \t", 5);
    if (open == std::string::npos || text[open] != '[') {
        throw std::invalid_argument("'" + text + "' is not ARRAY [LOW..HIGH] OF TYPE");
    }
    const std::string rest = trimmed(text.substr(parseGroup(text, open, type)));
    if (!beginsWithWord(rest, "of") || rest.size() < 4) {
        throw std::invalid_argument("OF and a type are missing behind the index bounds of '" + text + "'");
    }
    parseParts(trimmed(rest.substr(2)), type);
}

// Without a radix.
void parseParts(const std::string& text, Type_Ref& type) {
    if (beginsWithWord(text, "array")) return parseArray(text, type);
    const std::size_t open = text.find('['), star = text.find('*');
    parseElement(trimmed(text.substr(0, std::min(open, star))), type);
    if (star < open) {
        constexpr int Most = std::numeric_limits<int>::max() - 1;
        type.bounds.push_back({0, wholeNumber<int>(trimmed(text.substr(star + 1)), 1, Most, "number of elements") - 1});
    } else if (open != std::string::npos) {
        const std::string rest = trimmed(text.substr(parseGroup(text, open, type)));
        if (!rest.empty()) throw std::invalid_argument("'" + rest + "' after the index bounds is not /RADIX");
    }
}

}  // namespace

const Type_Name* findTypeName(const std::string& name) {
    const std::string wanted = lowered(name);
    const auto& all = typeNames();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Type_Name& known) { return lowered(known.name) == wanted; });
    return found == all.end() ? nullptr : &*found;
}

Type_Ref parseType(const std::string& text) {
    Type_Ref type;
    const std::size_t slash = text.find('/');
    parseParts(trimmed(text.substr(0, slash)), type);
    if (slash == std::string::npos) return type;
    if (type.bounds.empty()) throw std::invalid_argument("a radix needs index bounds before it");
    type.radix = wholeNumber(trimmed(text.substr(slash + 1)), 2, 36, "radix");
    return type;
}

std::string elementName(const Type_Ref& type) {
    if (type.code == 12) return type.structName;
    if (!type.name) return std::to_string(type.code);
    return type.textBytes == 0 ? type.name->name : type.name->name + ("(" + std::to_string(type.textBytes) + ")");
}

std::string formatType(const Type_Ref& type) {
    std::string text = elementName(type);
    const char* before = "[";
    for (const Index_Bounds& bounds : type.bounds) {
        text += before + std::to_string(bounds.low) + ".." + std::to_string(bounds.high);
        before = ",";
    }
    if (!type.bounds.empty()) text += ']';
    if (!type.bounds.empty() && type.radix != 10) text += "/" + std::to_string(type.radix);
    return text;
}

std::string structNameProblem(const std::string& name) {
    if (isNumber(name) || name.find_first_of("/*()") != std::string::npos || name != trimmed(name)) {
        return "a structure's name is not a number, has no '/', '*', '(' or ')' and no blanks at its ends";
    }
    if (findTypeName(name) || beginsWithWord(name, "array")) return "a structure cannot have the name of a type";
    return "";
}

std::uint64_t elementCount(const Type_Ref& type) {
    std::uint64_t count = 1;
    for (const Index_Bounds& bounds : type.bounds) {
        const std::uint64_t extent = extentOf(bounds);
        // held at the largest number: far beyond every address already
        if (count > std::numeric_limits<std::uint64_t>::max() / extent)
            return std::numeric_limits<std::uint64_t>::max();
        count *= extent;
    }
    return count;
}

std::vector<std::string> viewWords() {
    std::vector<std::string> words = viewNames();
    for (const Type_Name& type : typeNames())
        words.push_back(type.name);
    return words;
}

std::optional<View> parseViewWord(const std::string& word) {
    const Type_Name* const type = findTypeName(word);
    return type ? type->view : parseView(word);
}

// ---- Views, and the types that they are for.

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
