// The trace for replay: the lines of a record, in a file of their own.
#include "trace/Record_Lines.h"
#include "trace/Trace.h"

namespace vornex {

namespace {

class Replay_Trace : public Trace {
public:
    Replay_Trace(const Trace_Place& place, const Host_Settings& settings, const Label_File& labels)
        : Trace(place), lines([this](const std::string& line) { write(line); }) {
        lines.begin(recordHead(settings, labels));
    }

    void readQueued(const Label_Range& range, int id) override { lines.readQueued(range, id); }
    void writeQueued(const Label_Range& range, const std::string& data, int id) override {
        lines.writeQueued(range, data, id);
    }
    void pollSet(const std::vector<Label_Range>& ranges) override { lines.pollSet(ranges); }
    void memoryLabelSet(std::uint32_t address, int code) override { lines.memoryLabelSet(address, code); }
    void frameGiven(const Exchange& exchange) override { lines.frameGiven(exchange); }
    void exchangeDone(const Exchange& exchange) override { lines.exchangeDone(exchange); }
    void nothingToSend() override { lines.nothingToSend(); }
    void linkChanged(const Link_Change& change) override {
        Trace::linkChanged(change);
        lines.linkChanged(change);
    }

private:
    Record_Lines lines;
};

}  // namespace

std::unique_ptr<Trace> openReplayTrace(const Trace_Place& place, const Host_Settings& settings,
                                       const Label_File& labels) {
    return std::make_unique<Replay_Trace>(place, settings, labels);
}

}  // namespace vornex
