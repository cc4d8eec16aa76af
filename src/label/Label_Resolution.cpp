#include "label/Label_Resolution.h"

#include "base/Byte_Count.h"

namespace {

// The label table as it is now. An implicitly shared copy: taking it costs one counter, whatever the table holds, and
// the walk needs no lock. It is given back under the lock: a delivery that finds itself the only owner changes the
// table in place, and nothing but the lock orders that behind the reads of the walk.
struct Table_Snapshot {
    QHash<QString, Label_Type_Info> table;
    quint32 generation = 0;

    ~Table_Snapshot() {
        if (table.isEmpty()) return;
        const Mutex_Lock lock(PLC_driver.labelMutex);
        table = QHash<QString, Label_Type_Info>();
    }
};

void takeSnapshot(Table_Snapshot& snapshot) REQUIRES(PLC_driver.labelMutex) {
    snapshot.table = PLC_driver.labelTable;
    snapshot.generation = PLC_driver.labelGeneration;
}

// The cached record, or else the table to walk through: both under one lock.
bool findCached(const QString& label, ControlInformationM& info, Table_Snapshot& snapshot) {
    const Mutex_Lock lock(PLC_driver.labelMutex);
    const QHash<QString, ControlInformationM>::const_iterator cached = PLC_driver.labelCache.constFind(label);
    if (cached != PLC_driver.labelCache.constEnd()) {
        info = *cached;
        return true;
    }
    takeSnapshot(snapshot);
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

// The walk: `entry` is what the first segment of `path` refers to.
int walk(const Label_Type_Info& entry, const Label_Path& path, ControlInformationM& info) {
    const Label_Type_Info* at = &entry;
    for (int i = 0; i < path.size();) {
        const Label_Segment& segment = path.at(i);
        int own = segment.hasIndex ? LabelPathMismatch : LabelOk;
        unsigned int element = 0;
        if (at->typeFlags & LabelIsArray) {
            own = elementNumber(segment.indexList, static_cast<int>(at->dimensionCount), at->dimensions, element);
            if (own != LabelOk) return own;
        }
        if (at->typeFlags & LabelIsStructType) {
            at = findMember(*at, segment.name);
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

int resolveByTable(const QString& label, const QHash<QString, Label_Type_Info>& table, ControlInformationM& info) {
    Label_Path path;
    splitLabel(label, path);
    const Text_View& name = path.at(0).name;
    // A label without index and members is its own name.
    const QHash<QString, Label_Type_Info>::const_iterator entry =
        table.constFind(name.size == label.size() ? label : textOf(name));
    if (entry == table.constEnd()) return LabelUnknown;
    info.typeCode = 0;  // an entry without a type sets none, and callers must see that
    info.address = entry->address;
    return walk(*entry, path, info);
}

int resolve(const QString& label, ControlInformationM& info) {
    if (label.isEmpty()) return LabelEmpty;
    Table_Snapshot snapshot;
    if (findCached(label, info, snapshot)) return LabelOk;
    const int result = resolveByTable(label, snapshot.table, info);
    if (result == LabelOk) cacheRecord(label, info, snapshot.generation);
    return result;
}

}  // namespace

int get_label_address(QString label, ControlInformationM& info) { return resolve(label, info); }

int get_label_address_1(const Label_Type_Info& entry, const QStringList& path, int segment, ControlInformationM& info) {
    Label_Path rest;
    for (int i = segment; i >= 0 && i < path.size(); ++i)
        rest.append(splitSegment(viewOf(path.at(i))));
    return walk(entry, rest, info);
}

int get_label_address(QString& label, int index) {
    if (label.isEmpty()) return LabelEmpty;
    QStringList path = label.split(QLatin1Char('.'));
    Table_Snapshot snapshot;
    {
        const Mutex_Lock lock(PLC_driver.labelMutex);
        takeSnapshot(snapshot);
    }
    const QHash<QString, Label_Type_Info>::const_iterator entry = snapshot.table.constFind(firstName(path));
    if (entry == snapshot.table.constEnd()) return LabelUnknown;
    const int result = get_label_address_address_offset(*entry, path, 0, index);
    if (result == LabelOk) label = path.join(QLatin1String("."));
    return result;
}

int get_label_address_query(const QStringList&, int) { return LabelOk; }

Host_Label resolveHostLabel(QString& label, const QString& labelIndex, ControlInformationM& info) {
    if (hasMark(label) && get_label_address(label, labelIndex.toInt()) != LabelOk) return HostLabelNotRewritten;
    return resolve(label, info) == LabelOk ? HostLabelResolved : HostLabelNotResolved;
}
