// The trace for replay: one JSON object a line, with everything that the driver was told and what it answered.
#include "host/Driver_Labels.h"
#include "text/Hex.h"
#include "text/Text_Input.h"
#include "trace/Trace.h"
#include "values/Record_Line.h"
#include "values/Row.h"
#include "wire/Frame_Reader.h"

namespace vornex {

namespace {

class Replay_Trace : public Trace {
public:
    Replay_Trace(const Trace_Place& place, const Host_Settings& settings, const Label_File& labelFile) : Trace(place) {
        const std::string& labels = labelFile.path;
        put(Row()
                .add(key::event, "start")
                .add(key::version, RecordVersion)
                .add(key::labelFile, labels)
                .add(key::labelText, labels.empty() ? "" : wholeText(labels))
                .add(key::maxBytes, settings.maxBytes)
                .add(key::retries, settings.retries));
    }

    void readQueued(const Label_Range& range, int id) override {
        put(Row()
                .add(key::event, "read")
                .add(key::label, range.label)
                .add(key::index, std::to_string(range.index))
                .add(key::typeCode, range.code)
                .add(key::id, id)
                .add(key::bytes, range.bytes));
    }

    void writeQueued(const Label_Range& range, const std::string& data, int id) override {
        put(Row()
                .add(key::event, "write")
                .add(key::label, range.label)
                .add(key::index, std::to_string(range.index))
                .add(key::typeCode, range.code)
                .add(key::id, id)
                .add(key::count, hostCount(range))
                .add(key::data, hexBytes(data, "")));
    }

    void pollSet(const std::vector<Label_Range>& ranges) override {
        std::vector<Value> list;
        list.reserve(ranges.size());
        for (const Label_Range& range : ranges) {
            list.push_back(std::vector<Value>{range.label, std::to_string(range.index), range.code, hostCount(range)});
        }
        put(Row().add(key::event, "poll").add(key::definitions, list));
    }

    void memoryLabelSet(std::uint32_t address, int code) override {
        put(Row().add(key::event, "memory").add(key::address, address).add(key::typeCode, code));
    }

    void frameGiven(const Exchange& exchange) override {
        put(Row()
                .add(key::event, "frame")
                .add(key::time, timeText(exchange.sentAt, Fraction::Micro))
                .add(key::attempt, exchange.attempt)
                .add(key::frame, hexBytes(exchange.frame, ""))
                .add(key::replyBytes, exchange.replyLength));
    }

    void exchangeDone(const Exchange& exchange) override {
        const std::string& reply = exchange.transfer.reply;
        Row row;
        row.add(key::event, "reply")
            .add(key::time, timeText(exchange.repliedAt, Fraction::Micro))
            .add(key::reply, hexBytes(reply, ""));
        if (hasHeader(reply)) row.add(key::header, hexBytes(headerOf(reply), ""));
        row.add(key::countsDiffer, exchange.countsDiffer).add(key::status, exchange.status);
        put(row.add(key::fault, exchange.fault()).add(key::latencyUs, exchange.latency.count()));
    }

    void nothingToSend() override { put(Row().add(key::event, "idle")); }

    void linkChanged(const Link_Change& change) override {
        Trace::linkChanged(change);
        const char* const states[] = {"up", "down", "still down"};
        put(Row()
                .add(key::event, "link")
                .add(key::time, timeText(change.at, Fraction::Micro))
                .add(key::link, states[static_cast<int>(change.state)])
                .add(key::reason, change.reason));
    }

private:
    void put(const Row& row) { write(jsonObject(row) + "\n"); }
};

}  // namespace

std::unique_ptr<Trace> openReplayTrace(const Trace_Place& place, const Host_Settings& settings,
                                       const Label_File& labels) {
    return std::make_unique<Replay_Trace>(place, settings, labels);
}

}  // namespace vornex
