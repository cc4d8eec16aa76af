// The cyclic read list, made anew from the host's set of variables.
#include "base/Byte_Count.h"
#include "base/Shared_Word.h"
#include "label/Label_Resolution.h"
#include "lists/Func_Initi.h"

namespace {

// Fills the read request of one definition. False: the definition is left out.
bool buildRequest(const HOST_VAR& definition, RW_VAR& request) {
    QString label = definition.label;
    ControlInformationM info;
    if (definition.count < 0 || resolveHostLabel(label, definition.labelIndex, info) != HostLabelResolved ||
        elementSize(info.typeCode) == 0)
        return false;

    const ComInfo& settings = *PLC_driver.comInfo;
    request.varType = 0;
    request.varId = -1;
    request.remoteMode = settings.remoteMode;
    request.areaId = settings.localAreaId;
    request.label = label;
    request.labelIndex = definition.labelIndex;
    request.dataType = definition.dataType;
    request.address = info.address;
    request.station = settings.multiStation != 0 ? definition.station : settings.stationNo;
    request.length = CountToBytes(info.typeCode, definition.count);
    return true;
}

}  // namespace

int ReCreatReadVarList(QList<HOST_VAR>* definitions) {
    const Mutex_Lock lock(PLC_driver.listMutex);
    PLC_driver.readList.clear();
    if (definitions->isEmpty()) return 0;
    PLC_driver.cycleCount = 0;
    sharedWrite(PLC_driver.comInfo->finishFlag, 0);

    QList<RW_VAR> requests;
    for (int i = 0; i < definitions->size(); ++i) {
        RW_VAR request;
        if (buildRequest(definitions->at(i), request)) requests.append(request);
    }
    Bubble_Sort(&requests);
    BitVarReCreat(&requests, PLC_driver.comInfo->maxBytesPerRequest);
    return PLC_driver.readList.size();
}
