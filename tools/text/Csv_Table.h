// Comma- or semicolon-separated cells that remember where they stand, for messages that name line and column.
#ifndef VORNEX_TEXT_CSV_TABLE_H
#define VORNEX_TEXT_CSV_TABLE_H

#include <string>
#include <vector>

namespace vornex {

struct Csv_Cell {
    std::string text;  // without its quotes
    int line = 1;      // of its first character, counted from 1
    int column = 1;    // in characters, counted from 1
};

// Rows of cells. The separator is the one of ',' and ';' that comes first in the heading line. Takes a byte-order
// mark, LF and CRLF, and cells in quotes, which may hold separators, line ends and doubled quotes. Rows whose cells
// are all empty, and rows that begin with '#', are left out.
// Throws File_Error "PATH:LINE:COLUMN: REASON" for a quote that is never closed and for text beside quotes.
std::vector<std::vector<Csv_Cell>> parseCsv(const std::string& text, const std::string& path);

// How the tables of other programs differ.
struct Csv_Form {
    char separator = ',';     // any character but quote and line end
    bool hasComments = true;  // else a row that begins with '#' is one like others
};
std::vector<std::vector<Csv_Cell>> parseCsv(const std::string& text, const std::string& path, const Csv_Form& form);

// The cell as it is written, in quotes when it needs them.
std::string formatCsvCell(const std::string& text, char separator = ',');

}  // namespace vornex

#endif
