// JSON with comments as a tree that remembers the line of everything, for messages that name it.
#ifndef VORNEX_TEXT_JSON_TREE_H
#define VORNEX_TEXT_JSON_TREE_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vornex {

struct Json_Node;

// A value under its key; `line` is the key's.
struct Json_Entry;

struct Json_Node {
    enum class Kind { Null, Bool, Integer, Real, String, Array, Object };
    Kind kind = Kind::Null;
    int line = 0;                     // where the value begins, counted from 1
    std::string text;                 // of a string; of a Real its digits
    std::int64_t integer = 0;         // of an integer, values beyond it come as Real; 1 for true
    std::vector<Json_Entry> entries;  // of an array (keys empty) or object, in file order

    // The entry with this key, null when there is none.
    const Json_Entry* find(const std::string& key) const;
};

struct Json_Entry {
    std::string key;
    int line = 0;
    Json_Node value;
};

// Throws File_Error "PATH:LINE: REASON" for bad syntax, a key that stands twice in one object, and nesting beyond
// what any label file needs.
Json_Node parseJson(const std::string& text, const std::string& path);

// JSON text with \u00NN for the control characters that JSON lets stand: U+007F to U+009F.
std::string escapedControls(const std::string& text);
// The text as JSON writes it, in quotes. Bytes that are not UTF-8 become U+FFFD.
std::string jsonString(const std::string& text);

// "an object", "a number", ...: for messages.
const char* kindName(Json_Node::Kind kind);

}  // namespace vornex

#endif
