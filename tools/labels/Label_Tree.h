// The one place where a label file is checked, whatever notation it came in.
#ifndef VORNEX_LABELS_LABEL_TREE_H
#define VORNEX_LABELS_LABEL_TREE_H

#include <string>
#include <utility>
#include <vector>

#include "labels/Label_File.h"
#include "text/Json_Tree.h"

namespace vornex {

// The keys of a label or member, which are the columns of a table too.
struct Label_Key {
    enum class Kind { Text, Type, Address, View, Count, Number, Names };
    const char* name;
    Kind kind;
    const char* meaning;  // one line, as docs/labels.md has it
};
const std::vector<Label_Key>& labelKeys();
const Label_Key& keyOf(const std::string& name);
// The columns of a table in the order in which they are written: the keys, and those that other rows need.
std::vector<std::string> allColumns();
// What a label has under a key as a table writes it, empty when it has nothing: numbers in digits, names as pairs
// "0=off|1=auto".
std::string labelCell(const Label& label, const Label_Key& key);
// The pairs of a key of names, as the JSON object has them.
std::vector<std::pair<std::string, std::string>> namedPairs(const Label& label, const Label_Key& key);

// The label file that the tree of a JSON file, or a tree of the same shape, describes. Throws File_Error with the line
// that the tree remembers for the mistake.
Label_File labelFileOf(const Json_Node& root, const std::string& path);

// ---- For the parts of that reader.

// What a message is about: the file and, inside it, a label, a structure or a member.
struct Place {
    std::string path;
    std::string subject;  // "label 'Speed': ", or empty

    std::string told(int line, const std::string& reason) const {
        return path + ":" + std::to_string(line) + ": " + subject + reason;
    }
    [[noreturn]] void fail(int line, const std::string& reason) const { throw File_Error(told(line, reason)); }
    Place about(const char* kind, const std::string& name) const {
        return {path, std::string(kind) + " '" + name + "': "};
    }
};

// All but the known keys become warnings.
void checkKeys(const Place& place, const Json_Node& object, const std::vector<std::string>& known, Label_File& file);
void requireKind(const Place& place, const Json_Node& node, Json_Node::Kind kind, const std::string& what);
const Json_Entry& requireKey(const Place& place, const Json_Node& object, const char* key);
// Of a text without control characters.
std::string textOf(const Place& place, const Json_Entry& entry);
std::string optionalText(const Place& place, const Json_Node& object, const char* key);
// A whole number of 32 bits, decimal or "0x64".
std::uint32_t numberOf(const Place& place, const Json_Entry& entry, std::int64_t lowest);
// Refuses characters that label texts give a meaning of their own.
void checkName(const Place& place, int line, const std::string& name);

// `kind`: "label" or "member"; `owner`: what stands before its name in messages.
Label readLabel(const Place& where, const char* kind, const std::string& owner, const Json_Node& object,
                Label_File& file);

}  // namespace vornex

#endif
