#include "driver/Communication_Protocol.h"
#include "label/Label_Path.h"

// One lock over both steps: no resolution may find the emptied cache beside the old definitions.
void PassVarName_2(QList<Label_Type_Info>* labels) {
    QHash<QString, ControlInformationM> dropped;  // freed after the lock is released
    const Mutex_Lock lock(PLC_driver.labelMutex);
    dropped.swap(PLC_driver.labelCache);
    PLC_driver.marksCached = false;
    ++PLC_driver.labelGeneration;
    for (int i = 0; labels != nullptr && i < labels->size(); ++i) {
        const Label_Type_Info& entry = labels->at(i);
        PLC_driver.labelTable.insert(entry.name, entry);
        PLC_driver.onlyNames = PLC_driver.onlyNames && isName(viewOf(entry.name));
    }
    PLC_driver.labelCache.reserve(PLC_driver.labelTable.size());  // or it would be rearranged as it fills
}
