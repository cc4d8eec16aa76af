#include "driver/Communication_Protocol.h"

// One lock over both steps: no resolution may find the emptied cache beside the old definitions.
void PassVarName_2(QList<Label_Type_Info>* labels) {
    QHash<QString, ControlInformationM> dropped;  // freed after the lock is released
    const Mutex_Lock lock(PLC_driver.labelMutex);
    dropped.swap(PLC_driver.labelCache);
    PLC_driver.marksCached = false;
    ++PLC_driver.labelGeneration;
    for (int i = 0; labels != nullptr && i < labels->size(); ++i)
        PLC_driver.labelTable.insert(labels->at(i).name, labels->at(i));
    PLC_driver.labelCache.reserve(PLC_driver.labelTable.size());  // or it would be rearranged as it fills
}
