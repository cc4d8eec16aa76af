#include "Controller.h"

#include <utility>

namespace vornex::sim {

Controller::Controller(Plant controlledPlant, Fault_Rules faultRules, Log messageLog)
    : plant(std::move(controlledPlant)), faults(std::move(faultRules)), log(std::move(messageLog)) {}

Reply Controller::carryOut(const Request& request, double now) {
    Reply reply = emptyReply(request);
    ++stats.requests;
    if (!request.isWrite) {
        ++stats.reads;
        stats.items += request.items.size();
        for (const Range& item : request.items)
            stats.bytesRead += item.bytes;
        reply.items = plant.read(request.items, now);
        return reply;
    }
    ++stats.writes;
    stats.bytesWritten += request.data.size();
    const std::size_t lost = plant.write(request.items[0].address, request.data, now);
    if (lost) log("memory is full: " + std::to_string(lost) + " bytes of " + requestText(request) + " not stored");
    return reply;
}

Delivery Controller::answer(const Request& request, Bytes& previous, double now) {
    const Reply reply = carryOut(request, now);
    const std::vector<const Fault_Rule*> rules = faults.select(request, !previous.empty());
    for (const Fault_Rule* rule : rules) {
        log("fault " + rule->text + " applied to request " + std::to_string(stats.requests) + ": " +
            requestText(request));
    }
    Delivery delivery = applyFaults(reply, rules, previous, faults);
    previous = encodeReply(reply);
    return delivery;
}

Counters Controller::counters() const {
    Counters result = statsCounters(stats);
    faults.appendTo(result);
    return result;
}

}  // namespace vornex::sim
