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
        countUnknown(request);
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

void Controller::countUnknown(const Request& request) {
    for (const Memory_Range& item : request.items) {
        const std::size_t bytes = plant.unknown(item);
        if (bytes > 0 && stats.bytesUnknown == 0) {
            log(std::to_string(bytes) + " of " + std::to_string(item.bytes) + " bytes from " +
                std::to_string(item.address) + " are not in the record so far, answered as 0; the summary counts such");
        }
        stats.bytesUnknown += bytes;
    }
}

Delivery Controller::answer(const Request& request, std::string& previous, double now) {
    if (plant.line(now) != Played_Record::Line::Up) {
        ++stats.unanswered;
        return Delivery();
    }
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
    Counters result = {{key::clients.name, stats.clients},
                       {key::clientsRefused.name, stats.clientsRefused},
                       {key::requests.name, stats.requests},
                       {key::reads.name, stats.reads},
                       {key::writes.name, stats.writes},
                       {key::items.name, stats.items},
                       {key::bytesRead.name, stats.bytesRead},
                       {key::bytesWritten.name, stats.bytesWritten},
                       {key::bytesIn.name, stats.bytesIn},
                       {key::bytesOut.name, stats.bytesOut},
                       {key::badFrames.name, stats.badFrames},
                       {key::slowFrames.name, stats.slowFrames},
                       {key::memoryFull.name, stats.memoryFull},
                       {key::unanswered.name, stats.unanswered},
                       {key::bytesUnknown.name, stats.bytesUnknown}};
    faults.appendTo(result);
    return result;
}

}  // namespace vornex::sim
