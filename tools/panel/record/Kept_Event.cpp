#include "panel/record/Kept_Event.h"

#include "wire/Frame_Reader.h"

namespace vornex::panel {

namespace {

template <class... Each>
struct Overloaded : Each... {
    using Each::operator()...;
};
template <class... Each>
Overloaded(Each...) -> Overloaded<Each...>;

constexpr std::size_t HeapOverhead = 16;  // bytes of a block

// Short texts need none.
std::size_t heapOf(const std::string& text) {
    static const std::size_t inPlace = std::string().capacity();
    return text.capacity() <= inPlace ? 0 : text.capacity() + HeapOverhead;
}

}  // namespace

Kept_Frame keptFrame(const Exchange& exchange) {
    return {exchange.sentAt, exchange.attempt, exchange.replyLength, exchange.frame};
}

Kept_Reply keptReply(const Exchange& exchange) {
    return {exchange.repliedAt,    exchange.latency,        exchange.status,         exchange.transfer.state,
            exchange.countsDiffer, exchange.transfer.reply, exchange.transfer.reason};
}

std::size_t memoryOf(const Kept_Event& event) {
    const auto heap =
        std::visit(Overloaded{[](const Kept_Frame& frame) { return heapOf(frame.frame); },
                              [](const Kept_Reply& reply) { return heapOf(reply.reply) + heapOf(reply.reason); },
                              [](const Link_Change& change) { return heapOf(change.reason); },
                              [](const Kept_Read& read) { return heapOf(read.range.label); },
                              [](const Kept_Write& write) { return heapOf(write.range.label) + heapOf(write.data); },
                              [](const Kept_Poll& poll) {
                                  std::size_t sum = poll.ranges->capacity() * sizeof(Label_Range);
                                  for (const Label_Range& range : *poll.ranges)
                                      sum += heapOf(range.label);
                                  return sum;
                              },
                              [](const auto&) { return std::size_t(0); }},
                   event);
    return sizeof event + heap;
}

void Event_Teller::frame(const Kept_Frame& given) {
    pending = {};
    pending.sentAt = given.at;
    pending.attempt = given.attempt;
    pending.replyLength = given.replyLength;
    pending.frame = given.frame;
    pending.request = readRequest(given.frame).value_or(Request());
    listener.frameGiven(pending);
}

void Event_Teller::reply(const Kept_Reply& kept) {
    Exchange done = pending;
    done.repliedAt = kept.at;
    done.latency = kept.latency;
    done.status = kept.status;
    done.countsDiffer = kept.countsDiffer;
    done.transfer = {kept.state, kept.reply, kept.reason};
    listener.exchangeDone(done);
}

void Event_Teller::tell(const Kept_Event& event) {
    std::visit(
        Overloaded{[this](const Kept_Idle&) { listener.nothingToSend(); },
                   [this](const Kept_Frame& given) { frame(given); }, [this](const Kept_Reply& done) { reply(done); },
                   [this](const Link_Change& change) { listener.linkChanged(change); },
                   [this](const Kept_Read& read) { listener.readQueued(read.range, read.id); },
                   [this](const Kept_Write& write) { listener.writeQueued(write.range, write.data, write.id); },
                   [this](const Kept_Poll& poll) { listener.pollSet(*poll.ranges); },
                   [this](const Kept_Memory& memory) { listener.memoryLabelSet(memory.address, memory.code); }},
        event);
}

}  // namespace vornex::panel
