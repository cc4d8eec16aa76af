// The three entry points by which requests are queued one by one.
#include "driver/Communication_Protocol.h"
#include "label/Label_Resolution.h"

namespace {

// Cuts the read into pieces and queues those that are not queued yet. Leaves the record with the length of the last
// piece and the address one past its end, whether or not the pieces found room.
void queuePieces(RW_VAR& record, int maxBytes) REQUIRES(PLC_driver.listMutex) {
    for (int left = record.length; left > 0;) {
        if (PLC_driver.onceReadList.size() >= QueueLimit) {
            // Nothing more can be queued; the record still has to end as if it had been.
            record.length = left % maxBytes != 0 ? left % maxBytes : maxBytes;
            record.address += static_cast<quint32>(left);
            return;
        }
        record.length = qMin(left, maxBytes);
        if (!PLC_driver.onceReadIndex.holds(PLC_driver.onceReadList, record))
            PLC_driver.onceReadIndex.append(PLC_driver.onceReadList, record);
        record.address += static_cast<quint32>(record.length);
        left -= record.length;
    }
}

}  // namespace

int AddListWriteVar(RW_VAR* request) {
    const Mutex_Lock lock(PLC_driver.listMutex);
    if (request != nullptr && PLC_driver.writeList.size() < QueueLimit) PLC_driver.writeList.append(*request);
    return PLC_driver.writeList.size();
}

int AddListReadVar(RW_VAR* request) {
    const Mutex_Lock lock(PLC_driver.listMutex);
    if (request != nullptr) PLC_driver.readList.append(*request);
    return PLC_driver.readList.size();
}

int AddListOnceReadVar(RW_VAR* record) {
    if (record == nullptr) return 0;
    QString label = record->label;
    ControlInformationM info;
    if (resolveHostLabel(label, record->labelIndex, info) != HostLabelResolved) return 0;

    const ComInfo& settings = PLC_driver.settings();
    if (settings.multiStation == 0) record->station = settings.stationNo;
    record->address = info.address;
    record->remoteStore = 0;
    record->reserved14 = 0;

    const Mutex_Lock lock(PLC_driver.listMutex);
    // Below 1 nothing can be cut, and the loop would never end.
    if (settings.maxBytesPerRequest >= 1) queuePieces(*record, settings.maxBytesPerRequest);
    return PLC_driver.onceReadList.size();
}
