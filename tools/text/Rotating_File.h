// Lines in the files of a folder, one file after the other, for days: NAME-000017-20261123T205100.csv. The number goes
// on from run to run, whatever the clock does; the time is the one of the file's first line.
#ifndef VORNEX_TEXT_ROTATING_FILE_H
#define VORNEX_TEXT_ROTATING_FILE_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "text/Output_File.h"
#include "text/Time_Text.h"

namespace vornex {

// When a file is full.
struct Rotation {
    enum class Period { None, Hour, Day };
    Period period = Period::None;  // of the local clock
    std::uint64_t bytes = 0;       // 0: no limit
};

// "1h", "1d", or a size: "500k", "50M", "2G". Throws std::invalid_argument.
Rotation parseRotation(const std::string& text);

struct Log_Plan {
    std::string folder;   // made when it is missing, with those above it
    std::string name;     // that the files begin with
    std::string ending;   // ".csv"
    std::string heading;  // first line of each file, with its end; may be empty
    Rotation rotation;
    std::uint64_t keep = 0;  // files, the present one with them; 0: all
};

// One thread. A folder belongs to one object at a time, of all processes.
class Rotating_File {
public:
    using Tell = std::function<void(const std::string&)>;

    // Mends the newest file, whose last line a run that was killed may have left torn; it is gone on with if its
    // heading is this one and it is not full. `tell` hears of that and of all trouble. Throws Output_Error Unusable.
    Rotating_File(const Log_Plan& logPlan, Wall_Time now, Tell tellUser);
    ~Rotating_File();
    Rotating_File(const Rotating_File&) = delete;
    Rotating_File& operator=(const Rotating_File&) = delete;

    // Whole lines, in the file when it returns. When they cannot be written, because the disk is full, that is told
    // once; they are dropped and counted, and from a second to a minute later it is tried again.
    void write(const std::string& lines, Wall_Time now);
    // Closes the file; tells of lines that are missing at the end.
    void close();
    bool lostLines() const { return everLost; }

private:
    struct Entry {
        std::uint64_t number = 0;
        std::string time;  // "20261123T205100"
        std::string path;
    };
    void lockFolder();
    std::vector<Entry> entries() const;
    void continueNewest(Wall_Time now);
    bool isFull(const std::string& lines, Wall_Time now) const;
    void open(Wall_Time now);
    void removeOld();
    void failed(const std::string& reason, std::uint64_t lines, Wall_Time now);

    const Log_Plan plan;
    const Tell tell;
    int folderLock = -1;
    std::uint64_t number = 0;
    std::string period;  // of the present file
    std::string path;    // the same; empty: none
    std::unique_ptr<Output_File> file;
    std::uint64_t size = 0;
    bool everLost = false;
    std::uint64_t lost = 0;  // lines, since it was told
    Wall_Time lastTry{};
    std::chrono::seconds patience{1};
};

}  // namespace vornex

#endif
