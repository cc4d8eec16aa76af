#include "label/Label_Resolution.h"

#include "base/Byte_Count.h"

namespace {

// Ends a path on an elementary type.
void setElement(int typeCode, unsigned int element, ControlInformationM& info) {
    info.typeCode = static_cast<quint8>(typeCode);
    info.address += element * static_cast<unsigned int>(elementSize(typeCode));
}

bool isElement(const Label_Type_Info& entry) {
    return (entry.typeFlags & (LabelIsArray | LabelIsStructType)) == 0 && isElementary(entry.typeFlags & LabelTypeMask);
}

// What a name alone refers to, when that is of an elementary type.
bool resolveElement(const Label_Type_Info& entry, ControlInformationM& info) {
    if (!isElement(entry)) return false;
    info.address = entry.address;
    setElement(entry.typeFlags & LabelTypeMask, 0, info);
    return true;
}

// The same by its text, as for nearly every label; false when the label is something else.
bool resolveElementName(const QHash<QString, Label_Type_Info>& table, const QString& label, ControlInformationM& info) {
    if (label.isEmpty() || !isName(viewOf(label))) return false;
    const QHash<QString, Label_Type_Info>::const_iterator entry = table.constFind(label);
    return entry != table.constEnd() && resolveElement(*entry, info);
}

// The label table as it is now. An implicitly shared copy: taking it costs one counter, whatever the table holds, and
// the walk needs no lock. It is given back under the lock: a delivery that finds itself the only owner changes the
// table in place, and nothing but the lock orders that behind the reads of the walk.
class Table_Snapshot {
public:
    Table_Snapshot() : generation_(0) {}
    ~Table_Snapshot() {
        if (table_.isEmpty()) return;
        const Mutex_Lock lock(PLC_driver.labelMutex);
        giveBack();
    }

    void take() REQUIRES(PLC_driver.labelMutex) {
        table_ = PLC_driver.labelTable;
        generation_ = PLC_driver.labelGeneration;
    }
    void giveBack() REQUIRES(PLC_driver.labelMutex) { table_ = QHash<QString, Label_Type_Info>(); }

    // The definition of that name, or null.
    const Label_Type_Info* find(const QString& name) const {
        const QHash<QString, Label_Type_Info>::const_iterator found = table_.constFind(name);
        return found == table_.constEnd() ? nullptr : &*found;
    }

    bool resolveName(const QString& label, ControlInformationM& info) const {
        return resolveElementName(table_, label, info);
    }

    // A walk through definitions that were replaced meanwhile must not reach the emptied cache.
    void cacheRecord(const QString& label, bool isTemplate, const ControlInformationM& info) const
        REQUIRES(PLC_driver.labelMutex) {
        if (generation_ != PLC_driver.labelGeneration) return;
        PLC_driver.labelCache.insert(label, info);
        if (isTemplate) PLC_driver.marksCached = true;
    }

private:
    QHash<QString, Label_Type_Info> table_;
    quint32 generation_;
};

QString firstName(const QStringList& path) {
    QString name = path.first();
    QString indexList;
    get_label_address_array_split(name, indexList);
    return name;
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
        if (isElementary(typeCode)) setElement(typeCode, element, info);
        if (own != LabelOk || typeCode != StructTypeCode) return own;
        if (at->elementType.isEmpty()) return LabelPathMismatch;
        at = &at->elementType.first();
        info.address += element * at->address;
        ++i;
    }
    return LabelPathMismatch;
}

// A label that the cache does not hold.
struct Label_Text {
    explicit Label_Text(const QString& label) : text(label), kind(splitLabel(label, path)) {}

    const QString& text;
    Label_Path path;
    const Label_Kind kind;
};

int resolveByTable(const Label_Text& label, const Table_Snapshot& table, ControlInformationM& info) {
    if (label.text.isEmpty()) return LabelEmpty;
    const Label_Type_Info* const entry =
        label.kind == LabelName ? table.find(label.text) : table.find(textOf(label.path.at(0).name));
    if (entry == nullptr) return LabelUnknown;
    if (label.kind == LabelName && resolveElement(*entry, info)) return LabelOk;
    info.typeCode = 0;  // an entry without a type sets none, and callers must see that
    info.address = entry->address;
    if (label.kind != LabelName) return walk(*entry, label.path, info);
    Label_Path whole;
    whole.append(splitSegment(viewOf(label.text)));
    return walk(*entry, whole, info);
}

