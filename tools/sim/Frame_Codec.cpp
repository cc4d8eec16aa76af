#include "Frame_Codec.h"

#include <algorithm>

namespace vornex::sim {
namespace {

constexpr std::uint8_t StartByte = 0x02;
constexpr std::uint8_t ReadCommand = 0x41;
constexpr std::uint8_t WriteCommand = 0x40;
constexpr std::size_t HeaderBytes = 1 + 2 + 1;  // start, body length, command
constexpr std::size_t CheckBytes = 2;
constexpr std::size_t ItemBytes = 4 + 2;  // address, length
constexpr std::size_t CountBytes = 2;     // of a reply's item

std::array<std::uint16_t, 256> makeTable() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned value = byte << 8;
        for (int bit = 0; bit < 8; ++bit)
            value = value & 0x8000 ? value << 1 ^ 0x1021 : value << 1;
        table[byte] = static_cast<std::uint16_t>(value & 0xffff);
    }
    return table;
}

std::uint32_t getLittle(const std::uint8_t* bytes, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = count; i-- > 0;)
        value = value << 8 | bytes[i];
    return value;
}

void putLittle16(Bytes& bytes, std::size_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value & 0xff));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8 & 0xff));
}

Range getRange(const std::uint8_t* item) {
    return {getLittle(item, 4), static_cast<std::uint16_t>(getLittle(item + 4, 2))};
}

// The body of an intact frame. Returns the reason when it makes no sense.
std::string readBody(const std::uint8_t* body, std::size_t bytes, Request& request) {
    if (request.isWrite) {
        if (bytes < ItemBytes) return "a write without address and length";
        request.items.push_back(getRange(body));
        request.data.assign(body + ItemBytes, body + bytes);
        return request.data.size() == request.items[0].bytes ? "" : "a write whose length is not that of its data";
    }
    if (bytes % ItemBytes != 0) return "a read whose items are incomplete";
    for (std::size_t at = 0; at < bytes; at += ItemBytes)
        request.items.push_back(getRange(body + at));
    return "";
}

Parsed_Frame reject(Parsed_Frame::Kind kind, std::size_t bytes, const std::string& reason) {
    Parsed_Frame frame;
    frame.kind = kind;
    frame.bytes = bytes;
    frame.reason = reason;
    return frame;
}

int digitOf(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::uint16_t checkValue(const std::uint8_t* bytes, std::size_t count) {
    static const std::array<std::uint16_t, 256> table = makeTable();
    unsigned value = 0;
    for (std::size_t i = 0; i < count; ++i)
        value = (value << 8 ^ table[value >> 8 ^ bytes[i]]) & 0xffff;
    return static_cast<std::uint16_t>(value);
}

Parsed_Frame parseFrame(const std::uint8_t* received, std::size_t bytes, std::size_t maxFrame) {
    Parsed_Frame frame;
    if (bytes > 0 && received[0] != StartByte) {
        return reject(Parsed_Frame::Kind::Broken, 0, "start byte " + hexText({received[0]}) + " is not 02");
    }
    if (bytes < HeaderBytes) return frame;
    const std::size_t body = getLittle(&received[1], 2);
    frame.bytes = HeaderBytes + body + CheckBytes;
    if (frame.bytes > maxFrame) {
        return reject(
            Parsed_Frame::Kind::Broken, frame.bytes,
            "frame of " + std::to_string(frame.bytes) + " bytes is over the limit " + std::to_string(maxFrame));
    }
    if (bytes < frame.bytes) return frame;
    if (checkValue(received, HeaderBytes + body) != getLittle(&received[HeaderBytes + body], CheckBytes)) {
        return reject(Parsed_Frame::Kind::Ignored, frame.bytes, "wrong check value");
    }
    if (received[3] != ReadCommand && received[3] != WriteCommand) {
        return reject(Parsed_Frame::Kind::Ignored, frame.bytes, "unknown command " + hexText({received[3]}));
    }
    frame.request.isWrite = received[3] == WriteCommand;
    const std::string reason = readBody(received + HeaderBytes, body, frame.request);
    if (!reason.empty()) return reject(Parsed_Frame::Kind::Ignored, frame.bytes, reason);
    frame.kind = Parsed_Frame::Kind::Good;
    return frame;
}

std::size_t replyBytes(const Request& request) {
    std::size_t bytes = HeaderBytes + CheckBytes;
    if (request.isWrite) return bytes;
    for (const Range& item : request.items)
        bytes += CountBytes + item.bytes;
    return bytes;
}

Reply emptyReply(const Request& request) {
    const std::size_t body = replyBytes(request) - HeaderBytes - CheckBytes;
    Reply reply;
    reply.header = {StartByte, static_cast<std::uint8_t>(body & 0xff), static_cast<std::uint8_t>(body >> 8 & 0xff),
                    request.isWrite ? WriteCommand : ReadCommand};
    return reply;
}

Bytes encodeReply(const Reply& reply) {
    Bytes bytes(reply.header.begin(), reply.header.end());
    for (const Reply_Item& item : reply.items) {
        putLittle16(bytes, item.count);
        bytes.insert(bytes.end(), item.data.begin(), item.data.end());
    }
    putLittle16(bytes, checkValue(bytes.data(), bytes.size()));
    return bytes;
}

std::string hexText(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (!text.empty()) text += ' ';
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

bool parseHex(const std::string& text, Bytes& bytes) {
    std::string digits = text;
    digits.erase(std::remove(digits.begin(), digits.end(), ' '), digits.end());
    if (digits.empty() || digits.size() % 2 != 0) return false;
    bytes.clear();
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = digitOf(digits[i]);
        const int low = digitOf(digits[i + 1]);
        if (high < 0 || low < 0) return false;
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
    }
    return true;
}

std::string requestText(const Request& request) {
    constexpr std::size_t Shown = 8;  // items; a log line stays a line
    std::string text = request.isWrite ? "write" : "read";
    for (std::size_t i = 0; i < std::min(request.items.size(), Shown); ++i) {
        text += " " + std::to_string(request.items[i].address) + "+" + std::to_string(request.items[i].bytes);
    }
    if (request.items.size() > Shown) text += " and " + std::to_string(request.items.size() - Shown) + " more";
    return text;
}

}  // namespace vornex::sim
