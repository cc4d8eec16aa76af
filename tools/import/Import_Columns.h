// Which column of another program's table is which key of a label.
#ifndef VORNEX_IMPORT_IMPORT_COLUMNS_H
#define VORNEX_IMPORT_IMPORT_COLUMNS_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "text/Csv_Table.h"

namespace vornex {

// A key of a label ("address" is taken for "at") and the heading of its column.
using Column_Map = std::map<std::string, std::string>;
// Of "name=Symbol,address=Offset", any number of such texts. Throws std::invalid_argument.
Column_Map parseColumnMap(const std::vector<std::string>& texts);

struct Import_Columns {
    std::size_t heading = 0;                // its row
    std::map<std::string, std::size_t> at;  // the column of a key
    std::vector<std::string> leftOut;       // headings that are no key
};
// The heading row is the first of the first twenty that has the mapped headings, in upper or lower case, and columns
// for name, type and address; those that are not mapped are found by the words that such tables use. Throws File_Error.
Import_Columns findColumns(const std::vector<std::vector<Csv_Cell>>& rows, const Column_Map& map,
                           const std::string& path);

// Of ',', ';' and tab the one that most of the first lines have outside quotes.
char findSeparator(const std::string& text);

}  // namespace vornex

#endif
