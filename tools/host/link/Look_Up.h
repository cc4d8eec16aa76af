// Names to addresses.
#ifndef VORNEX_HOST_LINK_LOOK_UP_H
#define VORNEX_HOST_LINK_LOOK_UP_H

#include <sys/socket.h>

#include <memory>
#include <string>
#include <vector>

#include "host/link/Wait_Point.h"
#include "text/Host_Port.h"

namespace vornex {

struct Socket_Address {
    sockaddr_storage bytes;
    socklen_t size;
};

// The system's look-up can be neither bounded nor cut short, so a name is looked up on a thread of its own, which is
// left behind when it takes too long. There is one at most: the next find() waits for the same answer.
class Look_Up {
public:
    // One thread at a time. Fills `found` and returns an empty text, or the reason in words. Addresses in digits are
    // there at once.
    std::string find(const Host_Port& target, Steady_Time deadline, Wait_Point& wait,
                     std::vector<Socket_Address>& found);

private:
    struct Request;
    std::shared_ptr<Request> running;
};

}  // namespace vornex

#endif
