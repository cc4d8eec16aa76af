// The label file: what the controller's memory holds, under which names, and how people see it.
//
// One model for both tools. It knows nothing of the driver and of Qt; vornex-label turns it into driver records.
#ifndef VORNEX_LABELS_LABEL_FILE_H
#define VORNEX_LABELS_LABEL_FILE_H

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "labels/Label_Type.h"
#include "labels/Meaning.h"
#include "text/Text_Input.h"

namespace vornex {

struct Label {
    std::string name;
    Type_Ref type;
    std::uint32_t at = 0;  // label: byte address; member: byte offset in its structure
    View view = View::Default;
    std::shared_ptr<const Meaning> meaning;  // null: none; meaningOf() gives an empty one then
    std::string sim;  // how the simulator moves the value, e.g. "ramp(0,3000,500)"; labels and members
    int line = 0;     // where it stands in the file, counted from 1; 0: unknown
};
const Meaning& meaningOf(const Label& label);

struct Struct_Type {
    std::string name;
    std::uint32_t size = 0;  // bytes of one structure
    std::vector<Label> members;
    int line = 0;
};

struct Label_File {
    std::string path;
    std::string target;  // "host:port", may be empty
    std::map<std::string, Struct_Type> structs;
    std::vector<Label> labels;
    std::vector<std::string> warnings;  // what was passed over: "FILE:LINE: label 'NAME': unknown key ..."
};

// Reads and checks a whole file (JSON with // and /* */ comments). Unknown keys are warned of. Throws File_Error for
// the first mistake: syntax, missing keys, values and meanings that make no sense, unknown types, views and structures,
// structures that contain themselves, bounds upside down, radix outside 2 to 36, addresses beyond 32 bits, duplicate
// names, members outside their structure, structures that multiply to more than a million members. A file whose name
// ends in .csv is read as Label_Csv.h describes.
bool isCsvName(const std::string& path);
Label_File readLabelFile(const std::string& path);
// The same, and what was passed over goes to `warn` line by line. With isStrict it is a mistake like any other.
Label_File readLabelFile(const std::string& path, bool isStrict, const std::function<void(const std::string&)>& warn);
// The same for text in memory that was read from `path`.
Label_File parseLabels(const std::string& text, const std::string& path);
// The same for JSON in memory; `path` is only for messages.
Label_File parseLabelFile(const std::string& text, const std::string& path);

// Of an elementary label or member; never Default.
View viewOf(const Label& label);

// Bytes of one element: 1 1 2 2 4 4 4 8 8 255 255 for codes 1 to 11, n for STRING(n); the structure's size for code 12.
std::uint32_t elementBytes(const Label_File& file, const Type_Ref& type);

// An elementary variable, as reached by a full label text: "Motors[2].Speed", "Grid[1,3]" or "Buf[1A]" (radix 16).
struct Leaf {
    std::string text;                   // as people write it
    const Label* definition = nullptr;  // the label or member that ends the path
    std::uint32_t address = 0;
    int code = 0;               // 1 to 11
    std::uint32_t bytes = 0;    // of one element
    View view = View::Default;  // resolved: never Default
};
// The label text that the driver resolves to the element's first byte. It is the element's own text, but for an element
// of an array of STRING(n): to the driver that is an array of bytes with one dimension more.
std::string driverLabel(const Leaf& leaf);

// Bytes of one value: the driver hands out, and takes, no more at once.
constexpr std::uint64_t LongestValue = 16u << 20;

// A label text that is wanted, with all that lies in it; or the beginning of wanted texts.
struct Wanted_Text {
    std::string text;
    bool isBeginning = false;
};

// Which labels a text may begin with: by their names up to a point or a bracket. For who looks up many texts one by
// one; it does not see labels that come to the file later.
class Label_Index {
public:
    explicit Label_Index(const Label_File& file);
    // Places in Label_File::labels.
    const std::vector<std::size_t>& of(const std::string& text) const;

private:
    std::unordered_map<std::string, std::vector<std::size_t>> byFirstName;
};

// What a walk passes over without looking into it, however large it is. Nothing set: it passes over nothing.
struct Leaf_Filter {
    std::function<bool(const Label&)> definition;  // is this elementary label or member wanted?
    // Only what is wanted, and of the array that it lies in the elements behind it, as far as one value reaches.
    std::vector<Wanted_Text> texts;
    const Label_Index* index =
        nullptr;  // of the file, if there is one: a single text then costs no walk over all labels
};

// Calls `visit` for every elementary element in the file, in file order, arrays in row-major order. Stops when it
// returns false.
void forEachLeaf(const Label_File& file, const std::function<bool(const Leaf&)>& visit,
                 const Leaf_Filter& filter = Leaf_Filter());
// How many elementary elements that is, without walking through them.
std::uint64_t elementsIn(const Label_File& file);
// Whether a label text is this path or leads on from it: "Motors[2].Speed" from "Motors" and "Motors[2]", not "Motor".
bool leadsOnFrom(const std::string& path, const std::string& text);
// The element of this label text.
std::optional<Leaf> findLeaf(const Label_File& file, const std::string& text);
// driverLabel() of the element that this text names; other texts, templates too, stay as they are.
std::string driverSpelling(const Label_File& file, const std::string& text);
// What the tools keep in memory at once.
constexpr std::size_t MostElementsHeld = 1000000;
// Throws the File_Error that says so.
[[noreturn]] void refuseSoMany(const Label_File& file);

}  // namespace vornex

#endif
