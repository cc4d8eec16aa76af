#include "protocol/Check_Functions.h"

namespace {

// CRC of `value` moved through `bits` shift steps.
constexpr unsigned shifted(unsigned value, int bits) {
    return bits == 0 ? value : shifted(((value << 1) ^ (value & 0x8000 ? 0x1021 : 0)) & 0xFFFF, bits - 1);
}

constexpr unsigned exchanged(unsigned value) { return value >> 8 | (value & 0xFF) << 8; }

// The CRC of one byte followed by `zeros` zero bytes, its two bytes exchanged.
constexpr unsigned short entry(unsigned byte, int zeros) {
    return static_cast<unsigned short>(exchanged(shifted(byte << 8, 8 + 8 * zeros)));
}

// The indexes 0 to N - 1 as template arguments, joined from halves to keep the compiler's recursion shallow.
template <unsigned...>
struct Indexes {};
template <class, class>
struct Joined;
template <unsigned... A, unsigned... B>
struct Joined<Indexes<A...>, Indexes<B...>> {
    typedef Indexes<A..., (sizeof...(A) + B)...> type;
};
template <unsigned N>
struct Counted {
    typedef typename Joined<typename Counted<N / 2>::type, typename Counted<N - N / 2>::type>::type type;
};
template <>
struct Counted<1> {
    typedef Indexes<0> type;
};

struct Crc_Row {
    unsigned short of[256];
};

template <unsigned... Byte>
constexpr Crc_Row makeRow(int zeros, Indexes<Byte...>) {
    return {{entry(Byte, zeros)...}};
}

// Four bytes a step from 4 x 256 x 2 bytes = 2 KiB of constant data: what the board's first-level cache can spare.
constexpr Crc_Row rows[4] = {makeRow(0, Counted<256>::type()), makeRow(1, Counted<256>::type()),
                             makeRow(2, Counted<256>::type()), makeRow(3, Counted<256>::type())};

// The low byte first, whatever the processor.
unsigned wordOf(const unsigned char* bytes) {
    return bytes[0] | static_cast<unsigned>(bytes[1]) << 8 | static_cast<unsigned>(bytes[2]) << 16 |
           static_cast<unsigned>(bytes[3]) << 24;
}

unsigned sumOf(const unsigned char* bytes, unsigned count) {
    unsigned sum = 0;
    for (unsigned i = 0; i < count; ++i)
        sum += bytes[i];
    return sum;
}

}  // namespace

unsigned short CalCRC(unsigned char* bytes, unsigned short count) {
    unsigned crc = 0;  // its two bytes exchanged: the first that meets a byte is the low one, as in a word of the bytes
    unsigned left = count;
    for (; left >= 4; left -= 4, bytes += 4) {
        // The register reaches into the first two of the four bytes; the last two are looked up as they are, without
        // waiting for it.
        const unsigned word = wordOf(bytes);
        const unsigned reached = crc ^ (word & 0xFFFF);
        const unsigned rest = static_cast<unsigned>(rows[1].of[word >> 16 & 0xFF] ^ rows[0].of[word >> 24]);
        crc = rest ^ rows[3].of[reached & 0xFF] ^ rows[2].of[reached >> 8];
    }
    for (; left > 0; --left, ++bytes)
        crc = crc >> 8 ^ rows[0].of[(crc ^ *bytes) & 0xFF];
    return static_cast<unsigned short>(exchanged(crc));
}

unsigned short CalSUM(unsigned char* bytes, unsigned short count) {
    return static_cast<unsigned short>(sumOf(bytes, count));
}

unsigned short CalLRC(unsigned char* bytes, unsigned short count) {
    return static_cast<unsigned short>((~sumOf(bytes, count) & 0xFF) + 1);
}

unsigned short CalXOR(unsigned char* bytes, unsigned short count) {
    unsigned mixed = 0;
    for (unsigned i = 0; i < count; ++i)
        mixed ^= bytes[i];
    return static_cast<unsigned short>(mixed);
}

int DigitalToASCII(int digit) {
    // Unsigned, since nothing checks the range and the largest digits would overflow.
    return static_cast<int>(static_cast<unsigned>(digit) + (digit <= 9 ? '0' : 'A' - 10));
}

int ASCIIToDigital(int code) {
    if (code < '0' || code == '@') return 0;
    return code < '@' ? code - '0' : code - ('A' - 10);
}
