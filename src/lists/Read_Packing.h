// Packing of reads into requests of bounded length, in one pass over reads that are sorted by address.
//
// What is packed is a `Reads`: size(), address(i), length(i), and record(i), the whole request. A record is asked for
// only where a request begins: most reads join the request before them and need none.
#ifndef VORNEX_LISTS_READ_PACKING_H
#define VORNEX_LISTS_READ_PACKING_H

#include <QtCore/QVector>

#include "driver/Communication_Protocol.h"
#include "lists/Func_Initi.h"

// Addresses count as signed numbers here, and their sums in 64 bits.
inline qint64 signedAddress(quint32 address) { return static_cast<qint32>(address); }

// Sort key: the address, made unsigned so that order is kept, then the place of what it belongs to.
inline quint64 sortKey(quint32 address, int place) {
    return static_cast<quint64>(address ^ 0x80000000u) << 32 | static_cast<quint32>(place);
}
inline int placeOf(quint64 key) { return static_cast<int>(key & 0x7FFFFFFF); }
inline quint32 addressOf(quint64 key) { return static_cast<quint32>(key >> 32) ^ 0x80000000u; }

// Sorts keys by their addresses; equal addresses keep their order. The cost is linear in the number of keys.
void sortByAddress(QVector<quint64>& keys);

// Appends copies of `piece` that cover `total` bytes from its address on, and leaves it as the last of them.
void appendPieces(RW_VAR& piece, qint64 total, int maximum, QList<RW_VAR>& list);

// The last request takes in what ends at `end`; what is over the limit becomes further pieces of it.
void growLast(QList<RW_VAR>& list, qint64 end, int maxLength);

template <class Reads>
void packGroups(const Reads& reads, int maxLength, QList<RW_VAR>& list) {
    for (int i = 0; i < reads.size(); ++i) {
        const qint64 start = signedAddress(reads.address(i));
        if (list.isEmpty() || start >= signedAddress(list.last().address) + maxLength) {
            RW_VAR piece = reads.record(i);
            appendPieces(piece, reads.length(i), maxLength, list);
        } else {
            growLast(list, start + reads.length(i), maxLength);
        }
    }
}

// The longest of the reads at an address stands for it.
template <class Reads>
void packSingly(const Reads& reads, QList<RW_VAR>& list) {
    for (int i = 0; i < reads.size(); ++i) {
        if (i == 0 || reads.address(i) != reads.address(i - 1))
            list.append(reads.record(i));
        else if (reads.length(i) > list.last().length)
            list.last().length = reads.length(i);
    }
}

template <class Reads>
void pack(const Reads& reads, int maxLength, QList<RW_VAR>& list) {
    if (maxLength == 1)
        packSingly(reads, list);
    else if (maxLength > 1)
        packGroups(reads, maxLength, list);
}

#endif
