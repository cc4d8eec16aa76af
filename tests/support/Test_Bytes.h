// Bytes as tests write them, and the check value that tests reckon with: not the code under test.
#ifndef VORNEX_TESTS_TEST_BYTES_H
#define VORNEX_TESTS_TEST_BYTES_H

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace vornex::test {

// "02 06 00 41"
inline std::string hexOf(std::string_view bytes) {
    std::string hex;
    for (const char letter : bytes) {
        const unsigned byte = static_cast<unsigned char>(letter);
        if (!hex.empty()) hex += ' ';
        hex += "0123456789ABCDEF"[byte >> 4];
        hex += "0123456789ABCDEF"[byte & 15];
    }
    return hex;
}

// Pairs of hex digits, with or without a blank between two pairs.
inline std::string bytesOf(std::string_view hex) {
    std::string bytes;
    for (std::size_t at = 0; at + 1 < hex.size(); at += at + 2 < hex.size() && hex[at + 2] == ' ' ? 3u : 2u)
        bytes += static_cast<char>(std::strtoul(std::string(hex.substr(at, 2)).c_str(), nullptr, 16));
    return bytes;
}

// CRC-16/XMODEM: each entry of the table is made bit by bit.
inline unsigned checkOf(std::string_view bytes) {
    static const std::array<unsigned, 256> table = [] {
        std::array<unsigned, 256> made{};
        for (unsigned i = 0; i < 256; ++i) {
            unsigned value = i << 8;
            for (int bit = 0; bit < 8; ++bit)
                value = (value & 0x8000 ? value << 1 ^ 0x1021 : value << 1) & 0xFFFF;
            made[i] = value;
        }
        return made;
    }();
    unsigned value = 0;
    for (const char byte : bytes)
        value = (value << 8 & 0xFFFF) ^ table[value >> 8 ^ static_cast<unsigned char>(byte)];
    return value;
}

// The bytes with their check value behind them.
inline std::string sealed(std::string bytes) {
    const unsigned value = checkOf(bytes);
    bytes += static_cast<char>(value & 0xFF);
    bytes += static_cast<char>(value >> 8);
    return bytes;
}

}  // namespace vornex::test

#endif
