#include "Check_Value.h"

namespace vornex {

std::uint16_t checkValue(const std::string& bytes) {
    unsigned value = 0;
    for (const char letter : bytes) {
        value ^= static_cast<unsigned>(static_cast<unsigned char>(letter)) << 8;
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 0x8000u) != 0 ? value << 1 ^ 0x1021u : value << 1;
        value &= 0xFFFFu;
    }
    return static_cast<std::uint16_t>(value);
}

bool checkIsRight(const std::string& frame) {
    const std::size_t smallest = 4 + 2;  // header, check value
    if (frame.size() < smallest) return false;
    const std::size_t end = frame.size() - 2;
    const unsigned stored =
        static_cast<unsigned char>(frame[end]) | static_cast<unsigned>(static_cast<unsigned char>(frame[end + 1])) << 8;
    return stored == checkValue(frame.substr(0, end));
}

}  // namespace vornex
