// Frames and replies taken apart, for traces, statistics and to know which bytes a reply has filled.
#ifndef VORNEX_LABEL_FRAME_VIEW_H
#define VORNEX_LABEL_FRAME_VIEW_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vornex {

struct Frame_Item {
    std::uint32_t address = 0;
    std::uint32_t length = 0;
};

// A request as its frame tells it.
struct Request_View {
    enum class Command { Read, Write };

    Command command = Command::Read;
    std::vector<Frame_Item> items;  // of a write exactly one
    std::string data;               // of a write
};

// Nothing when the bytes are no request frame: start byte, body length or command wrong. The check value is not tested.
std::optional<Request_View> viewRequest(const std::string& frame);

// The item data of a reply to a read, in the order of the request. Nothing when an item's count differs from the
// request's length or the items do not end at the check value: such bytes cannot be told to belong to the addresses.
std::optional<std::vector<std::string>> viewReply(const Request_View& request, const std::string& reply);

}  // namespace vornex

#endif
