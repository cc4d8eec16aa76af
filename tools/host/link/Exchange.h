// What the exchange thread tells those who look on: every frame, every reply, every change of the link.
#ifndef VORNEX_HOST_LINK_EXCHANGE_H
#define VORNEX_HOST_LINK_EXCHANGE_H

#include <chrono>
#include <string>

#include <QtCore/QByteArray>

#include "host/link/Link.h"
#include "text/Time_Text.h"
#include "wire/Frame.h"

namespace vornex {

// One attempt: a frame that the driver gave, and what became of it.
struct Exchange {
    Wall_Time sentAt;
    Wall_Time repliedAt;
    std::chrono::microseconds latency{0};
    int attempt = 1;  // of this frame
    std::string frame;
    Request request;
    bool cyclic = false;  // of the cyclic list, else a write or one-shot read
    int plan = 0;         // of how many, by which the cyclic list was polled when the frame was given
    int replyLength = 0;  // that the driver expects
    Transfer transfer;
    bool countsDiffer = false;  // complete and the check value right, but other items than asked for: not handed on
    int status = 0;             // from the driver: 0 again, 1 or 100 good, else given up with a band code
    int varType = 0;            // of the driver's result record, when the request is finished
    int varId = 0;

    bool good() const { return status == 1 || status == 100; }
    bool gaveUp() const { return status != 0 && !good(); }
    // Why it failed, in words; empty when it did not.
    std::string fault() const;
};

// What DataCom gets for the exchange: the bytes that came and their number, or for a reply with other items than asked
// for no bytes under the full length. The driver takes that for a bad reply; the real one it would store shifted.
void handOver(const Exchange& exchange, QByteArray& reply, int& length);

struct Link_Change {
    enum class State { Up, Down, StillDown };

    State state = State::Up;
    Wall_Time at;
    std::string reason;    // of Down and StillDown
    bool unasked = false;  // of Down and StillDown: because of bytes that nobody asked for
};

// "connected", "connection lost: REASON" or "cannot connect: REASON"
std::string linkText(const Link_Change& change);

// All calls come on the exchange thread and hold it up: observers record and signal.
class Exchange_Observer {
public:
    virtual ~Exchange_Observer() = default;
    virtual void frameGiven(const Exchange&) {}    // by the driver, before it is sent
    virtual void exchangeDone(const Exchange&) {}  // the driver has taken the reply
    virtual void nothingToSend() {}                // the driver answered null
    virtual void linkChanged(const Link_Change&) {}
    virtual void roundDone(int) {}  // the cyclic list has been served once more; rounds so far
    virtual void interrupted() {}   // by Session::interrupt()
};

}  // namespace vornex

#endif
