#include "labels/Label_Csv.h"

#include <algorithm>
#include <map>
#include <set>

#include "labels/Label_Tree.h"
#include "text/Csv_Table.h"
#include "text/Nearest_Word.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex {
namespace {

Json_Node textNode(const Csv_Cell& cell) {
    Json_Node node;
    node.kind = Json_Node::Kind::String;
    node.line = cell.line;
    node.text = cell.text;
    return node;
}

Json_Node numberNode(int line, std::uint64_t number) {
    Json_Node node;
    node.kind = Json_Node::Kind::Integer;
    node.line = line;
    node.integer = static_cast<std::int64_t>(number);
    return node;
}

Json_Node emptyNode(Json_Node::Kind kind, int line) {
    Json_Node node;
    node.kind = kind;
    node.line = line;
    return node;
}

// Turns the rows into the tree that the same label file would have in its own notation.
class Table_Reader {
public:
    std::vector<std::string> warnings;

    Table_Reader(const std::string& csvText, const std::string& csvPath)
        : path(csvPath), rows(parseCsv(csvText, csvPath)) {}

    Json_Node tree() {
        if (rows.empty()) throw File_Error(path + ":1: the table is empty; its first row names the columns");
        readHeading();
        for (std::size_t i = 1; i < rows.size(); ++i)
            readRow(rows[i]);
        addMembers();
        Json_Node root = emptyNode(Json_Node::Kind::Object, 1);
        root.entries.push_back({"format", 1, numberNode(1, 1)});
        if (target.line > 0) root.entries.push_back({"target", target.line, target});
        root.entries.push_back({"structs", structs.line, structs});
        root.entries.push_back({"labels", labels.line, labels});
        return root;
    }

private:
    using Row = std::vector<Csv_Cell>;

    std::string placeOf(const Csv_Cell& cell) const {
        return path + ":" + std::to_string(cell.line) + ":" + std::to_string(cell.column) + ": ";
    }
    [[noreturn]] void fail(const Csv_Cell& cell, const std::string& reason) const {
        throw File_Error(placeOf(cell) + reason);
    }

    void readHeading() {
        for (const Csv_Cell& cell : rows[0]) {
            const std::string name = trimmed(cell.text);
            const std::vector<std::string> known = allColumns();
            if (name.empty()) continue;  // a spreadsheet may leave empty columns behind
            if (std::find(known.begin(), known.end(), name) == known.end()) {
                warnings.push_back(placeOf(cell) + "unknown column '" + name + "'" + didYouMean(name, known));
                continue;
            }
            if (!columns.emplace(name, &cell - rows[0].data()).second) {
                fail(cell, "column '" + name + "' stands twice");
            }
        }
        for (const char* needed : {"kind", "name"}) {
            if (!columns.count(needed)) fail(rows[0][0], std::string("column '") + needed + "' is missing");
        }
    }

    // The cell of a column; without one an empty cell that stands at the row's beginning.
    Csv_Cell cell(const Row& row, const char* column) const {
        const auto found = columns.find(column);
        if (found == columns.end() || static_cast<std::size_t>(found->second) >= row.size()) {
            return {"", row[0].line, row[0].column};
        }
        Csv_Cell result = row[static_cast<std::size_t>(found->second)];
        const std::string name = column;
        const bool isKey = name != "kind" && name != "size";
        if (!isKey || keyOf(name).kind != Label_Key::Kind::Text) result.text = trimmed(result.text);
        return result;
    }

    void readRow(const Row& row) {
        for (std::size_t i = rows[0].size(); i < row.size(); ++i) {
            if (!row[i].text.empty())
                fail(row[i], "a cell beyond the last column; a text with the separator in it stands in quotes");
        }
        const Csv_Cell kind = cell(row, "kind");
        if (kind.text == "label") return labels.entries.push_back({"", kind.line, labelNode(row, cell(row, "name"))});
        if (kind.text == "member") return members.push_back(&row);
        if (kind.text == "struct") return readStruct(row);
        if (kind.text == "target") return readTarget(row);
        fail(kind, "'" + kind.text + "' is no kind of row; it is label, struct, member or target");
    }

    // No cell of a column that this kind of row has no use for: its text would be lost.
    void expectOnly(const Row& row, const std::set<std::string>& used) const {
        for (const auto& [column, at] : columns) {
            const Csv_Cell found = cell(row, column.c_str());
            if (!used.count(column) && !found.text.empty())
                fail(found, "a " + cell(row, "kind").text + " has no '" + column + "'");
        }
    }

    void readTarget(const Row& row) {
        expectOnly(row, {"kind", "name"});
        if (target.line > 0) fail(row[0], "a second target");
        target = textNode(cell(row, "name"));
    }

