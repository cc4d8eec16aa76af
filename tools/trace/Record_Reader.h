// Reads a record for replay without a driver: what went over the link, as an observer heard it when it was made.
#ifndef VORNEX_TRACE_RECORD_READER_H
#define VORNEX_TRACE_RECORD_READER_H

#include <functional>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "host/Driver_Labels.h"
#include "trace/Record_Lines.h"

namespace vornex {

// Tells the listener each line as it is taken. What a record does not hold stays as it is in an Exchange without it:
// cyclic and plan.
class Record_Reader {
public:
    // The listener has to outlive it.
    explicit Record_Reader(Exchange_Observer& observer) : listener(observer) {}

    // One line; a blank one does nothing. Throws std::invalid_argument with the reason for a line that is no part of a
    // record; the listener has heard nothing of it then.
    void take(const std::string& line);

    bool begun() const { return started; }
    const Record_Head& head() const { return beginning; }

private:
    void takeEvent(const nlohmann::json& event);
    void begin(const nlohmann::json& event);
    void poll(const nlohmann::json& event);
    void read(const nlohmann::json& event);
    void write(const nlohmann::json& event);
    void frame(const nlohmann::json& event);
    void reply(const nlohmann::json& event);
    void link(const nlohmann::json& event);

    Exchange_Observer& listener;
    Record_Head beginning;
    Exchange pending;  // given, and no reply yet
    bool given = false;
    bool started = false;
};

// Reads the whole file; `goesOn` is asked now and then, and false ends it early. Throws File_Error "PATH:LINE: REASON"
// for the first line that is no part of a record: the listener has heard of those before it.
Record_Head readRecord(const std::string& path, Exchange_Observer& listener,
                       const std::function<bool()>& goesOn = nullptr);

}  // namespace vornex

#endif
