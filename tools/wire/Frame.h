// Requests and replies as records and on their way to the wire, and the sizes of what they are made of.
// docs/wire-format.md draws them.
#ifndef VORNEX_WIRE_FRAME_H
#define VORNEX_WIRE_FRAME_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vornex {

constexpr char StartByte = 0x02;
constexpr char ReadCommand = 'A';
constexpr char WriteCommand = '@';
constexpr std::size_t HeaderBytes = 1 + 2 + 1;  // start, body length, command
constexpr std::size_t ItemBytes = 4 + 2;        // address, length
constexpr std::size_t CountBytes = 2;           // of a reply's item
constexpr std::size_t CheckBytes = 2;

// A run of controller memory: the address of its first byte, and how many bytes.
struct Memory_Range {
    std::uint32_t address = 0;
    std::uint32_t bytes = 0;
};

struct Request {
    bool isWrite = false;
    std::vector<Memory_Range> items;  // of a write exactly one
    std::string data;                 // of a write, normally as many bytes as its item says
};

struct Reply_Item {
    std::uint16_t count = 0;  // what the reply says, normally the size of `data`
    std::string data;
};

struct Reply {
    std::string header;             // 4 bytes; nobody examines them
    std::vector<Reply_Item> items;  // none in the reply to a write
    std::string rest;               // what stands behind the last item; normally nothing
};

// Bytes of the whole reply to this request.
std::size_t replyBytes(const Request& request);

// The reply to this request before it has items. Its header mirrors a request's: start byte, length modulo 65536,
// command.
Reply emptyReply(const Request& request);

// Header, items, rest and check value.
std::string encodeReply(const Reply& reply);

// "read 100+2 200+10", "write 100+2": the first ranges, and how many more there are.
std::string requestText(const Request& request);

}  // namespace vornex

#endif
