// The cyclic read list, made anew from the host's set of variables.
#include "base/Byte_Count.h"
#include "base/Shared_Word.h"
#include "label/Label_Resolution.h"
#include "lists/Read_Packing.h"

namespace {

// What a definition resolved to.
struct Resolved_Read {
    int definition;  // its place in the host's list
    int length;
    QString label;  // a template is rewritten
};

// The definitions that resolve, sorted by address; of equal addresses the host's order is kept. Light beside the
// requests themselves, most of which the packing never needs.
class Resolved_Definitions {
public:
    explicit Resolved_Definitions(const QList<HOST_VAR>& definitions) : definitions_(definitions) {
        keys_.reserve(definitions.size());
        reads_.reserve(definitions.size());
        for (int i = 0; i < definitions.size(); ++i)
            resolve(i);
        sortByAddress(keys_);
    }

    int size() const { return keys_.size(); }
    quint32 address(int i) const { return addressOf(keys_.at(i)); }
    int length(int i) const { return readAt(i).length; }
    RW_VAR record(int i) const;

private:
    const Resolved_Read& readAt(int i) const { return reads_.at(placeOf(keys_.at(i))); }
    void resolve(int place);

    const QList<HOST_VAR>& definitions_;
    QVector<quint64> keys_;  // sortKey of address and place in reads_
    QVector<Resolved_Read> reads_;
};

// Leaves the definition out when its label or its size makes no read.
void Resolved_Definitions::resolve(int place) {
    const HOST_VAR& definition = definitions_.at(place);
    Resolved_Read read = {place, 0, definition.label};
    ControlInformationM info;
    if (definition.count < 0 || resolveHostLabel(read.label, definition.labelIndex, info) != HostLabelResolved ||
        elementSize(info.typeCode) == 0)
        return;
    read.length = CountToBytes(info.typeCode, definition.count);
    keys_.append(sortKey(info.address, reads_.size()));
    reads_.append(read);
}

RW_VAR Resolved_Definitions::record(int i) const {
    const Resolved_Read& read = readAt(i);
    const HOST_VAR& definition = definitions_.at(read.definition);
    const ComInfo& settings = *PLC_driver.comInfo;
    RW_VAR request;
    request.varType = 0;
    request.varId = -1;
    request.remoteMode = settings.remoteMode;
    request.areaId = settings.localAreaId;
    request.label = read.label;
    request.labelIndex = definition.labelIndex;
    request.dataType = definition.dataType;
    request.address = address(i);
    request.station = settings.multiStation != 0 ? definition.station : settings.stationNo;
    request.length = read.length;
    return request;
}

}  // namespace

int ReCreatReadVarList(QList<HOST_VAR>* definitions) {
    const Mutex_Lock lock(PLC_driver.listMutex);
    PLC_driver.readList.clear();
    if (definitions->isEmpty()) return 0;
    PLC_driver.cycleCount = 0;
    sharedWrite(PLC_driver.comInfo->finishFlag, 0);
    pack(Resolved_Definitions(*definitions), PLC_driver.comInfo->maxBytesPerRequest, PLC_driver.readList);
    return PLC_driver.readList.size();
}
