#include "text/Json_Tree.h"

#include <cstddef>
#include <iterator>
#include <limits>
#include <set>

#include <nlohmann/json.hpp>

#include "text/Hex.h"
#include "text/Text.h"
#include "text/Text_Input.h"

namespace vornex {
namespace {

using nlohmann::json;

constexpr std::size_t LongestWord = 60;  // of what a message quotes
constexpr std::size_t DepthLimit = 16;   // a label file needs 5
constexpr std::size_t NodeLimit =
    4000000;  // 200,000 labels with every key; a node takes a hundred times the memory of a digit

// Counts lines while the parser reads, because the parser tells positions only of errors.
class Line_Iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    Line_Iterator(const char* place, int* lineCount) : at(place), line(lineCount) {}
    reference operator*() const { return *at; }
    Line_Iterator& operator++() {
        if (*at == '\n') ++*line;
        ++at;
        return *this;
    }
    Line_Iterator operator++(int) {
        Line_Iterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const Line_Iterator& other) const { return at == other.at; }
    bool operator!=(const Line_Iterator& other) const { return at != other.at; }

private:
    const char* at;
    int* line;
};

// Builds the tree from the parser's events; the line counter stands at the token that the event is about.
class Tree_Builder : public nlohmann::json_sax<json> {
public:
    Tree_Builder(std::string filePath, const int* lineCount) : path(std::move(filePath)), line(lineCount) {}

    Json_Node root;

    bool null() override { return place(Json_Node::Kind::Null), true; }
    bool boolean(bool value) override {
        place(Json_Node::Kind::Bool).integer = value;
        return true;
    }
    bool number_integer(number_integer_t value) override { return integer(value); }
    bool number_unsigned(number_unsigned_t value) override {
        if (value > static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max())) {
            return real(std::to_string(value));
        }
        return integer(static_cast<std::int64_t>(value));
    }
    bool number_float(number_float_t, const string_t& digits) override { return real(digits); }
    bool string(string_t& value) override {
        place(Json_Node::Kind::String).text = value;
        return true;
    }
    bool binary(json::binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(Json_Node::Kind::Object); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(Json_Node::Kind::Array); }
    bool end_array() override { return close(); }
    bool key(string_t& value) override {
        if (!keys.back().insert(value).second) fail("the key \"" + value + "\" stands twice");
        nextKey = value;
        nextKeyLine = *line;
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& error) override {
        // the parser's text begins with a tag and the line, which ours says already
        const std::string text = error.what();
        const std::size_t tag = text.find("] "), column = text.find("column ");
        const std::size_t begin = column != std::string::npos ? column : tag == std::string::npos ? 0 : tag + 2;
        std::vector<std::string> words = split(text.substr(begin), ' ');
        for (std::string& word : words)
            word = cutTo(word, LongestWord);
        fail(joined(words, " "));
    }

private:
    bool integer(std::int64_t value) {
        place(Json_Node::Kind::Integer).integer = value;
        return true;
    }
    bool real(const std::string& digits) {
        place(Json_Node::Kind::Real).text = digits;
        return true;
    }
    bool open(Json_Node::Kind kind) {
        if (stack.size() >= DepthLimit) fail("nested too deep");
        stack.push_back(&place(kind));
        keys.emplace_back();
        return true;
    }
    bool close() {
        stack.pop_back();
        keys.pop_back();
        return true;
    }
    // Puts a new node where the document stands. Only the innermost open node grows, and none of the nodes it holds is
    // open, so the pointers in the stack stay good.
    Json_Node& place(Json_Node::Kind kind) {
        if (++nodes > NodeLimit) fail("more than four million values");
        Json_Node* node = &root;
        if (!stack.empty()) {
            stack.back()->entries.push_back({nextKey, nextKey.empty() ? *line : nextKeyLine, {}});
            node = &stack.back()->entries.back().value;
            nextKey.clear();
        }
        node->kind = kind;
        node->line = *line;
        return *node;
    }
    [[noreturn]] void fail(const std::string& reason) const {
        throw File_Error(path + ":" + std::to_string(*line) + ": " + reason);
    }

    std::string path;
    const int* line;
    std::vector<Json_Node*> stack;
    std::vector<std::set<std::string>> keys;  // of each open node
    std::size_t nodes = 0;
    std::string nextKey;
    int nextKeyLine = 0;
};

}  // namespace

const Json_Entry* Json_Node::find(const std::string& key) const {
    for (const Json_Entry& entry : entries) {
        if (entry.key == key) return &entry;
    }
    return nullptr;
}

Json_Node parseJson(const std::string& text, const std::string& path) {
    int line = 1;
    Tree_Builder builder(path, &line);
    json::sax_parse(Line_Iterator(text.data(), &line), Line_Iterator(text.data() + text.size(), &line), &builder,
                    json::input_format_t::json, true, true);
    return std::move(builder.root);
}

std::string escapedControls(const std::string& text) {
    std::string escaped;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto code = static_cast<unsigned char>(text[at]);
        const auto next = at + 1 < text.size() ? static_cast<unsigned char>(text[at + 1]) : 0;
        const bool isPair = code == 0xC2 && next < 0xA0;
        if (!isPair && code != 0x7F) {
            escaped += text[at];
            continue;
        }
        escaped += "\\u00" + hexDigits(isPair ? next : code, 2);
        at += isPair ? 1 : 0;
    }
    return escaped;
}

std::string jsonString(const std::string& text) {
    return escapedControls(json(text).dump(-1, ' ', false, json::error_handler_t::replace));
}

const char* kindName(Json_Node::Kind kind) {
    switch (kind) {
        case Json_Node::Kind::Null: return "null";
        case Json_Node::Kind::Bool: return "true or false";
        case Json_Node::Kind::Integer: return "a whole number";
        case Json_Node::Kind::Real: return "a number";
        case Json_Node::Kind::String: return "a text";
        case Json_Node::Kind::Array: return "a list";
        case Json_Node::Kind::Object: return "an object";
    }
    return "something else";
}

}  // namespace vornex
