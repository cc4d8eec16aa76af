#include "host/link/Exchange.h"

namespace vornex {

std::string Exchange::fault() const {
    if (good()) return {};
    switch (transfer.state) {
        case Transfer_State::Complete:
            return countsDiffer ? "the reply's item counts are not those asked for"
                                : "the reply's check value is wrong";
        case Transfer_State::TimedOut: return "no complete reply: " + transfer.reason;
        case Transfer_State::NoLink: return "no connection: " + transfer.reason;
        default: return transfer.reason;
    }
}

void handOver(const Exchange& exchange, QByteArray& reply, int& length) {
    length = static_cast<int>(exchange.transfer.reply.size());
    reply = exchange.countsDiffer ? QByteArray() : QByteArray(exchange.transfer.reply.data(), length);
}

std::string linkText(const Link_Change& change) {
    if (change.state == Link_Change::State::Up) return "connected";
    return (change.state == Link_Change::State::Down ? "connection lost: " : "cannot connect: ") + change.reason;
}

}  // namespace vornex
