// Packing of cyclic reads: from sorted definitions to requests of bounded length. Called by any thread; lists that are
// handed in are the caller's to guard.
#ifndef VORNEX_LISTS_FUNC_INITI_H
#define VORNEX_LISTS_FUNC_INITI_H

#include "driver/Communication_Protocol.h"

// Sorts by address, ascending as signed numbers; equal addresses keep their order. O(n).
VORNEX_EXPORT void Bubble_Sort(QList<RW_VAR>* list);

// Appends the sorted entries to readList, packed: an entry that starts less than maxLength bytes after the start of
// the last request joins it (gaps are read along), longer ones are cut into pieces of maxLength bytes. maxLength 1:
// one request for each address, never cut. Below 1: nothing.
VORNEX_EXPORT void BitVarReCreat(QList<RW_VAR>* list, int maxLength) REQUIRES(PLC_driver.listMutex);

// Appends `request` to `list`, cut into pieces of `maximum` bytes when `total` bytes are more, and leaves it as the
// last piece. A maximum below 1 appends nothing.
VORNEX_EXPORT void WhetherGroup(int total, int maximum, RW_VAR* request, QList<RW_VAR>* list);

// Pieces that one entry is cut into at most; an entry that needs more is left out. A count is a number that somebody
// else wrote: without a bound a single definition could fill the panel's memory.
enum { MostPieces = 1 << 20 };

#endif
