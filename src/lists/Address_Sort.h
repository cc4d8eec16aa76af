// A stable sort by address whose cost is linear in the number of keys: a comparing sort takes a third of a rebuild.
// Free functions without state: any thread, no locks.
#ifndef VORNEX_LISTS_ADDRESS_SORT_H
#define VORNEX_LISTS_ADDRESS_SORT_H

#include <QtCore/QVector>

#include <numeric>

// Sort key: the address, made unsigned so that the order of signed numbers is kept, then the place of what it belongs
// to.
inline quint64 sortKey(quint32 address, int place) {
    return static_cast<quint64>(address ^ 0x80000000u) << 32 | static_cast<quint32>(place);
}
inline int placeOf(quint64 key) { return static_cast<int>(key & 0x7FFFFFFF); }
inline quint32 addressOf(quint64 key) { return static_cast<quint32>(key >> 32) ^ 0x80000000u; }

// The address is taken as four digits of a byte each, the lowest first.
inline int digitOf(quint64 key, int digit) { return static_cast<int>(key >> (32 + 8 * digit) & 0xFF); }

// Sorts keys by their addresses; equal addresses keep their order.
inline void sortByAddress(QVector<quint64>& keys) {
    int starts[4][257] = {};  // of each digit value: how many keys have a lower one
    for (int i = 0; i < keys.size(); ++i)
        for (int digit = 0; digit < 4; ++digit)
            ++starts[digit][digitOf(keys.at(i), digit) + 1];

    QVector<quint64> sorted(keys.size());
    for (int digit = 0; digit < 4 && !keys.isEmpty(); ++digit) {
        if (starts[digit][digitOf(keys.at(0), digit) + 1] == keys.size()) continue;  // the same in all of them
        int* const start = starts[digit];
        std::partial_sum(start, start + 257, start);
        quint64* const to = sorted.data();
        for (int i = 0; i < keys.size(); ++i)
            to[start[digitOf(keys.at(i), digit)]++] = keys.at(i);
        keys.swap(sorted);
    }
}

#endif
