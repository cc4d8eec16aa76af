// Sizes: how many bytes an element, a variable and a value take.
#ifndef VORNEX_BASE_BYTE_COUNT_H
#define VORNEX_BASE_BYTE_COUNT_H

// Bytes of one element of an elementary type code (1 to 11), 0 for any other code.
int elementSize(int typeCode);

// Byte length of a variable of `count` units: bytes for type codes 1, 2, 10 and 11, 16-bit words for 3 to 9, where a
// partial element counts as a whole one. Any other code: `count` itself. Computed in 64 bits and held at the largest
// int; a negative count gives zero or less.
int CountToBytes(int typeCode, int count);

// The largest value handed in or out in one call. A count is a number that somebody else wrote: without a bound a
// single call could ask for 4 GiB and end the host's process. 16 MiB is far beyond any controller's memory.
enum { LargestValueBytes = 16 * 1024 * 1024 };

// `bytes` held between 0 and LargestValueBytes.
int heldValueBytes(long long bytes);

#endif
