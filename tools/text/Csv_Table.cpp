#include "text/Csv_Table.h"

#include <algorithm>

#include "text/Text.h"
#include "text/Text_Input.h"

namespace vornex {
namespace {

constexpr std::size_t CellLimit = 2000000;  // some 250,000 labels
const char ByteOrderMark[] = "\xEF\xBB\xBF";

std::size_t beginOf(const std::string& text) { return text.compare(0, 3, ByteOrderMark) == 0 ? 3 : 0; }

// The separator that the heading line uses, whose cells are plain words. `at`: where the first line begins.
char separatorOf(const std::string& text, std::size_t at) {
    while (at < text.size() && (text[at] == '#' || text[at] == '\n' || text[at] == '\r')) {
        const std::size_t end = text.find('\n', at);
        at = end == std::string::npos ? text.size() : end + 1;
    }
    const std::size_t found = text.find_first_of(",;\n", at);
    return found != std::string::npos && text[found] == ';' ? ';' : ',';
}

class Csv_Reader {
public:
    Csv_Reader(const std::string& csvText, const std::string& csvPath, const Csv_Form& form)
        : text(csvText),
          path(csvPath),
          at(beginOf(csvText)),
          separator(form.separator),
          hasComments(form.hasComments) {}

    std::vector<std::vector<Csv_Cell>> rows() {
        std::vector<std::vector<Csv_Cell>> table;
        while (at < text.size()) {
            if (hasComments && text[at] == '#') {
                while (at < text.size() && take() != '\n') {
                }
                continue;
            }
            std::vector<Csv_Cell> cells = row();
            const bool empty =
                std::all_of(cells.begin(), cells.end(), [](const Csv_Cell& cell) { return cell.text.empty(); });
            if (!empty) table.push_back(std::move(cells));
        }
        return table;
    }

private:
    [[noreturn]] void fail(const Csv_Cell& place, const std::string& reason) const {
        throw File_Error(path + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) + ": " + reason);
    }

    bool atLineEnd() const {
        return at >= text.size() || text[at] == '\n' || (text[at] == '\r' && text.compare(at, 2, "\r\n") == 0);
    }

    bool atCellEnd() const { return atLineEnd() || text[at] == separator; }

    // Takes one byte; bytes inside a UTF-8 character move no column.
    char take() {
        const char letter = text[at++];
        if (letter == '\n') {
            ++line;
            column = 1;
        } else if ((static_cast<unsigned char>(letter) & 0xC0) != 0x80) {
            ++column;
        }
        return letter;
    }

    std::vector<Csv_Cell> row() {
        std::vector<Csv_Cell> cells;
        cells.push_back(cell());
        while (at < text.size() && text[at] == separator) {
            take();
            cells.push_back(cell());
        }
        if (at < text.size() && take() == '\r') take();
        return cells;
    }

    Csv_Cell cell() {
        Csv_Cell found;
        found.line = line;
        found.column = column;
        if (++cellCount > CellLimit) fail(found, "more than two million cells");
        if (at < text.size() && text[at] == '"') {
            quoted(found);
        } else {
            while (!atCellEnd()) {
                if (text[at] == '"') fail({"", line, column}, "a quote inside a cell that does not begin with one");
                found.text += take();
            }
        }
        // What a spreadsheet saves in a code page of its own would reach the label file as broken text.
        if (!isUtf8(found.text)) fail(found, "the text is not UTF-8; save the table as UTF-8");
        return found;
    }

    void quoted(Csv_Cell& found) {
        take();
        for (;;) {
            if (at >= text.size()) fail(found, "the quote that begins here is never closed");
            const char letter = take();
            if (letter != '"') {
                found.text += letter;
            } else if (at < text.size() && text[at] == '"') {
                found.text += take();
            } else {
                break;
            }
        }
        if (!atCellEnd()) fail({"", line, column}, "text after the closing quote");
    }

    const std::string& text;
    const std::string& path;
    std::size_t at;
    const char separator;
    const bool hasComments;
    int line = 1;
    int column = 1;
    std::size_t cellCount = 0;
};

}  // namespace

std::vector<std::vector<Csv_Cell>> parseCsv(const std::string& text, const std::string& path) {
    return parseCsv(text, path, {separatorOf(text, beginOf(text)), true});
}

std::vector<std::vector<Csv_Cell>> parseCsv(const std::string& text, const std::string& path, const Csv_Form& form) {
    return Csv_Reader(text, path, form).rows();
}

std::string formatCsvCell(const std::string& text, char separator) {
    const bool edges = !text.empty() && (text.front() == ' ' || text.back() == ' ' || text.front() == '#');
    if (!edges && text.find_first_of(std::string("\"\r\n") + separator) == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char letter : text) {
        if (letter == '"') quoted += '"';
        quoted += letter;
    }
    return quoted + "\"";
}

}  // namespace vornex
