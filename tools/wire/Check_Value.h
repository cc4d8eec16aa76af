// The check value of frames and replies, worked out apart from the driver: what a program says of a frame does not rest
// on it.
#ifndef VORNEX_WIRE_CHECK_VALUE_H
#define VORNEX_WIRE_CHECK_VALUE_H

#include <cstdint>
#include <string_view>

namespace vornex {

// CRC-16/XMODEM: polynomial 0x1021, start 0, most significant bit first.
std::uint16_t checkValue(std::string_view bytes);

// The last two bytes as a check value, low byte first; 0 when there are fewer.
std::uint16_t storedCheck(std::string_view frame);

// Whether a frame or reply ends in the check value of the bytes before it. Less than 6 bytes: never.
bool checkIsRight(std::string_view frame);

}  // namespace vornex

#endif
