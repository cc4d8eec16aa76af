// Records of what went over the link: to be read, to be replayed, or for a capture.
#ifndef VORNEX_TRACE_TRACE_H
#define VORNEX_TRACE_TRACE_H

#include <functional>
#include <memory>
#include <string>

#include "host/Host_Settings.h"
#include "host/link/Exchange.h"
#include "text/Output_File.h"

namespace vornex {

// Where a trace writes: a file, or standard error for "-".
struct Trace_Place {
    std::string name;
    Output_Policy policy;
    // Told once, on the exchange thread; the trace takes nothing more then.
    std::function<void(const Output_Error&)> failed;
};

// A file is made when the first connection is: a run that reaches nobody leaves what was there. From then on each line
// is written at once: what led to a crash or a hang is in the file.
class Trace : public Exchange_Observer {
public:
    // Throws Output_Error Exists or Unusable.
    explicit Trace(const Trace_Place& place);
    void linkChanged(const Link_Change& change) override;

protected:
    void write(const std::string& text);

private:
    Output_File file;
    const std::function<void(const Output_Error&)> failed;
    bool live = false;  // lines go out one by one
    bool over = false;
};

// The kind of trace is chosen by the ending: .jsonl for replay, .hex for text2pcap, .txt or "-" to be read. Throws
// Output_Error; Unusable for another ending, and for a record for replay that is to be continued.
std::unique_ptr<Trace> openTrace(const Trace_Place& place, const Host_Settings& settings, const Label_File& labels);
std::unique_ptr<Trace> openTextTrace(const Trace_Place& place, const Host_Settings& settings, const Label_File& labels);
std::unique_ptr<Trace> openReplayTrace(const Trace_Place& place, const Host_Settings& settings,
                                       const Label_File& labels);
std::unique_ptr<Trace> openHexTrace(const Trace_Place& place);

}  // namespace vornex

#endif
