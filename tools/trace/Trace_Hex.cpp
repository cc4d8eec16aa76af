// The trace for text2pcap: a direction, a time and an offset dump for each frame and reply.
//     text2pcap -D -t ISO -T 50000,2000 trace.hex trace.pcap
#include "text/Hex.h"
#include "trace/Trace.h"

namespace vornex {

namespace {

class Hex_Trace : public Trace {
public:
    using Trace::Trace;

    // Only what was on the wire: a frame that found no connection is not.
    void exchangeDone(const Exchange& exchange) override {
        if (exchange.transfer.state == Transfer_State::NoLink) return;
        packet('O', exchange.sentAt, exchange.frame);
        if (!exchange.transfer.reply.empty()) packet('I', exchange.repliedAt, exchange.transfer.reply);
    }

private:
    void packet(char direction, Wall_Time time, const std::string& bytes) {
        std::string text = std::string(1, direction) + " " + timeText(time, Fraction::Micro) + "\n";
        for (std::size_t at = 0; at < bytes.size(); at += 16) {
            text += hexDigits(at, 6) + " " + hexBytes(bytes.substr(at, 16)) + "\n";
        }
        write(text + "\n");
    }
};

}  // namespace

std::unique_ptr<Trace> openHexTrace(const Trace_Place& place) { return std::make_unique<Hex_Trace>(place); }

}  // namespace vornex
