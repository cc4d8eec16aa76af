// The trace to be read: a line for each frame and reply with the labels it is about, then its bytes.
#include "Label_Names.h"
#include "Statistics.h"
#include "Status_Text.h"
#include "Trace.h"
#include "Value_View.h"

namespace vornex {

namespace {

const char Indent[] = "                   ";
const std::size_t BytesOfLine = 32;

std::string byteLines(const std::string& bytes) {
    std::string lines;
    for (std::size_t at = 0; at < bytes.size(); at += BytesOfLine) {
        lines += Indent + hexBytes(bytes.substr(at, BytesOfLine)) + "\n";
    }
    return lines;
}

class Text_Trace : public Trace {
public:
    Text_Trace(const std::string& name, Tool& tool)
        : out(name),
          names(tool.labelsIfAny()),
          target(tool.options.target.empty() ? tool.labelsIfAny().target : tool.options.target) {}

    void frameGiven(const Exchange& exchange) override {
        const bool read = exchange.request.command == Request_View::Command::Read;
        std::string line = timeText(exchange.sentAt) + "  > " + (read ? "read" : "write");
        if (exchange.attempt > 1) line += ", attempt " + std::to_string(exchange.attempt);
        line += ", " + std::to_string(exchange.frame.size()) + " bytes:";
        const char* separator = " ";
        for (const Frame_Item& item : exchange.request.items) {
            line += separator + std::to_string(item.address) + "+" + std::to_string(item.length) + " " +
                    names.of(item.address, item.length);
            separator = "; ";
        }
        out.write(line + "\n" + byteLines(exchange.frame));
    }

    void exchangeDone(const Exchange& exchange) override {
        std::string line = timeText(exchange.repliedAt) + "  < " + std::to_string(exchange.transfer.reply.size()) +
                           " of " + std::to_string(exchange.replyLength) + " bytes after " +
                           millisecondsText(static_cast<std::uint32_t>(exchange.latency.count())) + ": ";
        if (exchange.good())
            line += "good";
        else
            line +=
                exchange.fault() + "; " + (exchange.gaveUp() ? "given up: " + statusText(exchange.status) : "again");
        out.write(line + "\n" + byteLines(exchange.transfer.reply));
    }

    void linkChanged(const Link_Change& change) override {
        std::string words = "connected to " + target;
        if (change.state == Link_Change::State::Down) words = "connection dropped: " + change.reason;
        if (change.state == Link_Change::State::StillDown) words = "cannot connect to " + target + ": " + change.reason;
        out.write(timeText(change.at) + "  - " + words + "\n");
    }

private:
    Trace_File out;
    Label_Names names;
    std::string target;
};

}  // namespace

std::unique_ptr<Trace> openTextTrace(const std::string& name, Tool& tool) {
    return std::make_unique<Text_Trace>(name, tool);
}

}  // namespace vornex
