// The data image: what the driver has learned of the controller's memory, byte by byte. Every path through it takes
// one hash lookup per byte. What is marked "exchange thread" runs on that thread alone, with the frame in flight that
// the reply answers; the rest runs on any thread.
#ifndef VORNEX_PROTOCOL_FUNC_DEALDATA_H
#define VORNEX_PROTOCOL_FUNC_DEALDATA_H

#include "driver/Communication_Protocol.h"

// Makes sure the image has an entry for the address, new ones with value 0, and returns the address.
VORNEX_EXPORT unsigned int ExtendFindSameVar(const unsigned int& address) REQUIRES(PLC_driver.dataMutex);

// Stores the items of a read reply at the addresses of the requests in groupList; each item's own count says how many
// bytes. A reply whose counts run past its item area is not stored at all. Addresses wrap at 32 bits. Exchange thread.
VORNEX_EXPORT void SaveToLocalDataErea(QByteArray* reply) REQUIRES(PLC_driver.dataMutex);

// Copies a write request's bytes into the image: `length` bytes (held at LargestValueBytes), zeros where `data` is
// shorter. Takes dataMutex: readers see none or all of them.
VORNEX_EXPORT void WriteDataToLocal(RW_VAR* request) EXCLUDES(PLC_driver.dataMutex);

// Whether the item counts of a read reply, one item for each request in groupList, stay inside its item area.
// Exchange thread; takes no lock.
bool replyItemsFit(const QByteArray& reply);

// Copies `count` bytes from `address` on out of the image; bytes not known yet are 0 and get an entry.
void readImage(unsigned int address, char* bytes, int count) REQUIRES(PLC_driver.dataMutex);

#endif
