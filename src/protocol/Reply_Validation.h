// Whether a reply may be used at all. On the exchange thread, with the frame in flight that is answered; no locks.
#ifndef VORNEX_PROTOCOL_REPLY_VALIDATION_H
#define VORNEX_PROTOCOL_REPLY_VALIDATION_H

#include "driver/Communication_Protocol.h"

enum Reply_Kind { BadReply = 0, ReadReply = 1, WriteReply = 2 };

// Tests the check value in the last two of `count` reply bytes and tells by the frame in flight what the reply
// answers (Reply_Kind). Fewer than six bytes, or a count beyond the array, are a bad reply.
VORNEX_EXPORT int CheckGetData(const QByteArray* reply, int count) __attribute__((warn_unused_result));

// CheckGetData over the whole array; a read reply whose item counts run past its item area is bad as well.
Reply_Kind replyKind(const QByteArray& reply) __attribute__((warn_unused_result));

#endif
