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
      labelGeneration(0),
      marksCached(false) {}

// QList::move would shift every entry at each call once there is no room left behind the last one. Appending makes room
// for many entries at a time.
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
    // Copied aside and moved in, so that the target's old strings are freed by our own code. Freed inside Qt, which is
    // not built for the thread sanitizer, they would be reported as a race.
    RW_VAR copy = source;
    copy.data = QByteArray();
    target = std::move(copy);
}
