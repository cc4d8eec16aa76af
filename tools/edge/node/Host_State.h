// What a host says of itself, in the message that the broker keeps of it.
#ifndef VORNEX_EDGE_NODE_HOST_STATE_H
#define VORNEX_EDGE_NODE_HOST_STATE_H

#include <cstdint>
#include <optional>
#include <string>

namespace vornex::edge {

struct Host_State {
    bool isOnline = false;
    std::uint64_t time = 0;  // ms since 1970
};

// {"online": true, "timestamp": 1700000000000}; nothing for anything else.
std::optional<Host_State> hostStateOf(const std::string& text);

}  // namespace vornex::edge

#endif
