#include "sim/Controller.h"

#include <utility>

#include "values/Keys.h"

namespace vornex::sim {

Controller::Controller(Plant controlledPlant, Fault_Rules faultRules, Log messageLog)
    : plant(std::move(controlledPlant)), faults(std::move(faultRules)), log(std::move(messageLog)) {}

std::optional<Reply> Controller::carryOut(const Request& request, double now) {
    Reply reply = emptyReply(request);
    ++stats.requests;
    if (!request.isWrite) {
        ++stats.reads;
        stats.items += request.items.size();
        for (const Memory_Range& item : request.items)
            stats.bytesRead += item.bytes;
        reply.items = plant.read(request.items, now);
        return reply;
    }
    ++stats.writes;
    if (!plant.write(request.items[0].address, request.data, now)) {
        ++stats.memoryFull;
        log("not carried out and not answered, the memory is full: " + requestText(request));
        return std::nullopt;
    }
    stats.bytesWritten += request.data.size();
    return reply;
}

Delivery Controller::answer(const Request& request, std::string& previous, double now) {
    const std::optional<Reply> reply = carryOut(request, now);
    if (!reply) return Delivery();
    const std::vector<const Fault_Rule*> rules = faults.select(request, !previous.empty());
    for (const Fault_Rule* rule : rules) {
        log("fault " + rule->text + " applied to request " + std::to_string(stats.requests) + ": " +
            requestText(request));
    }
    Delivery delivery = applyFaults(*reply, rules, previous, faults);
    previous = encodeReply(*reply);
    return delivery;
}

Counters Controller::counters() const {
    Counters result = {{key::clients.name, stats.clients},      {key::clientsRefused.name, stats.clientsRefused},
                       {key::requests.name, stats.requests},    {key::reads.name, stats.reads},
                       {key::writes.name, stats.writes},        {key::items.name, stats.items},
                       {key::bytesRead.name, stats.bytesRead},  {key::bytesWritten.name, stats.bytesWritten},
                       {key::bytesIn.name, stats.bytesIn},      {key::bytesOut.name, stats.bytesOut},
                       {key::badFrames.name, stats.badFrames},  {key::slowFrames.name, stats.slowFrames},
                       {key::memoryFull.name, stats.memoryFull}};
    faults.appendTo(result);
    return result;
}

}  // namespace vornex::sim
