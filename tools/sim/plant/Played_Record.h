// A record of a link, played as the memory of a controller: at each moment the bytes that the record had shown by then.
#ifndef VORNEX_SIM_PLANT_PLAYED_RECORD_H
#define VORNEX_SIM_PLANT_PLAYED_RECORD_H

#include <cstdint>
#include <deque>
#include <fstream>
#include <functional>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "labels/Label_File.h"
#include "sim/plant/Memory.h"
#include "text/Time_Text.h"
#include "wire/Frame.h"

namespace vornex::sim {

struct Play {
    std::string path;
    double speed = 1;
    bool loops = false;
    bool skipsGaps = false;  // times without a link or a reply are left out
    std::uint64_t memoryBytes = DefaultMemory;
};

// Reads forward, line by line: of the record no more is held than the lines of one exchange. Not for several threads.
class Played_Record {
public:
    // What the controller did: it answered, it left requests without a reply, or there was no connection.
    enum class Line { Up, Silent, Down };

    // Reads to the first exchange. Throws File_Error "FILE:LINE: REASON". `tell` takes what is worth a message: the
    // end, a new beginning, and a mistake further on, which ends the playing.
    Played_Record(const Play& play, std::function<void(const std::string&)> tell);

    // What the record says of its label file; without labels when it had none. Throws File_Error.
    Label_File labels() const;

    // Puts into the memory what good replies and acknowledged writes show up to `now`, ms since the start.
    void advance(double now, Memory& memory);
    // At the moment of the last advance(); Up after the end, which holds the last values.
    Line line() const;
    // How many of these bytes neither the record nor a client has given a value yet.
    std::size_t unknown(std::uint32_t address, std::size_t bytes) const;
    // A client's write: it counts as known until the record says otherwise. The memory has taken it.
    void written(std::uint32_t address, std::size_t bytes);
    // Ended by a mistake, which has been told.
    bool failed() const { return hasFailed; }

private:
    struct Event {
        enum class Kind { Up, Down, Silence, Data };
        Kind kind;
        double at;  // ms of the record
        Request request = {};
        Reply reply = {};
    };
    void open();
    bool fill();
    bool readLine();
    void take(const nlohmann::json& event);
    void takeReply(const nlohmann::json& event);
    double timeOf(const nlohmann::json& event);
    double dueAt(const Event& event) const;
    void apply(const Event& event, Memory& memory);
    void store(std::uint32_t address, const std::string& bytes, Memory& memory);
    double passEnd() const;
    void startAgain();
    void end(const std::string& words);
    [[noreturn]] void refuse(const std::string& reason) const;

    const Play play;
    const std::function<void(const std::string&)> tell;
    std::ifstream file;
    int lineNumber = 0;
    std::string labelPath, labelText;
    std::optional<Wall_Time> origin;  // of the record's first time
    double lastTime = 0;              // ms of the record; clocks that are set back do not turn it back

    std::deque<Event> events;       // complete, in their order
    std::deque<Event> behindFrame;  // of the link, between a frame and its reply
    std::optional<Request> frame;   // that has no reply yet
    double frameAt = 0;
    std::size_t dataSeen = 0;  // in this pass

    double shift = 0;      // ms from the record's time, at its speed, to that of the player
    double passBegan = 0;  // ms of the player
    double gapBegan = 0;   // ms of the record
    bool isDown = false, isSilent = false, isOver = false, hasFailed = false;
    Memory known;  // 1 where a value is known
};

}  // namespace vornex::sim

#endif
