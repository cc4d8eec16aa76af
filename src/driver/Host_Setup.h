// Station switch and the hooks that stand in for the frame builders in remote mode.
#ifndef VORNEX_DRIVER_HOST_SETUP_H
#define VORNEX_DRIVER_HOST_SETUP_H

#include "driver/Communication_Protocol.h"

// True when the station is switched off. Any thread; takes stationMutex.
VORNEX_EXPORT bool Ethernetcontains(int station) EXCLUDES(PLC_driver.stationMutex);

// Always 0: this controller has no textual addresses.
VORNEX_EXPORT int StringAddressToInt(int kind, QString text);

// Called by the scheduler in remote mode. They prepare no frame: remote requests are the host's business.
VORNEX_EXPORT void Remote_ReadVar(RW_VAR* request);
VORNEX_EXPORT void Remote_WriteVar(RW_VAR* request);

#endif