// `table` was taken when the cache did not hold the label; it is given back.
int resolveUncached(const Label_Text& label, Table_Snapshot& table, ControlInformationM& info) {
    const int result = resolveByTable(label, table, info);
    const Mutex_Lock lock(PLC_driver.labelMutex);
    if (result == LabelOk) table.cacheRecord(label.text, label.kind == LabelTemplate, info);
    table.giveBack();
    return result;
}

// Needs no copy of the table.
bool resolveAndCacheName(const QString& label, ControlInformationM& info) REQUIRES(PLC_driver.labelMutex) {
    if (!resolveElementName(PLC_driver.labelTable, label, info)) return false;
    PLC_driver.labelCache.insert(label, info);
    return true;
}

int resolve(const QString& label, ControlInformationM& info) {
    Table_Snapshot table;
    {
        const Mutex_Lock lock(PLC_driver.labelMutex);
        const QHash<QString, ControlInformationM>::const_iterator cached = PLC_driver.labelCache.constFind(label);
        if (cached != PLC_driver.labelCache.constEnd()) {
            info = *cached;
            return LabelOk;
        }
        if (resolveAndCacheName(label, info)) return LabelOk;
        table.take();
    }
    return resolveUncached(Label_Text(label), table, info);
}

int rewrite(QString& label, int index, const Table_Snapshot& table) {
    if (label.isEmpty()) return LabelEmpty;
    QStringList path = label.split(QLatin1Char('.'));
    const Label_Type_Info* const entry = table.find(firstName(path));
    if (entry == nullptr) return LabelUnknown;
    const int result = get_label_address_address_offset(*entry, path, 0, index);
    if (result == LabelOk) label = path.join(QLatin1String("."));
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
    Table_Snapshot table;
    {
        const Mutex_Lock lock(PLC_driver.labelMutex);
        table.take();
    }
    return rewrite(label, index, table);
}

int get_label_address_query(const QStringList&, int) { return LabelOk; }

Host_Label resolveHostLabel(QString& label, const QString& labelIndex, ControlInformationM& info) {
    Table_Snapshot table;
    {
        const Mutex_Lock lock(PLC_driver.labelMutex);
        if (const ControlInformationM* const cached = cachedHostLabel(label)) {
            info = *cached;
            return HostLabelResolved;
        }
        if (resolveAndCacheName(label, info)) return HostLabelResolved;
        table.take();
    }
    int result = LabelOk;
    const Label_Text text(label);
    if (text.kind != LabelTemplate) {
        result = resolveUncached(text, table, info);
    } else {
        QString rewritten = label;
        if (rewrite(rewritten, labelIndex.toInt(), table) != LabelOk) return HostLabelNotRewritten;
        label = rewritten;
        result = resolve(label, info);
    }
    return result == LabelOk ? HostLabelResolved : HostLabelNotResolved;
}

// What the label of the entry, a template, becomes is cached in passing.
static void resolveTemplate(Label_In_Run& entry, QHash<int, QString>& rewritten) {
    QString label = *entry.label;
    entry.isResolved = resolveHostLabel(label, *entry.labelIndex, entry.info) == HostLabelResolved;
    if (entry.isResolved) rewritten.insert(entry.place, label);
}

void resolveUncached(Label_Run& run, QHash<int, QString>& rewritten) {
    Table_Snapshot table;
    {
        const Mutex_Lock lock(PLC_driver.labelMutex);
        table.take();
    }
    QVarLengthArray<const Label_In_Run*, LabelRunLength> fresh;  // what the cache is to take in
    for (int i = 0; i < run.size(); ++i) {
        Label_In_Run& entry = run[i];
        entry.isResolved = table.resolveName(*entry.label, entry.info);
        if (!entry.isResolved) {
            const Label_Text text(*entry.label);
            if (text.kind == LabelTemplate) {
                resolveTemplate(entry, rewritten);
                continue;
            }
            entry.isResolved = resolveByTable(text, table, entry.info) == LabelOk;
        }
        if (entry.isResolved) fresh.append(&entry);
    }
    const Mutex_Lock lock(PLC_driver.labelMutex);
    for (int i = 0; i < fresh.size(); ++i)
        table.cacheRecord(*fresh.at(i)->label, false, fresh.at(i)->info);
    table.giveBack();
}
