// The trace for replay: one JSON object a line, with everything that the driver was told and what it answered.
#include "Trace.h"

#include "../common/Text_Input.h"
#include "Value_View.h"

namespace vornex {

namespace {

std::string plainHex(const std::string& bytes) {
    std::string text = hexBytes(bytes), plain;
    for (char letter : text) {
        if (letter != ' ') plain += letter;
    }
    return plain;
}

std::string hostText(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

class Replay_Trace : public Trace {
public:
    Replay_Trace(const std::string& name, Tool& tool) : out(name) {
        const std::string& labels = tool.options.labelFile;
        put(Row()
                .add("event", "start")
                .add("version", 1)
                .add("labels", labels)
                .add("text", labels.empty() ? "" : wholeText(labels))
                .add("maxBytes", tool.options.maxBytes)
                .add("retries", tool.options.retries));
    }

    void readQueued(const RW_VAR& request) override {
        put(Row()
                .add("event", "read")
                .add("label", hostText(request.label))
                .add("index", hostText(request.labelIndex))
                .add("type", request.varType)
                .add("id", request.varId)
                .add("length", request.length));
    }

    void writeQueued(const std::string& label, int index, const std::string& data, int count, int varType,
                     int varId) override {
        put(Row()
                .add("event", "write")
                .add("label", label)
                .add("index", std::to_string(index))
                .add("type", varType)
                .add("id", varId)
                .add("count", count)
                .add("data", plainHex(data)));
    }

    void pollSet(const QList<HOST_VAR>& definitions) override {
        std::vector<Value> list;
        for (const HOST_VAR& variable : definitions) {
            list.push_back(std::vector<Value>{hostText(variable.label), hostText(variable.labelIndex),
                                              static_cast<int>(variable.dataType), variable.count});
        }
        put(Row().add("event", "poll").add("labels", list));
    }

    void memoryLabelSet(const Label_Type_Info& label) override {
        put(Row().add("event", "memory").add("address", label.address).add("type", static_cast<int>(label.typeFlags)));
    }

    void frameGiven(const Exchange& exchange) override {
        put(Row()
                .add("event", "frame")
                .add("time", timeText(exchange.sentAt))
                .add("attempt", exchange.attempt)
                .add("frame", plainHex(exchange.frame))
                .add("expected", exchange.replyLength));
    }

    void exchangeDone(const Exchange& exchange) override {
        put(Row()
                .add("event", "reply")
                .add("time", timeText(exchange.repliedAt))
                .add("reply", plainHex(exchange.transfer.reply))
                .add("shifted", exchange.countsDiffer)
                .add("status", exchange.status)
                .add("fault", exchange.fault())
                .add("microseconds", exchange.latency.count()));
    }

    void nothingToSend() override { put(Row().add("event", "idle")); }

    void linkChanged(const Link_Change& change) override {
        const char* const states[] = {"up", "down", "still down"};
        put(Row()
                .add("event", "link")
                .add("time", timeText(change.at))
                .add("state", states[static_cast<int>(change.state)])
                .add("reason", change.reason));
    }

private:
    void put(const Row& row) { out.write(jsonObject(row) + "\n"); }

    Trace_File out;
};

}  // namespace

std::unique_ptr<Trace> openReplayTrace(const std::string& name, Tool& tool) {
    return std::make_unique<Replay_Trace>(name, tool);
}

}  // namespace vornex
