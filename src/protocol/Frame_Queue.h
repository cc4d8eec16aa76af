// What the two frame builders share: sealing a frame with its check value and putting it in flight.
#ifndef VORNEX_PROTOCOL_FRAME_QUEUE_H
#define VORNEX_PROTOCOL_FRAME_QUEUE_H

#include "base/Little_Endian.h"
#include "driver/Communication_Protocol.h"

// Writes start byte, body length and command.
void putHeader(Frame_Writer& writer, int bodyLength, int command);

// Writes the check value over everything written so far.
void putCheckValue(Frame_Writer& writer);

// Appends the frame to protocolList: from now on it is in flight, and one good reply completes it.
// Thread: exchange.
void putInFlight(const Protocol& protocol) REQUIRES(PLC_driver.listMutex);

#endif
