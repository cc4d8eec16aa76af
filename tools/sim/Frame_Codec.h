// The frames as the controller sees them: requests in, replies out.
#ifndef VORNEX_SIM_FRAME_CODEC_H
#define VORNEX_SIM_FRAME_CODEC_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vornex::sim {

using Bytes = std::vector<std::uint8_t>;

// A run of controller memory: first byte's address and number of bytes.
struct Range {
    std::uint32_t address = 0;
    std::uint16_t bytes = 0;
};

struct Request {
    bool isWrite = false;
    std::vector<Range> items;  // exactly one for a write
    Bytes data;                // of a write: as many bytes as its item says
};

// One item of a reply. `count` is what the reply says, normally the size of `data`.
struct Reply_Item {
    std::uint16_t count = 0;
    Bytes data;
};

struct Reply {
    std::array<std::uint8_t, 4> header{};  // nobody examines it; it mirrors a request's
    std::vector<Reply_Item> items;         // none for the acknowledgement of a write
};

// CRC-16/XMODEM: polynomial 0x1021, start 0, most significant bit first.
std::uint16_t checkValue(const std::uint8_t* bytes, std::size_t count);

// What stands at the beginning of the bytes received so far.
struct Parsed_Frame {
    enum class Kind {
        Incomplete,  // wait for more
        Good,        // `request` is set
        Ignored,     // a whole frame that no controller answers: drop `bytes`, go on behind it
        Broken       // not a frame; where the next one begins cannot be known
    };
    Kind kind = Kind::Incomplete;
    std::size_t bytes = 0;  // of the whole frame; 0 when not known
    Request request;
    std::string reason;  // for Ignored and Broken
};

// `maxFrame` is the largest frame taken, in bytes, header and check value included.
Parsed_Frame parseFrame(const std::uint8_t* received, std::size_t bytes, std::size_t maxFrame);

// Bytes of the whole reply to this request.
std::size_t replyBytes(const Request& request);

// The header for this request's reply: start byte, length modulo 65536, command.
Reply emptyReply(const Request& request);

// Header, items and check value.
Bytes encodeReply(const Reply& reply);

// "02 06 00 41"
std::string hexText(const Bytes& bytes);
// Reads pairs of hex digits, blanks between them allowed. False when it is something else or nothing.
bool parseHex(const std::string& text, Bytes& bytes);

// "read 100+2 200+10", "write 100+2"
std::string requestText(const Request& request);

}  // namespace vornex::sim

#endif
