// The label file as text: in its own notation, a line per structure head, member and label, and as a table.
#include <algorithm>
#include <map>
#include <set>

#include "labels/Label_Csv.h"
#include "labels/Label_Tree.h"
#include "text/Csv_Table.h"
#include "text/Json_Tree.h"
#include "text/Number.h"

namespace vornex {
namespace {

// Those that are written even where no label has something in them.
const std::set<std::string> PlainColumns = {"kind", "name", "type", "at", "size", "view", "unit", "sim"};

std::string namesObject(const Label_Key& key, const Label& label) {
    std::string text;
    for (const auto& [name, value] : namedPairs(label, key)) {
        const bool isText = key.name == std::string("states");
        text += (text.empty() ? "" : ", ") + jsonString(name) + ": " + (isText ? jsonString(value) : value);
    }
    return "{" + text + "}";
}

std::string labelLine(const Label& label) {
    std::string line;
    for (const Label_Key& key : labelKeys()) {
        const std::string cell = labelCell(label, key);
        const bool isNeeded = line.empty() || key.kind == Label_Key::Kind::Type;
        if (cell.empty() && !isNeeded) continue;
        line += (line.empty() ? "{\"" : ", \"") + std::string(key.name) + "\": ";
        switch (key.kind) {
            case Label_Key::Kind::Text:
            case Label_Key::Kind::Type:
            case Label_Key::Kind::View: line += jsonString(cell); break;
            case Label_Key::Kind::Address:
            case Label_Key::Kind::Count:
            case Label_Key::Kind::Number: line += cell; break;
            case Label_Key::Kind::Names: line += namesObject(key, label); break;
        }
    }
    return line + "}";
}

std::string labelLines(const std::vector<Label>& labels, const std::string& indent) {
    std::string lines;
    for (const Label& label : labels)
        lines += (lines.empty() ? "\n" : ",\n") + indent + labelLine(label);
    return "[" + lines + (lines.empty() ? "]" : "\n" + indent.substr(2) + "]");
}

std::string structLines(const Label_File& file) {
    std::string lines;
    for (const auto& [name, type] : file.structs) {
        lines += (lines.empty() ? "\n    " : ",\n    ") + jsonString(name) +
                 ": {\"size\": " + std::to_string(type.size) + ", \"members\": " + labelLines(type.members, "      ") +
                 "}";
    }
    return "{" + lines + "\n  }";
}

}  // namespace

std::vector<std::string> allColumns() {
    std::vector<std::string> columns = {"kind"};
    for (const Label_Key& key : labelKeys()) {
        columns.push_back(key.name);
        if (key.kind == Label_Key::Kind::Address) columns.push_back("size");
    }
    return columns;
}

const Label_Key& keyOf(const std::string& column) {
    const auto found = std::find_if(labelKeys().begin(), labelKeys().end(),
                                    [&column](const Label_Key& key) { return column == key.name; });
    return *found;
}

std::vector<std::pair<std::string, std::string>> namedPairs(const Label& label, const Label_Key& key) {
    const bool isStates = key.name == std::string("states");
    std::vector<std::pair<std::string, std::string>> pairs;
    for (const Named_Number& one : isStates ? meaningOf(label).states : meaningOf(label).bits) {
        const std::string number = std::to_string(one.number);
        pairs.emplace_back(isStates ? number : one.name, isStates ? one.name : number);
    }
    return pairs;
}

std::string labelCell(const Label& label, const Label_Key& key) {
    const std::string name = key.name;
    const Meaning& meaning = meaningOf(label);
    const auto number = [](const std::optional<double>& value) { return value ? shortestNumber(*value) : ""; };
    if (name == "name") return label.name;
    if (name == "type") return formatType(label.type);
    if (name == "at") return std::to_string(label.at);
    if (name == "view") return label.view == View::Default ? "" : viewName(label.view);
    if (name == "unit") return meaning.unit;
    if (name == "decimals") return meaning.decimals ? std::to_string(*meaning.decimals) : "";
    if (name == "scale") return number(meaning.scale);
    if (name == "offset") return number(meaning.offset);
    if (name == "min") return number(meaning.min);
    if (name == "max") return number(meaning.max);
    if (name == "low") return number(meaning.low);
    if (name == "high") return number(meaning.high);
    if (name == "description") return meaning.description;
    if (name == "sim") return label.sim;
    std::string cell;
    for (const auto& [left, right] : namedPairs(label, key))
        cell.append(cell.empty() ? "" : "|").append(left).append("=").append(right);
    return cell;
}

std::string formatLabelJson(const Label_File& file) {
    std::string text = "{\n  \"format\": 1,\n";
    if (!file.target.empty()) text += "  \"target\": " + jsonString(file.target) + ",\n";
    if (!file.structs.empty()) text += "  \"structs\": " + structLines(file) + ",\n";
    return text + "  \"labels\": " + labelLines(file.labels, "    ") + "\n}\n";
}

namespace {

class Table_Writer {
public:
    explicit Table_Writer(char cellSeparator) : separator(cellSeparator) {}

    void row(const std::vector<std::string>& cells) {
        const char* before = "";
        const std::string between(1, separator);
        for (const std::string& cell : cells) {
            text += before + formatCsvCell(cell, separator);
            before = between.c_str();
        }
        text += '\n';
    }

    std::string text;

private:
    const char separator;
};

bool anyHas(const Label_File& file, const Label_Key& key) {
    const auto has = [&key](const Label& label) { return !labelCell(label, key).empty(); };
    return std::any_of(file.labels.begin(), file.labels.end(), has) ||
           std::any_of(file.structs.begin(), file.structs.end(), [&has](const auto& entry) {
               return std::any_of(entry.second.members.begin(), entry.second.members.end(), has);
           });
}

std::vector<std::string> columnsOf(const Label_File& file) {
    std::vector<std::string> columns;
    for (const std::string& column : allColumns()) {
        if (PlainColumns.count(column) || anyHas(file, keyOf(column))) columns.push_back(column);
    }
    return columns;
}

}  // namespace

std::string formatLabelCsv(const Label_File& file, char separator) {
    const std::vector<std::string> columns = columnsOf(file);
    Table_Writer writer(separator);
    writer.row(columns);
    const auto plain = [&](std::map<std::string, std::string> cells) {
        std::vector<std::string> row;
        row.reserve(columns.size());
        for (const std::string& column : columns)
            row.push_back(cells[column]);
        writer.row(row);
    };
    const auto full = [&](const char* kind, const std::string& owner, const Label& label) {
        std::vector<std::string> row = {kind};
        for (auto column = columns.begin() + 1; column != columns.end(); ++column)
            row.push_back(*column == "size" ? "" : labelCell(label, keyOf(*column)));
        row[1] = owner + row[1];
        writer.row(row);
    };
    if (!file.target.empty()) plain({{"kind", "target"}, {"name", file.target}});
    for (const auto& [name, type] : file.structs) {
        plain({{"kind", "struct"}, {"name", name}, {"size", std::to_string(type.size)}});
        for (const Label& member : type.members)
            full("member", name + ".", member);
    }
    for (const Label& label : file.labels)
        full("label", "", label);
    return writer.text;
}

}  // namespace vornex
