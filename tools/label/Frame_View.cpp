#include "Frame_View.h"

namespace vornex {

namespace {

const std::size_t HeaderSize = 1 + 2 + 1;  // start, body length, command
const std::size_t ItemSize = 4 + 2;        // address, length
const std::size_t CheckSize = 2;
const char StartByte = 0x02;
const char ReadCommand = 'A';
const char WriteCommand = '@';

std::uint32_t numberAt(const std::string& bytes, std::size_t at, std::size_t size) {
    std::uint32_t number = 0;
    for (std::size_t i = size; i-- > 0;)
        number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
    return number;
}

Frame_Item itemAt(const std::string& frame, std::size_t at) {
    return {numberAt(frame, at, 4), numberAt(frame, at + 4, 2)};
}

}  // namespace

std::optional<Request_View> viewRequest(const std::string& frame) {
    if (frame.size() < HeaderSize + CheckSize || frame[0] != StartByte) return std::nullopt;
    const std::size_t body = frame.size() - HeaderSize - CheckSize;
    if (numberAt(frame, 1, 2) != (body & 0xFFFF)) return std::nullopt;
    Request_View request;
    if (frame[3] == WriteCommand && body >= ItemSize) {
        request.command = Request_View::Command::Write;
        request.items.push_back(itemAt(frame, HeaderSize));
        request.data = frame.substr(HeaderSize + ItemSize, body - ItemSize);
        return request;
    }
    if (frame[3] != ReadCommand || body % ItemSize != 0) return std::nullopt;
    for (std::size_t at = HeaderSize; at < HeaderSize + body; at += ItemSize)
        request.items.push_back(itemAt(frame, at));
    return request;
}

std::optional<std::vector<std::string>> viewReply(const Request_View& request, const std::string& reply) {
    std::vector<std::string> items;
    std::size_t at = HeaderSize;
    if (reply.size() < HeaderSize + CheckSize) return std::nullopt;
    const std::size_t end = reply.size() - CheckSize;
    if (request.command == Request_View::Command::Write) return items;
    for (const Frame_Item& item : request.items) {
        if (at + 2 > end || numberAt(reply, at, 2) != item.length || at + 2 + item.length > end) return std::nullopt;
        items.push_back(reply.substr(at + 2, item.length));
        at += 2 + item.length;
    }
    if (at != end) return std::nullopt;
    return items;
}

}  // namespace vornex
