// The trace for replay: one JSON object a line, with everything that the driver was told and what it answered.
#include "trace/Trace.h"
#include "trace/Trace_Player.h"

#include "text/Hex.h"
#include "text/Text_Input.h"
#include "values/Row.h"
#include "wire/Frame_Reader.h"

namespace vornex {

namespace {

std::string hostText(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

class Replay_Trace : public Trace {
public:
    Replay_Trace(Trace_File traceFile, const Host_Settings& settings, const Label_File& file)
        : out(std::move(traceFile)) {
        const std::string& labels = file.path;
        put(Row()
                .add(key::event, "start")
                .add(key::version, RecordVersion)
                .add(key::labelFile, labels)
                .add(key::labelText, labels.empty() ? "" : wholeText(labels))
                .add(key::maxBytes, settings.maxBytes)
                .add(key::retries, settings.retries));
    }

    void readQueued(const RW_VAR& request) override {
        put(Row()
                .add(key::event, "read")
                .add(key::label, hostText(request.label))
                .add(key::index, hostText(request.labelIndex))
                .add(key::typeCode, request.varType)
                .add(key::id, request.varId)
                .add(key::bytes, request.length));
    }

    void writeQueued(const std::string& label, int index, const std::string& data, int count, int varType,
                     int varId) override {
        put(Row()
                .add(key::event, "write")
                .add(key::label, label)
                .add(key::index, std::to_string(index))
                .add(key::typeCode, varType)
                .add(key::id, varId)
                .add(key::count, count)
                .add(key::data, hexBytes(data, "")));
    }

    void pollSet(const QList<HOST_VAR>& definitions) override {
        std::vector<Value> list;
        for (const HOST_VAR& variable : definitions) {
            list.push_back(std::vector<Value>{hostText(variable.label), hostText(variable.labelIndex),
                                              static_cast<int>(variable.dataType), variable.count});
        }
        put(Row().add(key::event, "poll").add(key::definitions, list));
    }

    void memoryLabelSet(const Label_Type_Info& label) override {
        put(Row()
                .add(key::event, "memory")
                .add(key::address, label.address)
                .add(key::typeCode, static_cast<int>(label.typeFlags)));
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
        out.linkChanged(change);
        const char* const states[] = {"up", "down", "still down"};
        put(Row()
                .add(key::event, "link")
                .add(key::time, timeText(change.at, Fraction::Micro))
                .add(key::link, states[static_cast<int>(change.state)])
                .add(key::reason, change.reason));
    }

private:
    void put(const Row& row) { out.write(jsonObject(row) + "\n"); }

    Trace_File out;
};

}  // namespace

std::unique_ptr<Trace> openReplayTrace(Trace_File file, const Host_Settings& settings, const Label_File& labels) {
    return std::make_unique<Replay_Trace>(std::move(file), settings, labels);
}

}  // namespace vornex
