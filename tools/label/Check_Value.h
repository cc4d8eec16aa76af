// The check value of frames and replies, worked out by the tool itself: what it says of a frame does not rest on the
// driver under test.
#ifndef VORNEX_LABEL_CHECK_VALUE_H
#define VORNEX_LABEL_CHECK_VALUE_H

#include <cstdint>
#include <string>

namespace vornex {

// CRC-16 with polynomial 0x1021, high bit first, start value 0.
std::uint16_t checkValue(const std::string& bytes);

// Whether the last two bytes are the check value of those before them, low byte first. Less than 6 bytes: never.
bool checkIsRight(const std::string& frame);

}  // namespace vornex

#endif
