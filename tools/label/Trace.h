// Records of what went over the link: to be read, to be replayed, or for a capture.
#ifndef VORNEX_LABEL_TRACE_H
#define VORNEX_LABEL_TRACE_H

#include <cstdio>
#include <memory>
#include <string>

#include "Exchange.h"
#include "Session.h"

namespace vornex {

// A trace writes each line at once: what led to a crash or a hang is in the file.
class Trace : public Exchange_Observer, public Call_Observer {
public:
    void readQueued(const RW_VAR&) override {}
    void writeQueued(const std::string&, int, const std::string&, int, int, int) override {}
    void pollSet(const QList<HOST_VAR>&) override {}
    void memoryLabelSet(const Label_Type_Info&) override {}
};

// A file that a trace writes to, or stderr for "-".
class Trace_File {
public:
    // Throws Tool_Error Usage with the reason.
    explicit Trace_File(const std::string& name);
    ~Trace_File();
    Trace_File(const Trace_File&) = delete;
    Trace_File& operator=(const Trace_File&) = delete;

    void write(const std::string& text);

private:
    FILE* file = nullptr;
};

// The kind of trace is chosen by the ending: .jsonl for replay, .hex for text2pcap, anything else to be read.
std::unique_ptr<Trace> openTrace(const std::string& name, Tool& tool);
std::unique_ptr<Trace> openTextTrace(const std::string& name, Tool& tool);
std::unique_ptr<Trace> openReplayTrace(const std::string& name, Tool& tool);
std::unique_ptr<Trace> openHexTrace(const std::string& name, Tool& tool);

// "21:40:01.123456", local time.
std::string timeText(Wall_Time time);

}  // namespace vornex

#endif
