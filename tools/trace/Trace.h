// Records of what went over the link: to be read, to be replayed, or for a capture.
#ifndef VORNEX_TRACE_TRACE_H
#define VORNEX_TRACE_TRACE_H

#include <functional>
#include <memory>
#include <string>

#include "host/Session.h"
#include "host/link/Exchange.h"
#include "text/Output_File.h"

namespace vornex {

// A trace writes each line at once: what led to a crash or a hang is in the file.
class Trace : public Exchange_Observer, public Call_Observer {
public:
    void readQueued(const RW_VAR&) override {}
    void writeQueued(const std::string&, int, const std::string&, int, int, int) override {}
    void pollSet(const QList<HOST_VAR>&) override {}
    void memoryLabelSet(const Label_Type_Info&) override {}
};

// Told once, on the exchange thread; the trace takes nothing more then.
using Output_Failure = std::function<void(const Output_Error&)>;

// Where a trace writes: a file, or standard error for "-". A file is made when the first connection is: a run that
// reaches nobody leaves what was there.
class Trace_File {
public:
    // Throws Output_Error Exists or Unusable.
    Trace_File(const std::string& name, const Output_Policy& policy, Output_Failure onFailure);

    void write(const std::string& text);
    void linkChanged(const Link_Change& change);

private:
    Output_File file;
    Output_Failure failed;
    bool live = false;  // lines go out one by one
    bool over = false;
};

// The kind of trace is chosen by the ending: .jsonl for replay, .hex for text2pcap, .txt or "-" to be read. Throws
// Output_Error; Unusable for another ending, and for a record for replay that is to be continued.
std::unique_ptr<Trace> openTrace(const std::string& name, const Output_Policy& policy, const Output_Failure& onFailure,
                                 const Host_Settings& settings, const Label_File& labels);
std::unique_ptr<Trace> openTextTrace(Trace_File file, const Host_Settings& settings, const Label_File& labels);
std::unique_ptr<Trace> openReplayTrace(Trace_File file, const Host_Settings& settings, const Label_File& labels);
std::unique_ptr<Trace> openHexTrace(Trace_File file);

}  // namespace vornex

#endif
