// An event of the link, as small as it may be kept.
#ifndef VORNEX_PANEL_RECORD_KEPT_EVENT_H
#define VORNEX_PANEL_RECORD_KEPT_EVENT_H

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "host/Driver_Labels.h"
#include "host/link/Exchange.h"

namespace vornex::panel {

struct Kept_Read {
    Label_Range range;
    int id;
};
struct Kept_Write {
    Label_Range range;
    std::string data;
    int id;
};
struct Kept_Poll {
    std::shared_ptr<const std::vector<Label_Range>> ranges;
};
struct Kept_Memory {
    std::uint32_t address;
    int code;
};
struct Kept_Frame {
    Wall_Time at;
    int attempt;
    int replyLength;
    std::string frame;
};
struct Kept_Reply {
    Wall_Time at;
    std::chrono::microseconds latency;
    int status;
    Transfer_State state;
    bool countsDiffer;
    std::string reply;
    std::string reason;
};
struct Kept_Idle {};

using Kept_Event =
    std::variant<Kept_Idle, Kept_Frame, Kept_Reply, Link_Change, Kept_Read, Kept_Write, Kept_Poll, Kept_Memory>;

Kept_Frame keptFrame(const Exchange& exchange);
Kept_Reply keptReply(const Exchange& exchange);
// With what it points to.
std::size_t memoryOf(const Kept_Event& event);

// Tells events one after the other; a reply belongs to the frame before it.
class Event_Teller {
public:
    explicit Event_Teller(Exchange_Observer& observer) : listener(observer) {}

    void tell(const Kept_Event& event);

private:
    void frame(const Kept_Frame& given);
    void reply(const Kept_Reply& done);

    Exchange_Observer& listener;
    Exchange pending;
};

}  // namespace vornex::panel

#endif
