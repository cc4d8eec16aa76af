#include "wire/Frame_Writer.h"

#include "wire/Check_Value.h"

namespace vornex {
namespace {

void append16(std::string& bytes, std::size_t value) {
    bytes += static_cast<char>(value & 0xFF);
    bytes += static_cast<char>(value >> 8 & 0xFF);
}

}  // namespace

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

}  // namespace vornex
