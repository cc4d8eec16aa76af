// The controller behind all connections: answers requests, with the faults that are asked for.
#ifndef VORNEX_SIM_CONTROLLER_H
#define VORNEX_SIM_CONTROLLER_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "sim/faults/Fault_Rules.h"
#include "sim/plant/Plant.h"
#include "wire/Frame.h"

namespace vornex::sim {

// What the simulator counts.
struct Stats {
    std::uint64_t clients = 0;         // connections accepted
    std::uint64_t clientsRefused = 0;  // over the limit of clients
    std::uint64_t requests = 0;        // good ones: reads + writes
    std::uint64_t reads = 0;
    std::uint64_t writes = 0;
    std::uint64_t items = 0;      // byte ranges in the reads
    std::uint64_t bytesRead = 0;  // bytes of controller memory answered
    std::uint64_t bytesWritten = 0;
    std::uint64_t bytesIn = 0;  // on the wire
    std::uint64_t bytesOut = 0;
    std::uint64_t badFrames = 0;     // wrong check value, start byte, command, body or length
    std::uint64_t slowFrames = 0;    // not complete in time
    std::uint64_t memoryFull = 0;    // writes that were not carried out: no room in the memory
    std::uint64_t unanswered = 0;    // requests at times when the played record has no reply
    std::uint64_t bytesUnknown = 0;  // of bytesRead, those that the played record had not shown: answered as 0
};

// One message to the log, without time and line end.
using Log = std::function<void(const std::string&)>;

// How an answer reaches the client. Times in ms.
struct Delivery {
    enum class Hold { No, Late, Glue };  // keep it until the next answer
    enum class End { None, Fin, Rst };   // of the connection, after `bytes`

    std::string bytes;  // empty: nothing is sent
    std::uint64_t delay = 0;
    std::size_t pieceBytes = 0;  // 0: in one piece
    std::uint64_t pieceGap = 0;
    Hold hold = Hold::No;
    std::uint64_t holdGap = 0;  // between a late answer and the one that follows it
    End end = End::None;
    std::uint64_t stall = 0;              // the whole controller stands still for so long
    std::optional<std::uint64_t> refuse;  // reset everything, refuse new connections for so long
    bool kill = false;
};

class Controller {
public:
    Controller(Plant controlledPlant, Fault_Rules faultRules, Log messageLog);

    // Carries the request out and says how to answer: not at all when the memory has no room for a write, as the wire
    // has no reply that says so, nor when a played record has no reply at that time. `previous`: this connection's last
    // right answer, empty at its beginning; updated. `now`: ms since the start.
    Delivery answer(const Request& request, std::string& previous, double now);

    // The members of Stats, "faults", then "fault.KIND" for every kind.
    Counters counters() const;

    Plant plant;
    Fault_Rules faults;
    Stats stats;
    Log log;

private:
    std::optional<Reply> carryOut(const Request& request, double now);
    void countUnknown(const Request& request);
};

// Does to the answer what the rules say: first to its content, then to its bytes, then to its way.
Delivery applyFaults(Reply reply, const std::vector<const Fault_Rule*>& rules, const std::string& previous,
                     Fault_Rules& noise);

}  // namespace vornex::sim

#endif
