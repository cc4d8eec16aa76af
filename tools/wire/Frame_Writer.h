// Replies to bytes for the wire.
#ifndef VORNEX_WIRE_FRAME_WRITER_H
#define VORNEX_WIRE_FRAME_WRITER_H

#include <string>

#include "wire/Frame.h"

namespace vornex {

// The reply to this request before it has items. Its header mirrors a request's: start byte, length modulo 65536,
// command.
Reply emptyReply(const Request& request);

// Header, items, rest and check value.
std::string encodeReply(const Reply& reply);

}  // namespace vornex

#endif
