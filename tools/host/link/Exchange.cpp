#include "host/link/Exchange.h"

namespace vornex {

namespace {
const int BandWidth = 12;  // 1 + a type code of 0 to 11
}

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

int statusBand(int code) {
    for (int band : {11, 41, 71, 111, 141, 171}) {
        if (code >= band && code < band + BandWidth) return band;
    }
    return code;
}

std::string bandText(int band) {
    switch (band) {
        case 0: return "failed, sent again";
        case 1: return "good";
        case 11: return "bad reply";
        case 41: return "no reply";
        case 71: return "reply of the wrong length";
        case 100: return "good, not stored";
        case 111: return "bad reply (remote area)";
        case 141: return "no reply (remote area)";
        case 171: return "reply of the wrong length (remote area)";
        default: return "unknown result";
    }
}

std::string statusText(int code) {
    const int band = statusBand(code);
    std::string text = bandText(band) + " (code " + std::to_string(code);
    if (band != code) text += ", type " + std::to_string(code - band);
    return text + ")";
}

}  // namespace vornex
