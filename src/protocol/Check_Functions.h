// Check values and digit characters. Only CalCRC takes part in this protocol; the others complete the exported set.
// Free functions without state: any thread, no locks. None checks its pointer.
#ifndef VORNEX_PROTOCOL_CHECK_FUNCTIONS_H
#define VORNEX_PROTOCOL_CHECK_FUNCTIONS_H

#include "vornex_label_tcp/Entry_Points.h"

// CRC-16/XMODEM: polynomial 0x1021, most significant bit first, start 0, no final exclusive-or. 0 for no bytes.
VORNEX_EXPORT unsigned short CalCRC(unsigned char* bytes, unsigned short count);

// Sum of the bytes modulo 65536.
VORNEX_EXPORT unsigned short CalSUM(unsigned char* bytes, unsigned short count);

// 256 minus (sum of the bytes modulo 256): 1 to 256, not cut to 8 bits.
VORNEX_EXPORT unsigned short CalLRC(unsigned char* bytes, unsigned short count);

// Exclusive-or of the bytes. 0 for no bytes.
VORNEX_EXPORT unsigned short CalXOR(unsigned char* bytes, unsigned short count);

// Digit value to character code: 0 to 9 give "0" to "9", 10 to 35 give "A" to "Z". No range check.
VORNEX_EXPORT int DigitalToASCII(int digit);

// Character code to digit value. ":" to "?" give 10 to 15; "@" and codes below "0" give 0. No case folding.
VORNEX_EXPORT int ASCIIToDigital(int code);

#endif
