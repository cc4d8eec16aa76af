// The trace to be read: a line for each frame and reply with the labels it is about, then its bytes.
#include "host/Statistics.h"
#include "labels/Label_Names.h"
#include "text/Hex.h"
#include "text/Text.h"
#include "trace/Exchange_Text.h"
#include "trace/Trace.h"
#include "wire/Frame_Reader.h"

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

}  // namespace

std::string itemsText(const Request& request, const Label_Names& names) {
    std::string text;
    for (const Memory_Range& item : request.items) {
        text += (text.empty() ? "" : "; ") + std::to_string(item.address) + "+" + std::to_string(item.bytes) + " " +
                names.of(item.address, item.bytes);
    }
    return text;
}

std::string outcomeText(const Exchange& exchange) {
    if (exchange.good()) return "good";
    return exchange.fault() + "; " + (exchange.gaveUp() ? "given up: " + statusText(exchange.status) : "again");
}

std::string requestLines(const Exchange& exchange, const Label_Names& names) {
    const std::string items = itemsText(exchange.request, names);
    std::string line = timeText(exchange.sentAt) + "  > " + (exchange.request.isWrite ? "write" : "read");
    if (exchange.attempt > 1) line += ", attempt " + std::to_string(exchange.attempt);
    line += ", " + std::to_string(exchange.frame.size()) + " bytes:" + (items.empty() ? "" : " " + items);
    return line + "\n" + byteLines(exchange.frame);
}

std::string replyLines(const Exchange& exchange) {
    const std::string& reply = exchange.transfer.reply;
    std::string line = timeText(exchange.repliedAt) + "  < " + std::to_string(reply.size()) + " of " +
                       std::to_string(exchange.replyLength) + " bytes after " +
                       millisecondsText(static_cast<std::uint32_t>(exchange.latency.count())) + ": " +
                       outcomeText(exchange);
    if (hasHeader(reply)) line += ", header " + hexBytes(headerOf(reply));
    return line + "\n" + byteLines(reply);
}

namespace {

class Text_Trace : public Trace {
public:
    Text_Trace(const Trace_Place& place, const Host_Settings& settings, const Label_File& labels)
        : Trace(place), names(labels), target(targetOf(settings, labels)) {}

    void frameGiven(const Exchange& exchange) override { write(requestLines(exchange, names)); }
    void exchangeDone(const Exchange& exchange) override { write(replyLines(exchange)); }

    void linkChanged(const Link_Change& change) override {
        Trace::linkChanged(change);
        std::string words = "connected to " + target;
        if (change.state == Link_Change::State::Down) words = "connection dropped: " + change.reason;
        if (change.state == Link_Change::State::StillDown) words = "cannot connect to " + target + ": " + change.reason;
        write(timeText(change.at) + "  - " + harmless(words) + "\n");
    }

private:
    Label_Names names;
    std::string target;
};

}  // namespace

std::unique_ptr<Trace> openTextTrace(const Trace_Place& place, const Host_Settings& settings,
                                     const Label_File& labels) {
    return std::make_unique<Text_Trace>(place, settings, labels);
}

}  // namespace vornex
