#include "panel/record/Save_Record.h"

namespace vornex::panel {

bool saveRecord(const Record_Snapshot& record, const std::string& path, Existing_File existing,
                const std::function<bool()>& goesOn) {
    Output_File file(path, {existing, {record.head.labelFile}});
    file.takeNameAtEnd();
    Record_Lines lines([&file](const std::string& line) { file.write(line); });
    lines.begin(record.head);
    if (!record.tell(lines, goesOn)) return false;
    file.close();
    return true;
}

}  // namespace vornex::panel
