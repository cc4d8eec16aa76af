#include "import/Import_Table.h"

#include <algorithm>
#include <map>
#include <optional>
#include <stdexcept>

#include "import/Named_Bits.h"
#include "labels/Label_Csv.h"
#include "labels/Label_Tree.h"
#include "text/Csv_Table.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex {
namespace {

using Row = std::vector<Csv_Cell>;
using Cells = std::map<std::string, std::string>;  // by key

// "String[20]" is how some tables write STRING(20).
std::string typeText(const std::string& text) {
    if (lowered(text.substr(0, 7)) != "string[" || text.back() != ']') return text;
    const std::string length = text.substr(7, text.size() - 8);
    const bool isLength = !length.empty() && length.find_first_not_of("0123456789") == std::string::npos;
    return isLength ? "STRING(" + length + ")" : text;
}

// Without the place in the text of one label that the reader saw.
std::string withoutPlace(const std::string& message) {
    const std::size_t begin = message.find_first_not_of(":0123456789 ");
    return begin == std::string::npos ? message : message.substr(begin);
}

// The reader of label tables checks it, as it checks those that people write.
Label labelOf(const Cells& cells) {
    std::string heading = "kind", row = "label";
    for (const auto& [key, text] : cells) {
        heading += "," + key;
        row += "," + formatCsvCell(text);
    }
    try {
        return parseLabelCsv(heading + "\n" + row + "\n", "").labels.at(0);
    } catch (const File_Error& mistake) {
        throw std::invalid_argument(withoutPlace(mistake.what()));
    }
}

class Table_Import {
public:
    Table_Import(const std::string& text, const std::string& tablePath, const Import_Choice& importChoice)
        : path(tablePath),
          choice(importChoice),
          rows(parseCsv(text, tablePath, {findSeparator(text), false})),
          columns(findColumns(rows, choice.map, path)),
          bits(result.file.labels) {}

    Imported take() {
        result.file.path = path;
        tellHeading();
        hasDecimalComma = anyDecimalComma();
        for (std::size_t i = columns.heading + 1; i < rows.size(); ++i)
            takeRow(rows[i]);
        bits.place([this](int line, const std::string& name, const std::string& words) { tell(line, name, words); },
                   [this](int line, const std::string& name, const std::string& why) { refuse(line, name, why); });
        return std::move(result);
    }

private:
    std::string placeOf(int line, const std::string& name) const {
        return path + ":" + std::to_string(line) + ": label '" + name + "': ";
    }
    void refuse(int line, const std::string& name, const std::string& reason) {
        const std::string place = placeOf(line, name);
        const std::string subject = "label '" + name + "': ";
        const bool isNamed = reason.compare(0, subject.size(), subject) == 0;
        result.notTaken.push_back(place + (isNamed ? reason.substr(subject.size()) : reason));
    }
    void tell(int line, const std::string& name, const std::string& words) {
        result.notes.push_back(placeOf(line, name) + words);
    }

    void tellHeading() {
        if (columns.heading > 0)
            result.notes.push_back(path + ": above the headings, " + counted(columns.heading, "row") + " left out");
        if (!columns.leftOut.empty()) result.notes.push_back(path + ": columns left out: " + joined(columns.leftOut));
    }

    std::string cellOf(const Row& row, const std::string& key) const {
        const auto column = columns.at.find(key);
        return column == columns.at.end() || column->second >= row.size() ? "" : trimmed(row[column->second].text);
    }

    bool anyDecimalComma() const {
        return std::any_of(rows.begin() + static_cast<std::ptrdiff_t>(columns.heading) + 1, rows.end(),
                           [&](const Row& row) {
                               return std::any_of(columns.at.begin(), columns.at.end(), [&](const auto& column) {
                                   if (keyOf(column.first).kind != Label_Key::Kind::Number) return false;
                                   return cellOf(row, column.first).find(',') != std::string::npos;
                               });
                           });
    }

    std::string numberText(const std::string& key, std::string text) const {
        if (!hasDecimalComma) return text;
        if (text.find('.') != std::string::npos)
            throw std::invalid_argument(key + " '" + text + "' has a point, this table's numbers have a decimal comma");
        std::replace(text.begin(), text.end(), ',', '.');
        return text;
    }

    void takeRow(const Row& row) {
        const std::string name = cellOf(row, "name");
        try {
            takeLabel(row, name);
        } catch (const std::invalid_argument& reason) {
            refuse(row[0].line, name, reason.what());
        }
    }

    void takeLabel(const Row& row, const std::string& name) {
        const std::size_t width = rows[columns.heading].size();
        for (std::size_t i = width; i < row.size(); ++i) {
            if (!trimmed(row[i].text).empty())
                throw std::invalid_argument("a cell beyond the last column; it stands in column " +
                                            std::to_string(row[i].column));
        }
        Cells cells;
        for (const auto& column : columns.at) {
            const std::string text = cellOf(row, column.first);
            if (text.empty()) continue;
            const bool isNumber = keyOf(column.first).kind == Label_Key::Kind::Number;
            cells[column.first] = isNumber ? numberText(column.first, text) : text;
        }
        cells["type"] = typeText(cellOf(row, "type"));
        const Import_Address address = parseImportAddress(cellOf(row, "at"), choice.count, choice.base);
        cells["at"] = std::to_string(address.byte);
        const auto [first, isNew] = lineOf.emplace(name, row[0].line);
        if (!isNew)
            throw std::invalid_argument("the name is used twice, first in line " + std::to_string(first->second));
        if (address.bit && lowered(cells["type"]) == "bool") return takeBit(cells, address, row[0].line);
        if (address.bit.value_or(0) != 0)
            throw std::invalid_argument("only a BOOL lies at a bit; this is " + cells["type"]);
        Label label = labelOf(cells);
        label.line = row[0].line;
        result.file.labels.push_back(std::move(label));
    }

    void takeBit(Cells cells, const Import_Address& address, int line) {
        const std::string name = cells["name"];
        for (const char* kept : {"name", "type", "at"})
            cells.erase(kept);
        std::vector<std::string> lost;
        for (const auto& cell : cells)
            lost.push_back(cell.first);
        bits.add({name, address.byte, *address.bit, line, joined(lost)});
    }

    const std::string path;
    const Import_Choice& choice;
    const std::vector<Row> rows;
    const Import_Columns columns;
    std::map<std::string, int> lineOf;  // where a name stands first
    bool hasDecimalComma = false;
    Imported result;
    Named_Bits bits;
};

}  // namespace

Imported importTable(const std::string& text, const std::string& path, const Import_Choice& choice) {
    const std::size_t begin = text.find_first_not_of("\xEF\xBB\xBF \t\r\n");
    if (begin != std::string::npos && text[begin] == '<')
        throw File_Error(path + ":1: is XML; only tables (CSV) are imported");
    return Table_Import(text, path, choice).take();
}

}  // namespace vornex
