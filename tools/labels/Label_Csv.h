// The label file as a table, for spreadsheets.
//
//   kind,name,type,at,size,view,unit,sim
//   target,127.0.0.1:2000,,,,,,
//   struct,MotorT,,,12,,,
//   member,MotorT.Speed,7,4,,f32,rpm,
//   label,Motors,MotorT[1..4],500,,,,
//
// One row per label, structure and member of a structure; a member's name is STRUCTURE.MEMBER. Columns may stand in any
// order and those that nothing uses may be missing; rows may stand in any order, members keep theirs. Addresses and
// sizes are decimal or 0x. Everything a label file holds goes through a table and back, but its comments.
#ifndef VORNEX_LABELS_LABEL_CSV_H
#define VORNEX_LABELS_LABEL_CSV_H

#include <string>

#include "labels/Label_File.h"

namespace vornex {

// Reads and checks a whole table, with `,` or `;` between the cells. Throws File_Error: mistakes in a cell name
// FILE:LINE:COLUMN, those that only all rows together show FILE:LINE, as a label file's do.
Label_File parseLabelCsv(const std::string& text, const std::string& path);

std::string formatLabelCsv(const Label_File& file, char separator);

// The label file in its own notation; what parseLabelFile reads.
std::string formatLabelJson(const Label_File& file);

}  // namespace vornex

#endif
