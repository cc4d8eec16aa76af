// Records on disk until somebody has taken them, the oldest first; when the room is used up the oldest go.
//
// A folder of segments: files of numbered names, each a row of records that is only added to. What a process has handed
// over survives its end by any signal; sync() makes it survive the end of the machine too. A record carries its length
// and a checksum, so that an end that was torn, or a place that went bad, is found and passed over, never read as data.
#ifndef VORNEX_EDGE_STORE_RECORD_STORE_H
#define VORNEX_EDGE_STORE_RECORD_STORE_H

#include <cstdint>
#include <deque>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vornex::edge {

// The folder cannot be used; what() says why.
class Store_Error : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Store_Counts {
    std::uint64_t records = 0;      // that wait
    std::uint64_t bytes = 0;        // on disk
    std::uint64_t overwritten = 0;  // records that went because there was no room
    std::uint64_t refused = 0;      // records that the disk did not take, or too long ones
    std::uint64_t tornBytes = 0;    // that were no whole record when the store was opened
    std::uint64_t spoiled = 0;      // records that went because the disk gave other bytes back
};

// One thread at a time, and one process: who opens it holds a lock on its folder.
class Record_Store {
public:
    // Makes the folder when it is not there. `mostBytes` on disk, at least LeastBytes. Throws Store_Error: the folder
    // cannot be used, or another process uses it.
    Record_Store(std::string storeFolder, std::uint64_t mostBytes);
    ~Record_Store();
    Record_Store(const Record_Store&) = delete;
    Record_Store& operator=(const Record_Store&) = delete;

    // False, and counted: the disk is full or broken, or the record is longer than an eighth of the room. What was
    // there is as before.
    bool append(std::string_view record);
    // The oldest that wait, at most so many and often fewer, none only when none waits; they stay until they are taken.
    std::vector<std::string> oldest(std::size_t most);
    // So many of those that oldest() gave last.
    void take(std::size_t records);
    // To the disk; false when that failed.
    bool sync();

    const Store_Counts& counts() const { return counted; }
    bool isEmpty() const { return counted.records == 0; }

    static constexpr std::uint64_t LeastBytes = 64 * 1024;

private:
    struct Segment {
        std::uint64_t number = 0;
        std::uint64_t size = 0;     // bytes of whole records
        std::uint64_t records = 0;  // that wait
    };
    struct Place {
        std::uint64_t segment = 0;
        std::uint64_t offset = 0;
    };

    std::string pathOf(std::uint64_t number) const;
    void lockFolder();
    void readFolder();
    void readSegment(std::uint64_t number, const Place& from);
    Place readPlace() const;
    void writePlace();
    bool beginSegment();
    void dropFirst();
    void dropTaken();
    bool writeAll(std::string_view bytes);

    const std::string folder;
    const std::uint64_t room;
    int lock = -1;
    int placeFile = -1;
    int current = -1;  // the last segment, added to
    std::deque<Segment> segments;
    Place taken;  // everything before it
    Store_Counts counted;
};

}  // namespace vornex::edge

#endif