    void readStruct(const Row& row) {
        expectOnly(row, {"kind", "name", "size"});
        const Csv_Cell name = cell(row, "name");
        if (!structAt.emplace(name.text, structs.entries.size()).second)
            fail(name, "structure '" + name.text + "' stands twice");
        Json_Node type = emptyNode(Json_Node::Kind::Object, name.line);
        type.entries.push_back({"size", name.line, number(row, "size")});
        type.entries.push_back({"members", name.line, emptyNode(Json_Node::Kind::Array, name.line)});
        structs.entries.push_back({name.text, name.line, type});
    }

    void addMembers() {
        for (const Row* row : members) {
            Csv_Cell name = cell(*row, "name");
            const std::size_t dot = name.text.find('.');
            if (dot == std::string::npos) fail(name, "a member's name is STRUCTURE.MEMBER");
            const std::string owner = name.text.substr(0, dot);
            name.text.erase(0, dot + 1);
            Json_Node* const list = membersOf(owner);
            if (!list) fail(name, "there is no row for the structure '" + owner + "'");
            list->entries.push_back({"", name.line, labelNode(*row, name)});
        }
    }

    Json_Node* membersOf(const std::string& owner) {
        const auto found = structAt.find(owner);
        return found == structAt.end() ? nullptr : &structs.entries[found->second].value.entries[1].value;
    }

    Json_Node labelNode(const Row& row, const Csv_Cell& name) const {
        const Csv_Cell size = cell(row, "size");
        if (!size.text.empty()) fail(size, "a " + cell(row, "kind").text + " has no 'size'");
        Json_Node node = emptyNode(Json_Node::Kind::Object, name.line);
        for (const Label_Key& key : labelKeys()) {
            const Csv_Cell found = key.name == std::string("name") ? name : cell(row, key.name);
            const bool isNeeded = key.kind == Label_Key::Kind::Type || key.kind == Label_Key::Kind::Address;
            if (!found.text.empty() || isNeeded || key.name == std::string("name"))
                node.entries.push_back({key.name, found.line, nodeOf(key, found)});
        }
        return node;
    }

    Json_Node nodeOf(const Label_Key& key, const Csv_Cell& found) const {
        try {
            switch (key.kind) {
                case Label_Key::Kind::Text: break;
                case Label_Key::Kind::Type: parseType(found.text); break;
                case Label_Key::Kind::View:
                    if (!parseView(found.text)) throw std::invalid_argument("unknown view '" + found.text + "'");
                    break;
                case Label_Key::Kind::Address:
                case Label_Key::Kind::Count:
                    return numberNode(found.line, unsignedNumber(found.text, 0, 0xFFFFFFFF, key.name));
                case Label_Key::Kind::Number: return realNode(key, found);
                case Label_Key::Kind::Names: return namesNode(key, found);
            }
        } catch (const std::invalid_argument& refusal) {
            fail(found, refusal.what());
        }
        return textNode(found);
    }

    static Json_Node realNode(const Label_Key& key, const Csv_Cell& found) {
        if (!readReal<double>(found.text))
            throw std::invalid_argument(key.name + (" '" + found.text) + "' is not a number");
        Json_Node node = textNode(found);
        node.kind = Json_Node::Kind::Real;
        return node;
    }

    // "0=off|1=auto"
    static Json_Node namesNode(const Label_Key& key, const Csv_Cell& found) {
        Json_Node node = emptyNode(Json_Node::Kind::Object, found.line);
        for (const std::string& pair : splitTrimmed(found.text, '|')) {
            const std::size_t equals = pair.find('=');
            if (equals == std::string::npos)
                throw std::invalid_argument("'" + pair + "' in " + key.name + " is not LEFT=RIGHT");
            Csv_Cell right = found;
            right.text = trimmed(pair.substr(equals + 1));
            const bool isStates = key.name == std::string("states");
            const Json_Node value =
                isStates ? textNode(right) : numberNode(found.line, unsignedNumber(right.text, 0, 63, key.name));
            node.entries.push_back({trimmed(pair.substr(0, equals)), found.line, value});
        }
        return node;
    }

    Json_Node number(const Row& row, const char* column) const {
        const Csv_Cell found = cell(row, column);
        try {
            return numberNode(found.line, unsignedNumber(found.text, 0, 0xFFFFFFFF, column));
        } catch (const std::invalid_argument& refusal) {
            fail(found, refusal.what());
        }
    }

    const std::string path;
    const std::vector<Row> rows;
    std::map<std::string, std::ptrdiff_t> columns;
    std::map<std::string, std::size_t> structAt;  // their places in `structs`
    std::vector<const Row*> members;              // attached when all structures are known
    Json_Node target;
    Json_Node structs = emptyNode(Json_Node::Kind::Object, 1);
    Json_Node labels = emptyNode(Json_Node::Kind::Array, 1);
};

}  // namespace

Label_File parseLabelCsv(const std::string& text, const std::string& path) {
    Table_Reader reader(text, path);
    const Json_Node tree = reader.tree();
    Label_File file = labelFileOf(tree, path);
    file.warnings.insert(file.warnings.begin(), reader.warnings.begin(), reader.warnings.end());
    return file;
}

}  // namespace vornex
