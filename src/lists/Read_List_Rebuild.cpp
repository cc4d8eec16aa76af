// The cyclic read list, made anew from the host's set of variables.
#include "base/Byte_Count.h"
#include "base/Shared_Word.h"
#include "label/Label_Resolution.h"
#include "lists/Address_Sort.h"
#include "lists/Read_Packing.h"

namespace {

// The definitions that resolve, sorted by address; of equal addresses the host's order is kept. Light beside the
// requests themselves, most of which the packing never needs.
class Resolved_Definitions {
public:
    explicit Resolved_Definitions(const QList<HOST_VAR>& definitions)
        : definitions_(definitions), keys_(definitions.size()), lengths_(definitions.size()), nextKey_(keys_.data()) {
        for (int place = 0; place < definitions.size();)
            place = resolveRun(place);
        keys_.resize(static_cast<int>(nextKey_ - keys_.constData()));
        sortByAddress(keys_);
    }

    int size() const { return keys_.size(); }
    quint32 address(int i) const { return addressOf(keys_.at(i)); }
    int length(int i) const { return lengths_.at(placeOf(keys_.at(i))); }
    void describe(int i, RW_VAR& request) const;

private:
    int resolveRun(int from);
    void addCached(int from, int end);
    void addUncached();

    // Places are those of the host's list.
    const QList<HOST_VAR>& definitions_;
    QVector<quint64> keys_;          // sortKey of address and place
    QVector<int> lengths_;           // by place
    quint64* nextKey_;               // where the next one goes in keys_
    QHash<int, QString> rewritten_;  // labels that were templates, by place
    Label_Run uncached_;             // what the cache did not hold of the definitions being resolved
};

// Resolves the definitions from this place on as far as one run goes, and returns the place behind them. A definition
// is left out when its label or its size makes no read.
int Resolved_Definitions::resolveRun(int from) {
    const int end = qMin(from + LabelRunLength, definitions_.size());
    addCached(from, end);
    if (!uncached_.isEmpty()) addUncached();
    return end;
}

// Leaves the labels that the cache does not hold in uncached_.
__attribute__((flatten)) void Resolved_Definitions::addCached(int from, int end) {
    int* const lengths = lengths_.data();
    quint64* key = nextKey_;
    const Mutex_Lock lock(PLC_driver.labelMutex);
    QList<HOST_VAR>::const_iterator at = definitions_.constBegin() + from;
    for (int place = from; place < end; ++place, ++at) {
        const HOST_VAR& definition = *at;
        if (definition.count < 0) continue;
        const ControlInformationM* const info = cachedHostLabel(definition.label);
        if (info == nullptr) {
            const Label_In_Run entry = {place, &definition.label, &definition.labelIndex, ControlInformationM(), false};
            uncached_.append(entry);
        } else if (isElementary(info->typeCode)) {
            lengths[place] = CountToBytes(info->typeCode, definition.count);
            *key++ = sortKey(info->address, place);
        }
    }
    nextKey_ = key;
}

void Resolved_Definitions::addUncached() {
    resolveUncached(uncached_, rewritten_);
    for (int i = 0; i < uncached_.size(); ++i) {
        const Label_In_Run& entry = uncached_.at(i);
        if (!entry.isResolved || !isElementary(entry.info.typeCode)) continue;
        lengths_[entry.place] = CountToBytes(entry.info.typeCode, definitions_.at(entry.place).count);
        *nextKey_++ = sortKey(entry.info.address, entry.place);
    }
    uncached_.clear();
}

void Resolved_Definitions::describe(int i, RW_VAR& request) const {
    const int place = placeOf(keys_.at(i));
    const HOST_VAR& definition = definitions_.at(place);
    const ComInfo& settings = PLC_driver.settings();
    request.varType = 0;
    request.varId = -1;
    request.remoteMode = settings.remoteMode;
    request.areaId = settings.localAreaId;
    const QHash<int, QString>::const_iterator rewritten = rewritten_.constFind(place);
    request.label = rewritten == rewritten_.constEnd() ? definition.label : *rewritten;
    request.labelIndex = definition.labelIndex;
    request.dataType = definition.dataType;
    request.address = address(i);
    request.station = settings.multiStation != 0 ? definition.station : settings.stationNo;
    request.length = length(i);
}

}  // namespace

int ReCreatReadVarList(QList<HOST_VAR>* definitions) {
    const Mutex_Lock lock(PLC_driver.listMutex);
    PLC_driver.readList.clear();
    if (definitions == nullptr || definitions->isEmpty()) return 0;
    PLC_driver.cycleCount = 0;
    sharedWrite(PLC_driver.settings().finishFlag, 0);
    pack(Resolved_Definitions(*definitions), PLC_driver.settings().maxBytesPerRequest, PLC_driver.readList);
    return PLC_driver.readList.size();
}
