// A record on disk, as `vornex-label replay` reads it.
#ifndef VORNEX_PANEL_RECORD_SAVE_RECORD_H
#define VORNEX_PANEL_RECORD_SAVE_RECORD_H

#include <functional>
#include <string>

#include "panel/record/Exchange_Record.h"
#include "text/Output_File.h"

namespace vornex::panel {

// Writes the whole record under this name, or nothing. Any thread. False, and no file, when `goesOn` ended it. Throws
// Output_Error: a file that exists stays as it was unless it is to be replaced.
bool saveRecord(const Record_Snapshot& record, const std::string& path, Existing_File existing,
                const std::function<bool()>& goesOn = nullptr);

}  // namespace vornex::panel

#endif
