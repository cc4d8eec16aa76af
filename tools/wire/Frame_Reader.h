// Bytes from the wire to records. Bytes are never trusted: nothing is read past their end.
#ifndef VORNEX_WIRE_FRAME_READER_H
#define VORNEX_WIRE_FRAME_READER_H

#include <optional>
#include <string>
#include <string_view>

#include "wire/Frame.h"

namespace vornex {

// One whole request frame; its check value is not looked at, and a write may carry other bytes than its item says.
// Nothing when it is none: `fault`, when given, gets the reason.
std::optional<Request> readRequest(std::string_view frame, std::string* fault = nullptr);

// Start byte and command are those of a request, whatever else is wrong with it.
bool beginsLikeRequest(std::string_view bytes);

// A reply by its own counts, `mostItems` at most; its check value is not looked at. An item whose count runs past the
// end has the bytes that are there and is the last one. Nothing when there are not even header and check value.
std::optional<Reply> readReply(std::string_view bytes, std::size_t mostItems = SIZE_MAX);

// The first four bytes of a reply, or what is there of them. The driver does not look at them, nor do controllers agree
// on them: bytes other than zero may tell a person whose reply it is.
std::string headerOf(std::string_view reply);
// Whether one of them is not zero.
bool hasHeader(std::string_view reply);

// The items are those asked for, byte for byte: only then can the data be told to belong to the addresses.
bool answers(const Reply& reply, const Request& request);

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
Parsed_Frame parseFrame(std::string_view received, std::size_t maxFrame);

}  // namespace vornex

#endif
