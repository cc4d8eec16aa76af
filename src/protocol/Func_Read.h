// Read request frames. On the exchange thread.
#ifndef VORNEX_PROTOCOL_FUNC_READ_H
#define VORNEX_PROTOCOL_FUNC_READ_H

#include "driver/Communication_Protocol.h"

// Builds one frame that reads every range of groupList and puts it in flight. `request`, the first of the group, is
// only copied into the Protocol. A range's length goes on the wire with its low 16 bits.
// groupList holds at least one request.
VORNEX_EXPORT void ReadRegister(RW_VAR* request) REQUIRES(PLC_driver.listMutex);
VORNEX_EXPORT void ReadAnalog(RW_VAR* request) REQUIRES(PLC_driver.listMutex);

#endif
