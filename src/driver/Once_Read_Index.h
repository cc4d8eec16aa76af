// Finds out in constant time whether the one-shot queue already holds a read.
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

// An index of one queue: how often the queue holds each read. The caller holds the queue's lock.
//
// The queue should be changed through append and removeAt, which keep the index up to date. It may be changed in other
// ways too: the index notices and counts the queue anew when it is next asked, which takes time but gives the right
// answer. It notices because it keeps a copy of the list as it last knew it. Qt shares the entries between the two, so
// that the copy costs no memory, until one of them is changed.
//
// Reading the queue must not change it in Qt's eyes: use at() and const references, not [] or first().
class Once_Read_Index {
public:
    // Whether the queue holds a read that equals this one in all fields of the key.
    bool holds(const QList<RW_VAR>& queue, const RW_VAR& read);
    void append(QList<RW_VAR>& queue, const RW_VAR& read);
    void removeAt(QList<RW_VAR>& queue, int place);

private:
    // Whether the queue is as the index last knew it.
    bool describes(const QList<RW_VAR>& queue) const { return queue.isSharedWith(described_); }
    void countAnew(const QList<RW_VAR>& queue);
    void forgetOne(const RW_VAR& read);

    QHash<Once_Read_Key, int> counts_;  // how often the list holds a read
    QList<RW_VAR> described_;           // the queue as the index last knew it
};

#endif
