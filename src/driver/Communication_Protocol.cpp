#include "driver/Communication_Protocol.h"

#include <utility>

VORNEX_EXPORT Communication_Protocol PLC_driver;

Communication_Protocol::Communication_Protocol()
    : comInfo(nullptr),
      notifyFunc(nullptr),
      failureFunc(nullptr),
      currentKind(NoRequestYet),
      writeBurst(0),
      onceReadBurst(0),
      cycleCount(0),
      commFailed(false),
      spareFlag(false),
      labelGeneration(0) {}

// Not with QList::move: once the list has used up the room behind its end, that shifts every entry at each call.
// Appending makes room for many entries at a time.
void rotate(QList<RW_VAR>& list, int count) {
    if (list.size() < 2) return;
    for (int i = 0; i < count; ++i) {
        list.append(list.at(0));
        list.removeFirst();
    }
}

void removeQueued(QList<RW_VAR>& queue, int place) {
    if (&queue == &PLC_driver.onceReadList)
        PLC_driver.onceReadIndex.removeAt(queue, place);
    else
        queue.removeAt(place);
}

void passRetValue(const RW_VAR& source, RW_VAR& target) {
    // Copied aside and moved in: the strings are let go by our own code, where the thread sanitizer sees their
    // counters; inside Qt, which is not built for it, it would take the last owner's release for a race.
    RW_VAR copy = source;
    copy.data = QByteArray();
    target = std::move(copy);
}
