// The trace for text2pcap: a direction, a time and an offset dump for each frame and reply.
//     text2pcap -D -t "%H:%M:%S.%f" -T 50000,2000 trace.hex trace.pcap
#include "Trace.h"
#include "Value_View.h"

namespace vornex {

namespace {

class Hex_Trace : public Trace {
public:
    explicit Hex_Trace(const std::string& name) : out(name) {}

    // Only what was on the wire: a frame that found no connection is not.
    void exchangeDone(const Exchange& exchange) override {
        if (exchange.transfer.state == Transfer_State::NoLink) return;
        packet('O', exchange.sentAt, exchange.frame);
        if (!exchange.transfer.reply.empty()) packet('I', exchange.repliedAt, exchange.transfer.reply);
    }

private:
    void packet(char direction, Wall_Time time, const std::string& bytes) {
        std::string text = std::string(1, direction) + " " + timeText(time) + "\n";
        for (std::size_t at = 0; at < bytes.size(); at += 16) {
            char offset[32];
            std::snprintf(offset, sizeof offset, "%06zx ", at);
            text += offset + hexBytes(bytes.substr(at, 16)) + "\n";
        }
        out.write(text + "\n");
    }

    Trace_File out;
};

}  // namespace

std::unique_ptr<Trace> openHexTrace(const std::string& name, Tool&) { return std::make_unique<Hex_Trace>(name); }

}  // namespace vornex
