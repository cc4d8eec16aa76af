#include "wire/Check_Value.h"

#include <array>

#include "wire/Byte_Reader.h"
#include "wire/Frame.h"

namespace vornex {
namespace {

// The check value stands in the upper half of a 32-bit number: what leaves it at the top is gone without a mask.
constexpr std::array<std::uint32_t, 256> makeTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t value = byte << 24;
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 0x80000000u) != 0 ? value << 1 ^ 0x10210000u : value << 1;
        table[byte] = value;
    }
    return table;
}

}  // namespace

std::uint16_t checkValue(std::string_view bytes) {
    static constexpr std::array<std::uint32_t, 256> table = makeTable();
    std::uint32_t value = 0;
    for (const char byte : bytes)
        value = value << 8 ^ table[value >> 24 ^ static_cast<unsigned char>(byte)];
    return static_cast<std::uint16_t>(value >> 16);
}

std::uint16_t storedCheck(std::string_view frame) {
    if (frame.size() < CheckBytes) return 0;
    return static_cast<std::uint16_t>(Byte_Reader(frame.substr(frame.size() - CheckBytes)).number(CheckBytes));
}

bool checkIsRight(std::string_view frame) {
    if (frame.size() < HeaderBytes + CheckBytes) return false;
    return storedCheck(frame) == checkValue(frame.substr(0, frame.size() - CheckBytes));
}

}  // namespace vornex
