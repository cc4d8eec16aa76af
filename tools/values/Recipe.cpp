#include "values/Recipe.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <stdexcept>

#include "labels/Label_Type.h"
#include "text/Csv_Table.h"
#include "text/Json_Tree.h"
#include "text/Text.h"
#include "values/Value_Codec.h"

namespace vornex {

namespace {

// The view that `read --raw` tells of a label whose values would be shown otherwise.
const std::string RawView = "raw";

[[noreturn]] void refuse(const std::string& path, int line, const std::string& reason) {
    throw File_Error(path + ":" + std::to_string(line) + ": " + reason);
}

std::optional<View> viewNamed(const std::string& name, const std::string& path, int line) {
    if (name.empty() || name == RawView) return std::nullopt;
    const std::optional<View> view = parseViewWord(name);
    if (!view) refuse(path, line, "unknown view '" + name + "'");
    return view;
}

Value valueOfNode(const Json_Node& node, const std::string& path) {
    switch (node.kind) {
        case Json_Node::Kind::Bool: return node.integer != 0;
        case Json_Node::Kind::Integer: return node.integer;
        case Json_Node::Kind::Real: return Value::number(node.text);
        case Json_Node::Kind::String: return node.text;
        case Json_Node::Kind::Array: break;
        case Json_Node::Kind::Null: refuse(path, node.line, "no value: it was not known");
        case Json_Node::Kind::Object: refuse(path, node.line, "\"value\" is an object");
    }
    std::vector<Value> items;
    for (const Json_Entry& entry : node.entries)
        items.push_back(valueOfNode(entry.value, path));
    return items;
}

Assignment ofObject(const Json_Node& object, const std::string& path) {
    const auto textOf = [&](const char* key) -> std::string {
        const Json_Entry* const entry = object.find(key);
        if (!entry) return "";
        if (entry->value.kind != Json_Node::Kind::String) refuse(path, entry->line, std::string(key) + " is no text");
        return entry->value.text;
    };
    if (object.kind != Json_Node::Kind::Object) refuse(path, object.line, "not an object with label and value");
    Assignment assignment;
    assignment.label = textOf("label");
    const Json_Entry* const value = object.find("value");
    if (assignment.label.empty() || !value) refuse(path, object.line, "an object without label and value");
    assignment.view = viewNamed(textOf("view"), path, object.line);
    assignment.isRaw = textOf("view") == RawView;
    assignment.value = typedText(assignment.view.value_or(View::Default), valueOfNode(value->value, path));
    assignment.place = path + ":" + std::to_string(value->line) + ": ";
    return assignment;
}

// Objects one after the other become a list, each in its line.
std::string asList(const std::string& text) {
    if (text[text.find_first_not_of(" \t\r\n")] == '[') return text;
    std::string list = "[";
    char before = '\0';  // without line ends and blanks
    bool isNewLine = false;
    for (const char letter : text) {
        isNewLine = isNewLine || letter == '\n';
        if (letter == '{' && before == '}' && isNewLine) list += ',';
        list += letter;
        if (letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n') continue;
        before = letter;
        isNewLine = false;
    }
    return list + "]";
}

std::vector<Assignment> ofJson(const std::string& text, const std::string& path) {
    std::vector<Assignment> recipe;
    for (const Json_Entry& entry : parseJson(asList(text), path).entries)
        recipe.push_back(ofObject(entry.value, path));
    return recipe;
}

std::size_t columnOf(const std::vector<Csv_Cell>& heading, const char* name) {
    const auto found =
        std::find_if(heading.begin(), heading.end(), [&](const auto& cell) { return cell.text == name; });
    return static_cast<std::size_t>(found - heading.begin());
}

std::vector<Assignment> ofTable(const std::vector<std::vector<Csv_Cell>>& rows, const std::string& path) {
    const std::vector<Csv_Cell>& heading = rows.front();
    const std::size_t label = columnOf(heading, "label"), value = columnOf(heading, "value");
    const std::size_t view = columnOf(heading, "view"), state = columnOf(heading, "state");
    std::vector<Assignment> recipe;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const auto cell = [&](std::size_t column) { return column < rows[i].size() ? rows[i][column].text : ""; };
        const int line = rows[i].front().line;
        if (rows[i].size() <= std::max(label, value)) refuse(path, line, "a row without label and value");
        if (cell(state) == "unknown") refuse(path, line, "no value: it was not known");
        Assignment assignment{cell(label), cell(value), viewNamed(cell(view), path, line)};
        assignment.isRaw = cell(view) == RawView;
        const bool isList = !assignment.value.empty() && assignment.value.front() == '[';
        if (assignment.view == View::Text && !isList) assignment.value = typedText(View::Text, assignment.value);
        assignment.place = path + ":" + std::to_string(line) + ": ";
        recipe.push_back(assignment);
    }
    return recipe;
}

std::vector<Assignment> ofLines(const std::string& text, const std::string& path) {
    std::vector<Assignment> recipe;
    std::istringstream lines(text);
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        line = trimmed(line);
        if (line.empty() || line.front() == '#') continue;
        try {
            recipe.push_back(parseAssignment(line));
        } catch (const std::invalid_argument& mistake) {
            refuse(path, number, mistake.what());
        }
        recipe.back().place = path + ":" + std::to_string(number) + ": ";
    }
    return recipe;
}

bool isTable(const std::string& text) {
    const std::string heading = text.substr(0, text.find('\n'));
    if (heading.find('=') != std::string::npos) return false;
    const char separator = heading.find(';') == std::string::npos ? ',' : ';';
    const std::vector<std::string> names = splitTrimmed(heading, separator);
    const auto has = [&names](const char* name) { return std::count(names.begin(), names.end(), name) > 0; };
    return has("label") && has("value");
}

}  // namespace

Assignment parseAssignment(const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || trimmed(text.substr(0, equals)).empty()) {
        throw std::invalid_argument("'" + text + "' is not LABEL=VALUE");
    }
    return {trimmed(text.substr(0, equals)), trimmed(text.substr(equals + 1)), std::nullopt};
}

std::vector<Assignment> parseRecipe(const std::string& text, const std::string& path) {
    const char ByteOrderMark[] = "\xEF\xBB\xBF";
    const std::size_t mark = text.compare(0, 3, ByteOrderMark) == 0 ? 3 : 0;
    const std::size_t start = text.find_first_not_of(" \t\r\n", mark);
    if (start == std::string::npos) throw File_Error(path + ": holds no values");
    const std::string rest = text.substr(mark);
    const bool isJson = text[start] == '{' || text[start] == '[';
    std::vector<Assignment> recipe = isJson          ? ofJson(rest, path)
                                     : isTable(rest) ? ofTable(parseCsv(text, path), path)
                                                     : ofLines(rest, path);
    std::map<std::string, std::string> places;
    for (const Assignment& assignment : recipe) {
        const auto [first, isNew] = places.emplace(assignment.label, assignment.place);
        if (isNew) continue;
        throw File_Error(assignment.place + "'" + assignment.label + "' stands already in " +
                         first->second.substr(0, first->second.size() - 2));
    }
    if (recipe.empty()) throw File_Error(path + ": holds no values");
    return recipe;
}

}  // namespace vornex
