#include "label/Label_Resolution.h"

#include "base/Byte_Count.h"

namespace {

// The label table as it is now. An implicitly shared copy: taking it costs one counter, whatever the table holds, and
// the walk needs no lock.
struct Table_Snapshot {
    QHash<QString, Label_Type_Info> table;
    quint32 generation = 0;
};

Table_Snapshot takeSnapshot() REQUIRES(PLC_driver.labelMutex) {
    Table_Snapshot snapshot;
    snapshot.table = PLC_driver.labelTable;
    snapshot.generation = PLC_driver.labelGeneration;
    return snapshot;
}

// The cached record, or else the table to walk through: both under one lock.
bool findCached(const QString& label, ControlInformationM& info, Table_Snapshot& snapshot) {
    const Mutex_Lock lock(PLC_driver.labelMutex);
    const QHash<QString, ControlInformationM>::const_iterator cached = PLC_driver.labelCache.constFind(label);
    if (cached != PLC_driver.labelCache.constEnd()) {
        info = *cached;
        return true;
    }
    snapshot = takeSnapshot();
    return false;
}

// A walk through definitions that were replaced meanwhile must not reach the emptied cache.
void cacheRecord(const QString& label, const ControlInformationM& info, quint32 generation) {
    const Mutex_Lock lock(PLC_driver.labelMutex);
    if (generation == PLC_driver.labelGeneration) PLC_driver.labelCache.insert(label, info);
}

QString firstName(const QStringList& path) {
    QString name = path.first();
    QString indexList;
    get_label_address_array_split(name, indexList);
    return name;
}

// Ends a path on an elementary type.
void setElement(int typeCode, unsigned int element, ControlInformationM& info) {
    info.typeCode = static_cast<quint8>(typeCode);
    info.address += element * static_cast<unsigned int>(elementSize(typeCode));
}

}  // namespace

int get_label_address(QString label, ControlInformationM& info) {
    if (label.isEmpty()) return LabelEmpty;
    Table_Snapshot snapshot;
    if (findCached(label, info, snapshot)) return LabelOk;

    const QStringList path = label.split(QLatin1Char('.'));
    const QHash<QString, Label_Type_Info>::const_iterator entry = snapshot.table.constFind(firstName(path));
    if (entry == snapshot.table.constEnd()) return LabelUnknown;
    info.typeCode = 0;  // an entry without a type sets none, and callers must see that
    info.address = entry->address;
    const int result = get_label_address_1(*entry, path, 0, info);
    if (result == LabelOk) cacheRecord(label, info, snapshot.generation);
    return result;
}

int get_label_address_1(const Label_Type_Info& entry, const QStringList& path, int segment,
                        ControlInformationM& info) {
    const Label_Type_Info* at = &entry;
    for (int i = segment; i >= 0 && i < path.size();) {
        QString name = path.at(i);
        QString indexList;
        const bool hasIndex = get_label_address_array_split(name, indexList);
        int own = hasIndex ? LabelPathMismatch : LabelOk;
        unsigned int element = 0;
        if (at->typeFlags & LabelIsArray) {
            own = get_label_address_array_memory_index(indexList, static_cast<int>(at->dimensionCount), at->dimensions,
                                                       element);
            if (own != LabelOk) return own;
        }
        if (at->typeFlags & LabelIsStructType) {
            at = findMember(*at, name);
            if (at == nullptr) return LabelMemberUnknown;
            info.address += at->address;
            continue;  // the same segment, against the member's own definition
        }
        const int typeCode = at->typeFlags & LabelTypeMask;
        if (elementSize(typeCode) != 0) setElement(typeCode, element, info);
        if (own != LabelOk || typeCode != StructTypeCode) return own;
        if (at->elementType.isEmpty()) return LabelPathMismatch;
        at = &at->elementType.first();
        info.address += element * at->address;
        ++i;
    }
    return LabelPathMismatch;
}

int get_label_address(QString& label, int index) {
    if (label.isEmpty()) return LabelEmpty;
    QStringList path = label.split(QLatin1Char('.'));
    Table_Snapshot snapshot;
    {
        const Mutex_Lock lock(PLC_driver.labelMutex);
        snapshot = takeSnapshot();
    }
    const QHash<QString, Label_Type_Info>::const_iterator entry = snapshot.table.constFind(firstName(path));
    if (entry == snapshot.table.constEnd()) return LabelUnknown;
    const int result = get_label_address_address_offset(*entry, path, 0, index);
    if (result == LabelOk) label = path.join(QLatin1String("."));
    return result;
}

int get_label_address_query(const QStringList&, int) {
    return LabelOk;
}

Host_Label resolveHostLabel(QString& label, const QString& labelIndex, ControlInformationM& info) {
    if (label.contains(QLatin1String("%%")) && get_label_address(label, labelIndex.toInt()) != LabelOk)
        return HostLabelNotRewritten;
    return get_label_address(label, info) == LabelOk ? HostLabelResolved : HostLabelNotResolved;
}
