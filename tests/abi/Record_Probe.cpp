// Records that cross to the host only inside a QList are invisible to an ABI comparison of the library. This library,
// built for that comparison alone, takes a pointer to each.
#include "vornex_label_tcp/Entry_Points.h"

extern "C" {
VORNEX_EXPORT void probeRequest(RW_VAR*) {}
VORNEX_EXPORT void probeFrame(Protocol*) {}
VORNEX_EXPORT void probeSettings(ComInfo*) {}
VORNEX_EXPORT void probeVariable(HOST_VAR*) {}
VORNEX_EXPORT void probeLabel(Label_Type_Info*) {}
VORNEX_EXPORT void probeResolved(ControlInformationM*) {}
VORNEX_EXPORT void probeCallbacks(Notify_Func, Failure_Func) {}
}
