// From label text to controller address and type.
#ifndef VORNEX_LABEL_LABEL_RESOLUTION_H
#define VORNEX_LABEL_LABEL_RESOLUTION_H

#include "driver/Communication_Protocol.h"
#include "label/Index_Arithmetic.h"

// Resolves a label: from the cache, or by a walk through its definition, which is then cached. Label_Result; `info`
// holds the type code (0: the definition has none) and the address on LabelOk, else nothing of use; its `reserved`
// is left alone by a walk.
// Thread: any. Locks: labelMutex, not across the walk.
VORNEX_EXPORT int get_label_address(QString label, ControlInformationM& info) EXCLUDES(PLC_driver.labelMutex)
    __attribute__((warn_unused_result));

// Rewrites a label template (a label with "%%" in an index) for an index number. Label_Result; anything but LabelOk
// leaves `label` unchanged. Nothing is cached.
// Thread: any. Locks: labelMutex, not across the walk.
VORNEX_EXPORT int get_label_address(QString& label, int index) EXCLUDES(PLC_driver.labelMutex)
    __attribute__((warn_unused_result));

// The walk: `entry` is what segment number `segment` of `path` refers to. Adds offsets to info.address and sets
// info.typeCode. Label_Result.
// Thread: any. Locks: none.
VORNEX_EXPORT int get_label_address_1(const Label_Type_Info& entry, const QStringList& path, int segment,
                                      ControlInformationM& info) __attribute__((warn_unused_result));

// Always 0. Part of the exported set, called by nothing here.
VORNEX_EXPORT int get_label_address_query(const QStringList& path, int segment);

// How far a label of the host's came.
enum Host_Label { HostLabelResolved, HostLabelNotRewritten, HostLabelNotResolved };

// What every entry point does with a label of the host's: a template ("%%" in it) is rewritten in place for the
// number in `labelIndex` (0 when that is no number), then the label is resolved.
// Thread: any. Locks: labelMutex.
Host_Label resolveHostLabel(QString& label, const QString& labelIndex, ControlInformationM& info)
    EXCLUDES(PLC_driver.labelMutex) __attribute__((warn_unused_result));

#endif
