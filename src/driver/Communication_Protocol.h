// The driver object: all state of the driver, each member with the lock or thread that owns it.
#ifndef VORNEX_DRIVER_COMMUNICATION_PROTOCOL_H
#define VORNEX_DRIVER_COMMUNICATION_PROTOCOL_H

#include <QtCore/QHash>
#include <QtCore/QMap>

#include "driver/Mutex.h"
#include "driver/Once_Read_Index.h"
#include "vornex_label_tcp/Entry_Points.h"

// Element type of Communication_Protocol::extendList, which nothing uses.
struct EXTENDVAR {
    qint32 word0 = 0;
    qint32 word1 = 0;
    qint32 word2 = 0;
    qint32 word3 = 0;
};

// Kind of the request in flight; tells the reply dispatch which list the reply belongs to.
enum Request_Kind { CyclicRead = 0, Write = 1, OnceRead = 2, NoRequestYet = 100 };

// RW_VAR::status of the entry at the head of readList whose read was sent and not yet answered.
enum { StatusReplyPending = -1 };

// Entries that writeList and onceReadList hold at most.
enum { QueueLimit = 2048 };

// Order of the locks: listMutex first; stationMutex, dataMutex and labelMutex are taken inside it or alone, never two
// of these three together. "Exchange thread": the host's one thread that calls ComCommunication and DataCom in turn.
class Communication_Protocol {
public:
    Communication_Protocol();

    ComInfo* comInfo;                                  // set-up; null: the driver's own settings are used
    QList<RW_VAR> readList GUARDED_BY(listMutex);      // cyclic list; its head is the next to read
    QList<RW_VAR> writeList GUARDED_BY(listMutex);     // at most QueueLimit entries
    QList<RW_VAR> onceReadList GUARDED_BY(listMutex);  // at most QueueLimit entries; changed through onceReadIndex
    QList<RW_VAR> spareList;                           // never used
    QList<Protocol> protocolList;                      // exchange thread; empty: no request in flight
    QList<EXTENDVAR> extendList;                       // never used
    Notify_Func notifyFunc;                            // set-up
    Failure_Func failureFunc;                          // set-up
    Driver_Mutex listMutex ACQUIRED_BEFORE(dataMutex, stationMutex, labelMutex);
    Driver_Mutex dataMutex;
    Driver_Mutex stationMutex;
    QMap<int, int> stationMap GUARDED_BY(stationMutex);  // disabled stations; every value is 0
    RW_VAR result GUARDED_BY(listMutex);                 // filled and returned by DataCom
    int currentKind GUARDED_BY(listMutex);               // Request_Kind
    int writeBurst GUARDED_BY(listMutex);                // writes served in a row
    int onceReadBurst GUARDED_BY(listMutex);             // one-shot reads served in a row
    int cycleCount GUARDED_BY(listMutex);                // local requests done towards the first full cyclic pass
    bool commFailed;                                     // atomic: the driver gave up and no good reply has come since
    bool spareFlag;                                      // never used
    // Reads that the frame in flight serves. Changed under the lock by the exchange thread alone, which may therefore
    // read it without.
    QList<RW_VAR> groupList GUARDED_BY(listMutex);
    QHash<QString, Label_Type_Info> labelTable GUARDED_BY(labelMutex);
    QHash<unsigned int, unsigned char> dataImage GUARDED_BY(dataMutex);  // entries are never removed
    QHash<QString, ControlInformationM> labelCache GUARDED_BY(labelMutex);
    Driver_Mutex labelMutex;
    quint32 labelGeneration GUARDED_BY(labelMutex);       // counts label deliveries, so that no stale record is cached
    bool marksCached GUARDED_BY(labelMutex);              // a label in labelCache holds the mark of a template
    Once_Read_Index onceReadIndex GUARDED_BY(listMutex);  // which reads onceReadList holds
    ComInfo ownSettings;                                  // all words 0; in use while the host has set none

    // The settings to work on: the host's, or the driver's own. The words that the driver changes belong to the
    // exchange thread, finishFlag is atomic, the others are only read.
    ComInfo& settings() { return comInfo != nullptr ? *comInfo : ownSettings; }

private:
    Communication_Protocol(const Communication_Protocol&);
    Communication_Protocol& operator=(const Communication_Protocol&);
};

// The one driver object, constructed when the library is loaded.
VORNEX_EXPORT extern Communication_Protocol PLC_driver;

// Moves the first `count` entries of a cyclic list to its end, one by one. The caller holds the list's lock.
void rotate(QList<RW_VAR>& list, int count);

// Removes an entry of writeList or onceReadList.
void removeQueued(QList<RW_VAR>& queue, int place) REQUIRES(PLC_driver.listMutex);

// Copies every field but `data`, which becomes empty in `target`. The caller holds what guards the two records.
VORNEX_EXPORT void passRetValue(const RW_VAR& source, RW_VAR& target);

#endif
