// What went over the link of late, kept in memory to be saved as a record that replays.
//
// The memory is bounded, and a record that began in the middle of anything would not replay: the driver is then not
// where a fresh one is. So the record can be cut only before the frame that begins the cyclic list anew while nothing
// else is queued. What the driver still carries from before is repeated there: the poll list, and the failures that it
// counts up to the next give-up.
#ifndef VORNEX_PANEL_RECORD_EXCHANGE_RECORD_H
#define VORNEX_PANEL_RECORD_EXCHANGE_RECORD_H

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "panel/record/Kept_Event.h"
#include "trace/Record_Lines.h"

namespace vornex::panel {

// A run of events. Never changes once another one follows it.
struct Record_Part {
    bool isBeginning = false;       // a record may begin here, with:
    std::vector<Kept_Event> calls;  // what has been told to the driver before
    int failures = 0;               // that the driver counts already

    std::vector<Kept_Event> events;
    std::size_t bytes = 0;
    std::uint64_t exchanges = 0;
    std::optional<Wall_Time> first, last;  // of its exchanges
};

// What was kept at one moment; for any thread, for as long as it is needed.
struct Record_Snapshot {
    Record_Head head;
    std::vector<std::shared_ptr<const Record_Part>> parts;

    // What an observer would have heard. False when `goesOn` ended it.
    bool tell(Exchange_Observer& listener, const std::function<bool()>& goesOn = nullptr) const;
};

struct Record_Extent {
    std::size_t bytes = 0;
    std::size_t limit = 0;
    std::uint64_t exchanges = 0;           // kept
    std::uint64_t dropped = 0;             // exchanges that were kept and had to go
    std::optional<Wall_Time> first, last;  // of those kept

    // "1.2 of 64 MiB, 0.4 h, 12345 exchanges"
    std::string text() const;
};

// Hears on the exchange thread, is asked from any; the lock is held for moments only.
class Exchange_Record : public Exchange_Observer {
public:
    // A limit of less than 64 KiB is taken for that.
    Exchange_Record(Record_Head recordHead, std::size_t bytesAtMost);

    Record_Extent extent() const;
    // Everything kept up to now. The exchange goes on.
    Record_Snapshot snapshot();

    void readQueued(const Label_Range& range, int id) override;
    void writeQueued(const Label_Range& range, const std::string& data, int id) override;
    void pollSet(const std::vector<Label_Range>& ranges) override;
    void memoryLabelSet(std::uint32_t address, int code) override;
    void frameGiven(const Exchange& exchange) override;
    void exchangeDone(const Exchange& exchange) override;
    void nothingToSend() override;
    void linkChanged(const Link_Change& change) override;

private:
    bool beginsAnew(const Exchange& exchange);
    void beginPart();
    void keep(Kept_Event event, const Exchange* done = nullptr);
    std::vector<std::shared_ptr<Record_Part>> takeSurplus();

    const Record_Head head;
    const std::size_t limit;

    // The exchange thread's, and before it the thread that queues: they take turns.
    std::vector<Kept_Event> calls;  // the poll list and the memory labels that hold
    std::string firstFrame;         // of the poll list; empty: not known yet
    bool cyclicBefore = false;      // the request finished last was one of the cyclic list
    int failures = 0;               // since the last give-up

    mutable std::mutex mutex;  // guards the following
    std::deque<std::shared_ptr<Record_Part>> parts;
    std::size_t bytes = 0;
    std::uint64_t dropped = 0;
    bool waits = false;  // one round was longer than the limit: nothing is kept until the next one
};

}  // namespace vornex::panel

#endif
