// Write request frames. On the exchange thread.
#ifndef VORNEX_PROTOCOL_FUNC_WRITE_H
#define VORNEX_PROTOCOL_FUNC_WRITE_H

#include "driver/Communication_Protocol.h"

// Builds the frame of one write request and puts it in flight; then brings the data image up to date, unless the
// driver has given up on a request and seen no good reply since: the controller is not known to take the write then.
// Takes dataMutex for that.
VORNEX_EXPORT void WriteRegister(RW_VAR* request) REQUIRES(PLC_driver.listMutex) EXCLUDES(PLC_driver.dataMutex);

// The frame alone. Body length and data follow the size of `data`, the count in the frame follows `length`.
VORNEX_EXPORT void WriteAnalog(RW_VAR* request) REQUIRES(PLC_driver.listMutex);

#endif
