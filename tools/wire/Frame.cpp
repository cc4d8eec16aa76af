#include "wire/Frame.h"

#include <algorithm>

#include "wire/Check_Value.h"

namespace vornex {
namespace {

void append16(std::string& bytes, std::size_t value) {
    bytes += static_cast<char>(value & 0xFF);
    bytes += static_cast<char>(value >> 8 & 0xFF);
}

}  // namespace

std::size_t replyBytes(const Request& request) {
    std::size_t bytes = HeaderBytes + CheckBytes;
    if (request.isWrite) return bytes;
    for (const Memory_Range& item : request.items)
        bytes += CountBytes + item.bytes;
    return bytes;
}

Reply emptyReply(const Request& request) {
    Reply reply;
    reply.header = StartByte;
    append16(reply.header, replyBytes(request) - HeaderBytes - CheckBytes);
    reply.header += request.isWrite ? WriteCommand : ReadCommand;
    return reply;
}

std::string encodeReply(const Reply& reply) {
    std::size_t size = HeaderBytes + reply.rest.size() + CheckBytes;
    for (const Reply_Item& item : reply.items)
        size += CountBytes + item.data.size();
    std::string bytes = reply.header;
    bytes.reserve(size);
    for (const Reply_Item& item : reply.items) {
        append16(bytes, item.count);
        bytes += item.data;
    }
    bytes += reply.rest;
    append16(bytes, checkValue(bytes));
    return bytes;
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

}  // namespace vornex
