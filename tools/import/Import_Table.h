// A table that another program or a spreadsheet has written, as labels.
#ifndef VORNEX_IMPORT_IMPORT_TABLE_H
#define VORNEX_IMPORT_IMPORT_TABLE_H

#include <cstdint>
#include <string>
#include <vector>

#include "import/Import_Address.h"
#include "import/Import_Columns.h"
#include "labels/Label_File.h"

namespace vornex {

struct Import_Choice {
    Column_Map map;
    Address_Count count = Address_Count::Bytes;
    std::uint32_t base = 0;  // bytes, added to every address
};

struct Imported {
    Label_File file;
    std::vector<std::string> notTaken;  // "FILE:LINE: label 'NAME': REASON"
    std::vector<std::string> notes;     // what was taken otherwise than it stands there
};

// Takes every row that makes a good label and tells of the others. Cells are separated by ',', ';' or tab; numbers may
// have a decimal comma. A BOOL with a bit address becomes a named bit of the label that holds its byte, or of a label
// made for that byte. Throws File_Error when the text is no table or has no heading row.
Imported importTable(const std::string& text, const std::string& path, const Import_Choice& choice);

}  // namespace vornex

#endif
