// The values of a watch in the files of a folder, for days.
#ifndef VORNEX_WATCH_LOG_FOLDER_H
#define VORNEX_WATCH_LOG_FOLDER_H

#include <optional>
#include <string>
#include <vector>

#include "text/Rotating_File.h"
#include "watch/Change_Filter.h"
#include "watch/Watch_Row.h"

namespace vornex {

struct Log_Settings {
    std::string folder;
    Line_Format format = Line_Format::Csv;
    Rotation rotation;
    std::uint64_t keep = 0;             // files; 0: all
    std::string controller;             // a tag of the line protocol
    std::optional<double> changesOnly;  // the deadband
};

// A line a variable, each round or when it changes. Trouble with the disk does not end it: it is told, and what is
// missing counted.
class Log_Folder : public Watch_Output {
public:
    // Throws Output_Error Unusable.
    Log_Folder(const Log_Settings& logSettings, const Rotating_File::Tell& tell);
    void update(const std::vector<Watched>& all, int round) override;
    void finish(const std::vector<Watched>&) override { file.close(); }
    bool lostLines() const { return file.lostLines(); }

private:
    const Log_Settings settings;
    Rotating_File file;
    Change_Filter filter;
};

}  // namespace vornex

#endif
