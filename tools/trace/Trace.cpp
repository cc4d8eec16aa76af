#include "trace/Trace.h"

#include <utility>

#include "text/Text.h"

namespace vornex {

Trace_File::Trace_File(const std::string& name, const Output_Policy& policy, Output_Failure onFailure)
    : file(name == "-" ? Output_File::standardError() : Output_File(name, policy)),
      failed(std::move(onFailure)),
      live(name == "-") {}

void Trace_File::write(const std::string& text) {
    if (over) return;
    try {
        file.write(text);
        if (live) file.flush();
    } catch (const Output_Error& error) {
        over = true;
        failed(error);
    }
}

void Trace_File::linkChanged(const Link_Change& change) {
    if (change.state != Link_Change::State::Up) return;
    live = true;
    write("");
}

std::unique_ptr<Trace> openTrace(const std::string& name, const Output_Policy& policy, const Output_Failure& onFailure,
                                 const Host_Settings& settings, const Label_File& labels) {
    const bool isRecord = endsIn(name, ".jsonl");
    if (!isRecord && name != "-" && !endsIn(name, ".hex") && !endsIn(name, ".txt") && name.rfind("/dev/", 0) != 0) {
        throw Output_Error(Output_Error::Kind::Unusable,
                           name + ": a trace ends in .txt (to be read), .jsonl (for replay) or .hex (for text2pcap)");
    }
    if (isRecord && policy.existing == Existing_File::Append) {
        throw Output_Error(Output_Error::Kind::Unusable, name + ": a record for replay cannot be continued");
    }
    Trace_File file(name, policy, onFailure);
    if (isRecord) return openReplayTrace(std::move(file), settings, labels);
    if (endsIn(name, ".hex")) return openHexTrace(std::move(file));
    return openTextTrace(std::move(file), settings, labels);
}

}  // namespace vornex
