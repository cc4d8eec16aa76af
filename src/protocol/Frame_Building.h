// What the read and the write builder share: a frame's header, its check value, and handing the finished frame to the
// scheduler.
#ifndef VORNEX_PROTOCOL_FRAME_BUILDING_H
#define VORNEX_PROTOCOL_FRAME_BUILDING_H

#include "base/Little_Endian.h"
#include "driver/Communication_Protocol.h"

// Writes start byte, body length and command.
void putHeader(Frame_Writer& writer, int bodyLength, int command);

// Writes the check value over everything written so far.
void putCheckValue(Frame_Writer& writer);

// Puts the frame in flight: appends it to protocolList, where the scheduler finds it, and has one good reply complete
// it. On the exchange thread.
void putInFlight(const Protocol& protocol) REQUIRES(PLC_driver.listMutex);

#endif
