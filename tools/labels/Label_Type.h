// Types as people write them, wherever a type stands: in label files, in tables, on the command line.
#ifndef VORNEX_LABELS_LABEL_TYPE_H
#define VORNEX_LABELS_LABEL_TYPE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vornex {

// ---- Views: how people see the bytes of an element, and the element types that they are for.

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

// ---- Types.

// Inclusive bounds of one array dimension.
struct Index_Bounds {
    int low = 0;
    int high = 0;
};
inline std::uint64_t extentOf(const Index_Bounds& bounds) {
    return static_cast<std::uint64_t>(std::int64_t(bounds.high) - bounds.low + 1);
}

// A type by its standard name: a type code and a view.
struct Type_Name {
    const char* name;  // "INT"
    int code;
    View view;
    const char* meaning;  // a few words
};

// IEC 61131-3's names, in the order of their sizes.
const std::vector<Type_Name>& typeNames();
// In upper or lower case; null for another word.
const Type_Name* findTypeName(const std::string& name);

struct Type_Ref {
    int code = 0;                      // 1 to 11, or 12 for a structure
    std::uint32_t textBytes = 0;       // n of STRING(n), whose code is 1; 0: another type
    const Type_Name* name = nullptr;   // when it was written by its name; it decides the view
    std::string structName;            // set for code 12
    std::vector<Index_Bounds> bounds;  // outermost first; empty: not an array
    int radix = 10;                    // of the indexes
};

// The most that STRING(n) takes, as the texts of type codes 10 and 11 do.
constexpr std::uint32_t LongestText = 255;

// Reads a type text. ELEMENT is a standard name ("INT", "real", "STRING(20)"), a type code 1 to 11, or any other word,
// which is then a structure's name; whether there is such a structure, the label file knows.
//   ELEMENT                            REAL   7   MotorT   STRING(20)
//   ELEMENT[LOW..HIGH,...]             INT[1..4]   4[0..2,0..3]
//   ARRAY [LOW..HIGH,...] OF ELEMENT   ARRAY [1..4, 0..2] OF INT; arrays of arrays become one array of more dimensions
//   ELEMENT*N                          REAL*8, the same as REAL[0..7]
// An array may end in /RADIX of its indexes: 1[0..31]/16. Blanks may stand around the parts. The standard names and
// ARRAY, OF are taken in upper and lower case, structures exactly as written.
// Throws std::invalid_argument with the reason.
Type_Ref parseType(const std::string& text);
// The short form that reads back as the same type: "INT[1..4]".
std::string formatType(const Type_Ref& type);
// The same without bounds and radix: "INT", "STRING(20)", "MotorT".
std::string elementName(const Type_Ref& type);
// Why a structure cannot have this name, because a type text would not lead to it; empty when it can.
std::string structNameProblem(const std::string& name);

// Elements of the whole array, 1 when it is none.
std::uint64_t elementCount(const Type_Ref& type);

// For --as: a view's name or a standard type name, which stands for its view. All words, and the view of one of them.
std::vector<std::string> viewWords();
std::optional<View> parseViewWord(const std::string& word);

}  // namespace vornex

#endif
