// Sizes: how many bytes an element, a variable and a value take.
#ifndef VORNEX_BASE_BYTE_COUNT_H
#define VORNEX_BASE_BYTE_COUNT_H

#include <climits>

// Whether a type code stands for an element with a size.
inline bool isElementary(int typeCode) { return typeCode >= 1 && typeCode <= 11; }

// Bytes of one element of an elementary type code; the caller has asked isElementary.
inline int elementSize(int typeCode) {
    static const unsigned char sizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8, 8, 255, 255};
    return sizes[typeCode];
}

// Byte length of a variable of `count` units: bytes for type codes 1, 2, 10 and 11, 16-bit words for 3 to 9, where a
// partial element counts as a whole one. Any other code: `count` itself. Computed in 64 bits and held at the largest
// int; a negative count gives zero or less.
inline int CountToBytes(int typeCode, int count) {
    const long long wide = count;
    long long bytes = wide;
    switch (typeCode) {
        case 3:
        case 4: bytes = 2 * wide; break;
        case 5:
        case 6:
        case 7: bytes = (wide + 1) / 2 * 4; break;
        case 8:
        case 9: bytes = (wide + 3) / 4 * 8; break;
        default: break;
    }
    if (bytes > INT_MAX) return INT_MAX;
    return bytes < INT_MIN ? INT_MIN : static_cast<int>(bytes);
}

// The largest value handed in or out in one call. A count is a number that somebody else wrote: without a bound a
// single call could ask for 4 GiB and end the host's process. 16 MiB is far beyond any controller's memory.
enum { LargestValueBytes = 16 * 1024 * 1024 };

// `bytes` held between 0 and LargestValueBytes.
inline int heldValueBytes(long long bytes) {
    if (bytes < 0) return 0;
    return bytes > LargestValueBytes ? static_cast<int>(LargestValueBytes) : static_cast<int>(bytes);
}

#endif
