#include "labels/Label_Csv.h"

#include <map>

#include "text/Csv_Table.h"
#include "text/Json_Tree.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex {
namespace {

const char* const Columns[] = {"kind", "name", "type", "at", "size", "view", "unit", "sim"};

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

    [[noreturn]] void fail(const Csv_Cell& cell, const std::string& reason) const {
        throw File_Error(path + ":" + std::to_string(cell.line) + ":" + std::to_string(cell.column) + ": " + reason);
    }

    void readHeading() {
        for (const Csv_Cell& cell : rows[0]) {
            const std::string name = trimmed(cell.text);
            bool known = name.empty();  // a spreadsheet may leave empty columns behind
            for (const char* column : Columns)
                known = known || name == column;
            if (!known) {
                fail(cell, "unknown column '" + name + "'; they are kind, name, type, at, size, view, unit and sim");
            }
            if (!name.empty() && !columns.emplace(name, &cell - rows[0].data()).second) {
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
        if (name != "name" && name != "unit" && name != "sim") result.text = trimmed(result.text);
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
    void expectEmpty(const Row& row, std::initializer_list<const char*> unused) const {
        for (const char* column : unused) {
            const Csv_Cell found = cell(row, column);
            if (!found.text.empty()) fail(found, "a " + cell(row, "kind").text + " has no '" + column + "'");
        }
    }

    void readTarget(const Row& row) {
        expectEmpty(row, {"type", "at", "size", "view", "unit", "sim"});
        if (target.line > 0) fail(row[0], "a second target");
        target = textNode(cell(row, "name"));
    }

    void readStruct(const Row& row) {
        expectEmpty(row, {"type", "at", "view", "unit", "sim"});
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
        expectEmpty(row, {"size"});
        Json_Node node = emptyNode(Json_Node::Kind::Object, name.line);
        node.entries.push_back({"name", name.line, textNode(name)});
        const Csv_Cell type = cell(row, "type");
        try {
            parseType(type.text);
        } catch (const std::invalid_argument& error) {
            fail(type, error.what());
        }
        node.entries.push_back({"type", type.line, textNode(type)});
        node.entries.push_back({"at", name.line, number(row, "at")});
        const Csv_Cell view = cell(row, "view");
        if (!view.text.empty() && !parseView(view.text)) fail(view, "unknown view '" + view.text + "'");
        for (const char* column : {"view", "unit", "sim"}) {
            const Csv_Cell found = cell(row, column);
            if (!found.text.empty()) node.entries.push_back({column, found.line, textNode(found)});
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

    void label(const char* kind, const std::string& owner, const Label& label) {
        row({kind, owner + label.name, formatType(label.type), std::to_string(label.at), "",
             label.view == View::Default ? "" : viewName(label.view), label.unit, label.sim});
    }

    std::string text;

private:
    const char separator;
};

}  // namespace

Label_File parseLabelCsv(const std::string& text, const std::string& path) {
    return labelFileOf(Table_Reader(text, path).tree(), path);
}

std::string formatLabelCsv(const Label_File& file, char separator) {
    Table_Writer writer(separator);
    writer.row({Columns, Columns + sizeof Columns / sizeof *Columns});
    if (!file.target.empty()) writer.row({"target", file.target, "", "", "", "", "", ""});
    for (const auto& [name, type] : file.structs) {
        writer.row({"struct", name, "", "", std::to_string(type.size), "", "", ""});
        for (const Label& member : type.members)
            writer.label("member", name + ".", member);
    }
    for (const Label& label : file.labels)
        writer.label("label", "", label);
    return writer.text;
}

}  // namespace vornex
