#include "base/Byte_Count.h"

#include <climits>

int elementSize(int typeCode) {
    static const unsigned char sizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8, 8, 255, 255};
    return typeCode >= 1 && typeCode <= 11 ? sizes[typeCode] : 0;
}

int CountToBytes(int typeCode, int count) {
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

int heldValueBytes(long long bytes) {
    if (bytes < 0) return 0;
    return bytes > LargestValueBytes ? static_cast<int>(LargestValueBytes) : static_cast<int>(bytes);
}
