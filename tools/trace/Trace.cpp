#include "trace/Trace.h"

#include "text/Text.h"

namespace vornex {

Trace::Trace(const Trace_Place& place)
    : file(place.name == "-" ? Output_File::standardError() : Output_File(place.name, place.policy)),
      failed(place.failed),
      live(place.name == "-") {}

void Trace::write(const std::string& text) {
    if (over) return;
    try {
        file.write(text);
        if (live) file.flush();
    } catch (const Output_Error& error) {
        over = true;
        failed(error);
    }
}

void Trace::linkChanged(const Link_Change& change) {
    if (change.state != Link_Change::State::Up) return;
    live = true;
    write("");
}

std::unique_ptr<Trace> openTrace(const Trace_Place& place, const Host_Settings& settings, const Label_File& labels) {
    const std::string& name = place.name;
    const bool isRecord = endsIn(name, ".jsonl");
    if (!isRecord && name != "-" && !endsIn(name, ".hex") && !endsIn(name, ".txt") && name.rfind("/dev/", 0) != 0) {
        throw Output_Error(Output_Error::Kind::Unusable,
                           name + ": a trace ends in .txt (to be read), .jsonl (for replay) or .hex (for text2pcap)");
    }
    if (isRecord && place.policy.existing == Existing_File::Append) {
        throw Output_Error(Output_Error::Kind::Unusable, name + ": a record for replay cannot be continued");
    }
    if (isRecord) return openReplayTrace(place, settings, labels);
    if (endsIn(name, ".hex")) return openHexTrace(place);
    return openTextTrace(place, settings, labels);
}

}  // namespace vornex
