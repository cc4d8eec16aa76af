#include "driver/Host_Setup.h"

VORNEX_EXPORT void* LB = nullptr;
VORNEX_EXPORT void* LW = nullptr;
VORNEX_EXPORT void* RWI = nullptr;

namespace {

enum Station_Flag { DisableStation = 0, EnableStation = 1 };

void switchStation(int station, int flag) {
    const Mutex_Lock lock(PLC_driver.stationMutex);
    if (station < 0)
        PLC_driver.stationMap.clear();
    else if (flag == DisableStation)
        PLC_driver.stationMap.insert(station, 0);
    else if (flag == EnableStation)
        PLC_driver.stationMap.remove(station);
}

}  // namespace

void SetComInfo(ComInfo* settings) {
    PLC_driver.comInfo = settings;
    PLC_driver.settings().reserved10 = 0;
    PLC_driver.settings().reserved13 = 0;
}

void RegistCallBackFuncIntf(Notify_Func notify, Failure_Func failure) {
    PLC_driver.notifyFunc = notify;
    PLC_driver.failureFunc = failure;
}

void FlashLocalRegister(void* localBits, void* localWords, void* indexWords) {
    LB = localBits;
    LW = localWords;
    RWI = indexWords;
}

void EnableEthernet(int station, int flag) { switchStation(station, flag); }

void EnCommStation(int station, int flag) { switchStation(station, flag); }

bool Ethernetcontains(int station) {
    const Mutex_Lock lock(PLC_driver.stationMutex);
    return PLC_driver.stationMap.contains(station);
}

int QueryFinishFlag() { return 1; }

int PLCAddressChangeIntef(int kind, QString text) { return StringAddressToInt(kind, text); }

int StringAddressToInt(int, QString) { return 0; }

void Remote_ReadVar(RW_VAR*) {}

void Remote_WriteVar(RW_VAR*) {}
