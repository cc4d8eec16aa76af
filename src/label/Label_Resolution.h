// From label text to controller address and type. Called by any thread. labelMutex is taken to look into the cache and
// to copy the label table, and released before the walk through a definition.
#ifndef VORNEX_LABEL_LABEL_RESOLUTION_H
#define VORNEX_LABEL_LABEL_RESOLUTION_H

#include "driver/Communication_Protocol.h"
#include "label/Index_Arithmetic.h"

// Resolves a label: from the cache, or by a walk through its definition, which is then cached. Label_Result; `info`
// holds the type code (0: the definition has none) and the address on LabelOk, else nothing of use; its `reserved`
// is left alone by a walk.
VORNEX_EXPORT int get_label_address(QString label, ControlInformationM& info) EXCLUDES(PLC_driver.labelMutex)
    __attribute__((warn_unused_result));

// Rewrites a label template (a label with "%%" in an index) for an index number. Label_Result; anything but LabelOk
// leaves `label` unchanged. Nothing is cached.
VORNEX_EXPORT int get_label_address(QString& label, int index) EXCLUDES(PLC_driver.labelMutex)
    __attribute__((warn_unused_result));

// The walk: `entry` is what segment number `segment` of `path` refers to. Adds offsets to info.address and sets
// info.typeCode. Label_Result. Takes no lock.
VORNEX_EXPORT int get_label_address_1(const Label_Type_Info& entry, const QStringList& path, int segment,
                                      ControlInformationM& info) __attribute__((warn_unused_result));

// Always 0. Part of the exported set, called by nothing here.
VORNEX_EXPORT int get_label_address_query(const QStringList& path, int segment);

// How far a label of the host's came.
enum Host_Label { HostLabelResolved, HostLabelNotRewritten, HostLabelNotResolved };

// What every entry point does with a label of the host's: a template ("%%" in it) is rewritten in place for the
// number in `labelIndex` (0 when that is no number), then the label is resolved.
Host_Label resolveHostLabel(QString& label, const QString& labelIndex, ControlInformationM& info)
    EXCLUDES(PLC_driver.labelMutex) __attribute__((warn_unused_result));

// What the cache holds for a label of the host's, or null: nothing, or the label is a template, which is not looked up
// as it stands.
inline const ControlInformationM* cachedHostLabel(const QString& label) REQUIRES(PLC_driver.labelMutex) {
    const QHash<QString, ControlInformationM>::const_iterator cached = PLC_driver.labelCache.constFind(label);
    if (cached == PLC_driver.labelCache.constEnd()) return nullptr;
    return PLC_driver.marksCached && hasMark(label) ? nullptr : &*cached;
}

// One of several labels that are resolved together.
struct Label_In_Run {
    int place;                  // the caller's own
    const QString* label;       // the host's
    const QString* labelIndex;  // the host's
    ControlInformationM info;   // the outcome, from here on
    bool isResolved;
};

// Labels in a run at most: few enough that a reader on another thread waits some microseconds for the lock.
enum { LabelRunLength = 64 };
typedef QVarLengthArray<Label_In_Run, LabelRunLength> Label_Run;

// Resolves labels that the cache does not hold, as resolveHostLabel does; what a template became goes into `rewritten`
// under its place. The lock is taken twice for all labels instead of for each, so that the processor can look for
// several at once.
// Thread: any. Locks: labelMutex.
void resolveUncached(Label_Run& run, QHash<int, QString>& rewritten) EXCLUDES(PLC_driver.labelMutex);

#endif
