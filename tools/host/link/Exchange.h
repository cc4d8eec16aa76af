// What a session tells those who look on: every call, frame and reply, every change of the link.
#ifndef VORNEX_HOST_LINK_EXCHANGE_H
#define VORNEX_HOST_LINK_EXCHANGE_H

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

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

    bool good() const { return status == 1 || status == 100; }
    bool gaveUp() const { return status != 0 && !good(); }
    // Why it failed, in words; empty when it did not.
    std::string fault() const;
};

// What DataCom gets for the exchange: the bytes that came and their number, or for a reply with other items than asked
// for no bytes under the full length. The driver takes that for a bad reply; the real one it would store shifted.
void handOver(const Exchange& exchange, QByteArray& reply, int& length);

// The fault is that of Down and StillDown.
struct Link_Change : Link_Fault {
    enum class State { Up, Down, StillDown };

    State state = State::Up;
    Wall_Time at;
};

// "connected", "connection lost: REASON" or "cannot connect: REASON"
std::string linkText(const Link_Change& change);

// The driver's result codes in words: "no reply (code 44, type 3)".
std::string statusText(int code);
// The first code of the band that a code lies in (11, 41, 71, 111, 141, 171), the code itself outside of the bands.
int statusBand(int code);
// What a band means, without code and type: "no reply".
std::string bandText(int band);

struct Label_Range;

// Whom the calls hold up: observers record and signal. They come on the exchange thread, but the first four, which come
// on the thread that queued and while the exchange stands still: what is told is in the order in which the driver has
// it.
class Exchange_Observer {
public:
    virtual ~Exchange_Observer() = default;
    virtual void readQueued(const Label_Range&, int) {}                       // with the request's number
    virtual void writeQueued(const Label_Range&, const std::string&, int) {}  // data, number
    virtual void pollSet(const std::vector<Label_Range>&) {}
    virtual void memoryLabelSet(std::uint32_t, int) {}  // address, type code
    virtual void frameGiven(const Exchange&) {}         // by the driver, before it is sent
    virtual void exchangeDone(const Exchange&) {}       // the driver has taken the reply
    virtual void nothingToSend() {}                     // the driver answered null
    virtual void linkChanged(const Link_Change&) {}
    virtual void roundDone(int) {}  // the cyclic list has been served once more; rounds so far
    virtual void interrupted() {}   // by Session::interrupt()
};

}  // namespace vornex

#endif
