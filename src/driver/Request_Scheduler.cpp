// Which request goes next: writes, then one-shot reads, each at most five in a row, then the cyclic list.
#include "base/Shared_Word.h"
#include "driver/Communication_Protocol.h"
#include "driver/Host_Setup.h"
#include "protocol/Frame_Layout.h"
#include "protocol/Func_Read.h"
#include "protocol/Func_Write.h"

namespace {

// Writes, or one-shot reads, served in a row before the other lists get their turn.
enum { BurstLimit = 5 };

// Summed request lengths of one group: the controller answers no more in one frame.
enum { GroupBytes = 999 };

// Discards requests for switched-off stations from the head of a queue. True when a request is left.
bool findEnabled(QList<RW_VAR>& queue) REQUIRES(PLC_driver.listMutex) {
    while (!queue.isEmpty() && Ethernetcontains(queue.at(0).station))
        removeQueued(queue, 0);
    return !queue.isEmpty();
}

void buildRead(RW_VAR& request) REQUIRES(PLC_driver.listMutex) {
    if (PLC_driver.settings().remoteMode != 0)
        Remote_ReadVar(&request);
    else
        ReadRegister(&request);
}

// The entry stays at the head of its queue until the reply dispatch finishes it.
bool serveWrite() REQUIRES(PLC_driver.listMutex) {
    if (PLC_driver.writeBurst >= BurstLimit || !findEnabled(PLC_driver.writeList)) return false;
    RW_VAR request = PLC_driver.writeList.at(0);
    if (PLC_driver.settings().remoteMode != 0)
        Remote_WriteVar(&request);
    else
        WriteRegister(&request);
    PLC_driver.currentKind = Write;
    ++PLC_driver.writeBurst;
    return true;
}

bool serveOnceRead() REQUIRES(PLC_driver.listMutex) {
    if (PLC_driver.onceReadBurst >= BurstLimit || !findEnabled(PLC_driver.onceReadList)) return false;
    RW_VAR request = PLC_driver.onceReadList.at(0);
    PLC_driver.groupList.append(request);
    buildRead(request);
    PLC_driver.currentKind = OnceRead;
    ++PLC_driver.onceReadBurst;
    return true;
}

// Moves entries for switched-off stations from the head of the cyclic list to its end, until an entry for an enabled
// station is first. False, with the list unchanged, when no entry is for an enabled station.
bool rotateToEnabled() REQUIRES(PLC_driver.listMutex) {
    QList<RW_VAR>& list = PLC_driver.readList;
    int disabled = 0;
    while (disabled < list.size() && Ethernetcontains(list.at(disabled).station))
        ++disabled;
    if (disabled == list.size()) return false;
    rotate(list, disabled);
    return true;
}

// Adds the entries that follow the head of the cyclic list to the group, in list order and whatever their station, up
// to the first that would take the group over its limit.
void gatherGroup(const QList<RW_VAR>& list) REQUIRES(PLC_driver.listMutex) {
    qint64 bytes = list.first().length;
    for (int i = 1; i < list.size() && i < frame_layout::MostRanges; ++i) {
        bytes += list.at(i).length;
        if (bytes > GroupBytes) return;
        PLC_driver.groupList.append(list.at(i));
    }
}

void serveCyclicRead() REQUIRES(PLC_driver.listMutex) {
    if (!rotateToEnabled()) return;
    RW_VAR request = PLC_driver.readList.first();
    PLC_driver.readList.first().status = StatusReplyPending;
    PLC_driver.groupList.append(request);
    if (PLC_driver.settings().remoteMode == 0) gatherGroup(PLC_driver.readList);
    buildRead(request);
    PLC_driver.currentKind = CyclicRead;
    PLC_driver.writeBurst = 0;
    PLC_driver.onceReadBurst = 0;
}

}  // namespace

Protocol* ComCommunication() {
    QList<Protocol>& inFlight = PLC_driver.protocolList;
    if (!inFlight.isEmpty()) return &inFlight.first();

    const Mutex_Lock lock(PLC_driver.listMutex);
    PLC_driver.groupList.clear();
    if (!serveWrite() && !serveOnceRead()) serveCyclicRead();
    if (!inFlight.isEmpty()) return &inFlight.first();

    PLC_driver.writeBurst = 0;
    PLC_driver.onceReadBurst = 0;
    sharedWrite(PLC_driver.settings().finishFlag, 1);
    return nullptr;
}
