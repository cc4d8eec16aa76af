// The record for replay: one JSON object a line, with everything that the driver was told and what it answered.
#ifndef VORNEX_TRACE_RECORD_LINES_H
#define VORNEX_TRACE_RECORD_LINES_H

#include <functional>
#include <string>

#include "host/Host_Settings.h"
#include "host/link/Exchange.h"

namespace vornex {

class Row;

// What a record begins with: how the driver was set up.
struct Record_Head {
    std::string labelFile;  // path; empty: none
    std::string labelText;  // what is in it
    int maxBytes = 240;     // of one read request
    int retries = 2;
};

// Of a session with these settings, and the label file as it is on the disk now. Throws File_Error.
Record_Head recordHead(const Host_Settings& settings, const Label_File& labels);

// Makes the lines of what it hears, in that order. On the thread on which it hears.
class Record_Lines : public Exchange_Observer {
public:
    // Gets each line, with its end.
    using Take = std::function<void(const std::string& line)>;
    explicit Record_Lines(Take taker) : take(std::move(taker)) {}

    // The first line, before all others.
    void begin(const Record_Head& head);

    void readQueued(const Label_Range& range, int id) override;
    void writeQueued(const Label_Range& range, const std::string& data, int id) override;
    void pollSet(const std::vector<Label_Range>& ranges) override;
    void memoryLabelSet(std::uint32_t address, int code) override;
    void frameGiven(const Exchange& exchange) override;
    void exchangeDone(const Exchange& exchange) override;
    void nothingToSend() override;
    void linkChanged(const Link_Change& change) override;

private:
    void put(const Row& row);

    const Take take;
};

}  // namespace vornex

#endif
