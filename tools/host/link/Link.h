// The TCP link to the controller: one connection, one exchange at a time.
//
//   state       begins with                ends
//   Closed      construction, close()      with open()
//   Looking up  open() of a name           with addresses -> Connecting; a fault, the time-out or a stop -> Closed
//   Connecting  addresses                  with a connection -> Settling; a fault, the time-out or a stop -> Closed
//   Settling    a connection               when its time is over -> Open; a byte, its end or a stop -> Closed
//   Open        a quiet settle time        with exchange() -> Sending; close() -> Closed
//   Sending     exchange()                 when all is sent -> Receiving; a fault, the time-out or a stop -> Open
//   Receiving   a request sent             with the reply's last byte; a fault, the time-out or a stop -> Open
//
// From Open the only way on after a fault is close(): the wire has no transaction number, and what comes after a fault
// would pass for the next reply. A connection at rest is watched: its end, and bytes that nobody asked for, are faults.
//
// Two rules hold in every state. Only the thread that uses the link waits, in Wait_Point::until() with a deadline,
// which stop() ends too; rest() alone may go without a deadline. And an operation on the socket never blocks and begins
// only before the deadline: when the process itself stood still past it, the exchange is over.
#ifndef VORNEX_HOST_LINK_LINK_H
#define VORNEX_HOST_LINK_LINK_H

#include <string>

#include "host/link/Look_Up.h"
#include "host/link/Wait_Point.h"

namespace vornex {

enum class Transfer_State {
    Complete,     // exactly the expected bytes
    TimedOut,     // fewer bytes, or none, in time
    Closed,       // the controller closed or reset the connection
    Surplus,      // more bytes than expected
    NoLink,       // there was no connection to send on
    Interrupted,  // the tool is ending
};

// Why nothing may be sent; none when `reason` is empty.
struct Link_Fault {
    std::string reason;    // in words
    bool unasked = false;  // bytes came that nobody asked for

    explicit operator bool() const { return !reason.empty(); }
};

struct Transfer {
    Transfer_State state = Transfer_State::NoLink;
    std::string reply;   // what was received, also when it is not complete
    std::string reason;  // in words unless complete
};

// Used by one thread at a time; Wait_Point::stop() may come from any.
class Link {
public:
    explicit Link(Wait_Point& waitPoint) : wait(waitPoint) {}

    // Connects, and listens for the settle time before the connection counts: what comes then was meant for somebody
    // else. `timeout` bounds look-up and connecting together; several addresses of a name share it.
    Link_Fault open(const Host_Port& target, Milliseconds timeout, Milliseconds settle);
    // Never waits: what is not sent yet is the system's to send.
    void close() { socket.reset(); }
    bool isOpen() const { return socket.isOpen(); }

    // Empty when the connection stands and no byte waits, else the reason why nothing may be sent on it.
    Link_Fault unfit();
    // Nothing is to be sent: waits until then or for a wake-up, and watches the connection if there is one. Its fault.
    Link_Fault rest(Steady_Time until);

    // Sends the frame and collects exactly `replyLength` bytes (0: none are awaited). The connection stays open,
    // whatever came; the caller closes it when it does not trust it any more.
    Transfer exchange(const std::string& frame, std::size_t replyLength, Milliseconds timeout);

private:
    std::string connectAny(const Host_Port& target, Milliseconds timeout);
    std::string connect(const Socket_Address& address, Steady_Time deadline);
    bool step(short events, Steady_Time deadline, Transfer& transfer);
    bool sendAll(const std::string& frame, Steady_Time deadline, Transfer& transfer);
    bool collect(std::size_t replyLength, Steady_Time deadline, Transfer& transfer);
    void takeSurplus(Transfer& transfer);

    Wait_Point& wait;
    Look_Up lookUp;
    Descriptor socket;
};

}  // namespace vornex

#endif
