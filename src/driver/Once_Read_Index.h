// Tells in constant time whether the one-shot queue holds a read already.
#ifndef VORNEX_DRIVER_ONCE_READ_INDEX_H
#define VORNEX_DRIVER_ONCE_READ_INDEX_H

#include <QtCore/QHash>

#include "vornex_label_tcp/Host_Records.h"

// The fields by which two one-shot reads are the same read.
struct Once_Read_Key {
    explicit Once_Read_Key(const RW_VAR& read);

    int varType;
    int varId;
    int station;
    int dataType;
    quint32 address;
    int length;
    int areaId;
};
bool operator==(const Once_Read_Key& a, const Once_Read_Key& b);
uint qHash(const Once_Read_Key& key);

// An index of one queue. It keeps an implicitly shared copy of the list that it describes, which costs no memory: a
// change past the index, whoever makes it, gives the queue a list of its own, and the index is made anew when it is
// next asked. It can be slow for that, never wrong. The driver's own changes therefore go through the index, and its
// other accesses are const, so that they detach nothing.
// Thread, locks: the queue's.
class Once_Read_Index {
public:
    bool holds(const QList<RW_VAR>& queue, const RW_VAR& read);
    void append(QList<RW_VAR>& queue, const RW_VAR& read);
    void removeAt(QList<RW_VAR>& queue, int place);

private:
    bool describes(const QList<RW_VAR>& queue) const { return queue.isSharedWith(described_); }
    void describe(const QList<RW_VAR>& queue);
    void forgetOne(const RW_VAR& read);

    QHash<Once_Read_Key, int> counts_;  // how often the list holds a read
    QList<RW_VAR> described_;
};

#endif
