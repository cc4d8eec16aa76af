#include "edge/node/Host_State.h"

#include "text/Json_Tree.h"
#include "text/Text_Input.h"

namespace vornex::edge {

namespace {

const std::size_t LongestState = 1000;

}  // namespace

std::optional<Host_State> hostStateOf(const std::string& text) {
    if (text.size() > LongestState) return std::nullopt;
    try {
        const Json_Node root = parseJson(text, "");
        const Json_Entry* const online = root.find("online");
        const Json_Entry* const time = root.find("timestamp");
        if (!online || online->value.kind != Json_Node::Kind::Bool || !time) return std::nullopt;
        if (time->value.kind != Json_Node::Kind::Integer || time->value.integer < 0) return std::nullopt;
        return Host_State{online->value.integer != 0, static_cast<std::uint64_t>(time->value.integer)};
    } catch (const File_Error&) {
        return std::nullopt;
    }
}

}  // namespace vornex::edge
