#include "wire/Frame_Reader.h"

#include "wire/Byte_Reader.h"
#include "wire/Check_Value.h"

namespace vornex {
namespace {

// Bytes of the whole frame whose header this is.
std::size_t announcedBytes(std::string_view header) {
    return HeaderBytes + Byte_Reader(header.substr(1)).number(2) + CheckBytes;
}

// Why no request can be read from the frame; empty when one can.
std::string faultOf(std::string_view frame) {
    if (frame.empty() || frame[0] != StartByte) return "the first byte is not 02";
    if (frame.size() < HeaderBytes) return "shorter than a header";
    const std::size_t all = announcedBytes(frame), body = all - HeaderBytes - CheckBytes;
    const auto words = [body] { return "body length " + std::to_string(body); };
    if (all != frame.size())
        return words() + " makes a frame of " + std::to_string(all) + " bytes, not " + std::to_string(frame.size());
    if (frame[3] == ReadCommand) return body % ItemBytes == 0 ? "" : words() + " of a read is no multiple of 6";
    if (frame[3] == WriteCommand) return body >= ItemBytes ? "" : words() + " of a write is below 6";
    return "unknown command " + std::to_string(static_cast<unsigned char>(frame[3]));
}

Parsed_Frame reject(Parsed_Frame::Kind kind, std::size_t bytes, const std::string& reason) {
    return {kind, bytes, Request(), reason};
}

}  // namespace

std::optional<Request> readRequest(std::string_view frame, std::string* fault) {
    const std::string reason = faultOf(frame);
    if (fault) *fault = reason;
    if (!reason.empty()) return std::nullopt;
    Request request;
    request.isWrite = frame[3] == WriteCommand;
    Byte_Reader body(frame.substr(HeaderBytes, frame.size() - HeaderBytes - CheckBytes));
    request.items.reserve(request.isWrite ? 1 : body.left() / ItemBytes);
    do {
        if (body.left() == 0) break;
        const std::uint32_t address = body.number(4);
        request.items.push_back({address, body.number(2)});
    } while (!request.isWrite);
    request.data = body.run(body.left());
    return request;
}

bool beginsLikeRequest(std::string_view bytes) {
    return bytes.size() >= HeaderBytes && bytes[0] == StartByte &&
           (bytes[3] == ReadCommand || bytes[3] == WriteCommand);
}

std::optional<Reply> readReply(std::string_view bytes, std::size_t mostItems) {
    if (bytes.size() < HeaderBytes + CheckBytes) return std::nullopt;
    Byte_Reader reader(bytes.substr(0, bytes.size() - CheckBytes));
    Reply reply;
    reply.header = reader.run(HeaderBytes);
    while (reply.items.size() < mostItems && reader.left() >= CountBytes) {
        const auto count = static_cast<std::uint16_t>(reader.number(CountBytes));
        reply.items.push_back({count, std::string(reader.run(count))});
    }
    reply.rest = reader.run(reader.left());
    return reply;
}

std::string headerOf(std::string_view reply) { return std::string(reply.substr(0, HeaderBytes)); }

bool hasHeader(std::string_view reply) {
    return reply.size() >= HeaderBytes && reply.substr(0, HeaderBytes).find_first_not_of('\0') != reply.npos;
}

bool answers(const Reply& reply, const Request& request) {
    const std::size_t expected = request.isWrite ? 0 : request.items.size();
    if (reply.items.size() != expected || !reply.rest.empty()) return false;
    for (std::size_t i = 0; i < expected; ++i) {
        const Reply_Item& item = reply.items[i];
        if (item.count != request.items[i].bytes || item.data.size() != item.count) return false;
    }
    return true;
}

Parsed_Frame parseFrame(std::string_view received, std::size_t maxFrame) {
    using Kind = Parsed_Frame::Kind;
    if (!received.empty() && received[0] != StartByte) return reject(Kind::Broken, 0, faultOf(received));
    if (received.size() < HeaderBytes) return {};
    const std::size_t bytes = announcedBytes(received);
    if (bytes > maxFrame) {
        return reject(Kind::Broken, bytes,
                      "frame of " + std::to_string(bytes) + " bytes is over the limit " + std::to_string(maxFrame));
    }
    if (received.size() < bytes) return {Kind::Incomplete, bytes, {}, {}};
    const std::string_view frame = received.substr(0, bytes);
    if (!checkIsRight(frame)) return reject(Kind::Ignored, bytes, "wrong check value");
    Parsed_Frame parsed{Kind::Good, bytes, {}, {}};
    std::optional<Request> request = readRequest(frame, &parsed.reason);
    if (!request) return reject(Kind::Ignored, bytes, parsed.reason);
    if (request->isWrite && request->data.size() != request->items[0].bytes) {
        return reject(Kind::Ignored, bytes, "a write whose length is not that of its data");
    }
    parsed.request = std::move(*request);
    return parsed;
}

}  // namespace vornex
