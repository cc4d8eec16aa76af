#include "wire/Frame.h"

#include <algorithm>

namespace vornex {

std::size_t replyBytes(const Request& request) {
    std::size_t bytes = HeaderBytes + CheckBytes;
    if (request.isWrite) return bytes;
    for (const Memory_Range& item : request.items)
        bytes += CountBytes + item.bytes;
    return bytes;
}

std::string requestText(const Request& request) {
    constexpr std::size_t Shown = 8;  // items; a log line stays a line
    std::string text = request.isWrite ? "write" : "read";
    for (std::size_t i = 0; i < std::min(request.items.size(), Shown); ++i) {
        text += " " + std::to_string(request.items[i].address) + "+" + std::to_string(request.items[i].bytes);
    }
    if (request.items.size() > Shown) text += " and " + std::to_string(request.items.size() - Shown) + " more";
    return text;
}

}  // namespace vornex
