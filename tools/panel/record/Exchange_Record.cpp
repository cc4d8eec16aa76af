#include "panel/record/Exchange_Record.h"

#include <algorithm>

#include "text/Number.h"
#include "text/Text.h"

namespace vornex::panel {

namespace {

constexpr std::size_t LeastLimit = 64 << 10;
constexpr std::size_t PartsOfLimit = 32;                       // a part is closed when it has so much of the limit
constexpr std::size_t RoomForParts = 2 * sizeof(Record_Part);  // that begin before the next event
constexpr double BytesOfMib = 1 << 20;

const char CarriedOver[] = "a failure from before this record, which the driver still counts";

// What a driver has to go through to count so many failures at this frame.
void tellFailures(const Kept_Frame& frame, int failures, Event_Teller& teller) {
    for (int i = 0; i < failures; ++i) {
        teller.tell(frame);
        teller.tell(Kept_Reply{frame.at, {}, 0, Transfer_State::Closed, false, "", CarriedOver});
    }
}

}  // namespace

std::string Record_Extent::text() const {
    std::string words = fixedNumber(static_cast<double>(bytes) / BytesOfMib, 1) + " of " +
                        fixedNumber(static_cast<double>(limit) / BytesOfMib, 0) + " MiB";
    if (!first) return words + ", nothing yet";
    const double hours = std::chrono::duration<double>(*last - *first).count() / 3600;
    words += ", " + fixedNumber(hours, hours < 1 ? 3 : 1) + " h, " + counted(exchanges, "exchange");
    if (dropped > 0) words += "; " + std::to_string(dropped) + " older ones had to go";
    return words;
}

bool Record_Snapshot::tell(Exchange_Observer& listener, const std::function<bool()>& goesOn) const {
    if (parts.empty()) return true;
    Event_Teller teller(listener);
    for (const Kept_Event& call : parts.front()->calls)
        teller.tell(call);
    int failures = parts.front()->failures;
    for (const auto& part : parts) {
        if (goesOn && !goesOn()) return false;
        for (const Kept_Event& event : part->events) {
            const auto* const frame = std::get_if<Kept_Frame>(&event);
            if (frame) tellFailures(*frame, std::exchange(failures, 0), teller);
            teller.tell(event);
        }
    }
    return true;
}

Exchange_Record::Exchange_Record(Record_Head recordHead, std::size_t bytesAtMost)
    : head(std::move(recordHead)), limit(std::max(bytesAtMost, LeastLimit)) {
    beginPart();
    parts.back()->isBeginning = true;
}

Record_Extent Exchange_Record::extent() const {
    const std::lock_guard<std::mutex> lock(mutex);
    Record_Extent extent;
    extent.bytes = bytes;
    extent.limit = limit;
    extent.dropped = dropped;
    for (const auto& part : parts) {
        extent.exchanges += part->exchanges;
        if (!extent.first) extent.first = part->first;
        if (part->last) extent.last = part->last;
    }
    return extent;
}

Record_Snapshot Exchange_Record::snapshot() {
    const std::lock_guard<std::mutex> lock(mutex);
    Record_Snapshot shot{head, {parts.begin(), parts.end()}};
    if (!parts.back()->events.empty()) beginPart();  // what follows does not change what was taken
    return shot;
}

void Exchange_Record::beginPart() {
    parts.push_back(std::make_shared<Record_Part>());
    parts.back()->bytes = sizeof(Record_Part);
    bytes += sizeof(Record_Part);
}

// The driver turns to the cyclic list twice in a row only when its queues are empty; the list's first frame comes again
// when the list begins again.
bool Exchange_Record::beginsAnew(const Exchange& exchange) {
    if (!exchange.cyclic || exchange.attempt > 1) return false;
    if (firstFrame.empty()) firstFrame = exchange.frame;
    return cyclicBefore && exchange.frame == firstFrame;
}

// What has to go; it is freed without the lock.
std::vector<std::shared_ptr<Record_Part>> Exchange_Record::takeSurplus() {
    std::vector<std::shared_ptr<Record_Part>> gone;
    const auto drop = [&] {
        bytes -= parts.front()->bytes;
        dropped += parts.front()->exchanges;
        gone.push_back(std::move(parts.front()));
        parts.pop_front();
    };
    while (bytes + RoomForParts > limit && !parts.empty()) {
        drop();
        while (!parts.empty() && !parts.front()->isBeginning)
            drop();
    }
    if (parts.empty()) {
        waits = true;
        beginPart();
    }
    return gone;
}

void Exchange_Record::keep(Kept_Event event, const Exchange* done) {
    const std::size_t size = memoryOf(event);
    std::vector<std::shared_ptr<Record_Part>> gone;
    const std::lock_guard<std::mutex> lock(mutex);
    if (waits) {
        dropped += done ? 1 : 0;
        return;
    }
    Record_Part& part = *parts.back();
    part.events.push_back(std::move(event));
    part.bytes += size;
    bytes += size;
    if (done) {
        ++part.exchanges;
        if (!part.first) part.first = done->repliedAt;
        part.last = done->repliedAt;
    }
    if (bytes + RoomForParts > limit) gone = takeSurplus();
}

void Exchange_Record::readQueued(const Label_Range& range, int id) { keep(Kept_Read{range, id}); }

void Exchange_Record::writeQueued(const Label_Range& range, const std::string& data, int id) {
    keep(Kept_Write{range, data, id});
}

void Exchange_Record::pollSet(const std::vector<Label_Range>& ranges) {
    const Kept_Poll poll{std::make_shared<const std::vector<Label_Range>>(ranges)};
    // of the memory labels before it the last one leads to where its entries lie
    std::vector<Kept_Event> held;
    for (const Kept_Event& call : calls) {
        if (std::holds_alternative<Kept_Memory>(call)) held = {call};
    }
    held.emplace_back(poll);
    calls = std::move(held);
    firstFrame.clear();
    cyclicBefore = false;
    keep(poll);
}

void Exchange_Record::memoryLabelSet(std::uint32_t address, int code) {
    if (!calls.empty() && std::holds_alternative<Kept_Memory>(calls.back())) calls.pop_back();
    calls.emplace_back(Kept_Memory{address, code});
    keep(Kept_Memory{address, code});
}

void Exchange_Record::frameGiven(const Exchange& exchange) {
    if (beginsAnew(exchange)) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (waits || parts.back()->bytes >= limit / PartsOfLimit) {
            if (!waits) beginPart();
            waits = false;
            Record_Part& part = *parts.back();
            part.isBeginning = true;
            part.calls = calls;
            part.failures = failures;
        }
    }
    keep(keptFrame(exchange));
}

void Exchange_Record::exchangeDone(const Exchange& exchange) {
    if (exchange.status == 0) ++failures;
    if (exchange.gaveUp()) failures = 0;
    if (exchange.status != 0) cyclicBefore = exchange.cyclic;
    keep(keptReply(exchange), &exchange);
}

void Exchange_Record::nothingToSend() { keep(Kept_Idle()); }

void Exchange_Record::linkChanged(const Link_Change& change) { keep(change); }

}  // namespace vornex::panel
