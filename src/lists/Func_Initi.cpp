#include "lists/Func_Initi.h"

#include <QtCore/QVector>

#include <algorithm>

namespace {

// Addresses count as signed numbers here, and their sums in 64 bits.
qint64 startOf(const RW_VAR& request) {
    return static_cast<qint32>(request.address);
}

qint64 endOf(const RW_VAR& request) {
    return startOf(request) + request.length;
}

// Exchanges two entries by their pointers, without copying the records.
void swapEntries(QList<RW_VAR>& list, int i, int j) {
#if QT_VERSION >= 0x050D00
    list.swapItemsAt(i, j);
#else
    list.swap(i, j);
#endif
}

// Sort key: the address, made unsigned so that order is kept, then the place in the list, which keeps the sort stable.
quint64 sortKey(const RW_VAR& request, int place) {
    return static_cast<quint64>(request.address ^ 0x80000000u) << 32 | static_cast<quint32>(place);
}

int placeOf(quint64 key) {
    return static_cast<int>(key & 0x7FFFFFFF);
}

// Appends copies of `piece` that cover `total` bytes from its address on, and leaves it as the last of them.
void appendPieces(RW_VAR& piece, qint64 total, int maximum, QList<RW_VAR>& list) {
    if (total / maximum >= MostPieces) return;
    for (qint64 left = total; left > 0; left -= piece.length) {
        if (left != total) piece.address += static_cast<quint32>(maximum);
        piece.length = static_cast<int>(qMin<qint64>(left, maximum));
        list.append(piece);
    }
}

// The group takes in an entry that starts within its reach; what is over the limit becomes further pieces of it.
void growGroup(const RW_VAR& entry, int maxLength) REQUIRES(PLC_driver.listMutex) {
    QList<RW_VAR>& list = PLC_driver.readList;
    const qint64 span = endOf(entry) - startOf(list.last());
    if (span <= list.last().length) return;
    list.last().length = static_cast<int>(qMin<qint64>(span, maxLength));
    if (span <= maxLength) return;
    RW_VAR rest = list.last();
    rest.address += static_cast<quint32>(maxLength);
    appendPieces(rest, span - maxLength, maxLength, list);
}

void packGroups(const QList<RW_VAR>& sorted, int maxLength) REQUIRES(PLC_driver.listMutex) {
    QList<RW_VAR>& list = PLC_driver.readList;
    for (int i = 0; i < sorted.size(); ++i) {
        const RW_VAR& entry = sorted.at(i);
        if (list.isEmpty() || startOf(entry) >= startOf(list.last()) + maxLength) {
            RW_VAR piece = entry;
            appendPieces(piece, entry.length, maxLength, list);
        } else {
            growGroup(entry, maxLength);
        }
    }
}

// The longest of the entries at an address stands for it.
void packSingly(const QList<RW_VAR>& sorted) REQUIRES(PLC_driver.listMutex) {
    for (int i = 0; i < sorted.size(); ++i) {
        if (i == 0 || sorted.at(i).address != sorted.at(i - 1).address)
            PLC_driver.readList.append(sorted.at(i));
        else if (sorted.at(i).length > PLC_driver.readList.last().length)
            PLC_driver.readList.last().length = sorted.at(i).length;
    }
}

}  // namespace

void Bubble_Sort(QList<RW_VAR>* list) {
    QVector<quint64> keys;
    keys.reserve(list->size());
    for (int i = 0; i < list->size(); ++i)
        keys.append(sortKey(list->at(i), i));
    std::sort(keys.begin(), keys.end());

    // keys[i] says which entry belongs at place i: follow each cycle of the permutation once.
    for (int start = 0; start < keys.size(); ++start) {
        for (int at = start; placeOf(keys.at(at)) != at;) {
            const int from = placeOf(keys.at(at));
            keys[at] = static_cast<quint32>(at);
            if (from == start) break;
            swapEntries(*list, at, from);
            at = from;
        }
    }
}

void BitVarReCreat(QList<RW_VAR>* list, int maxLength) {
    if (maxLength == 1)
        packSingly(*list);
    else if (maxLength > 1)
        packGroups(*list, maxLength);
}

void WhetherGroup(int total, int maximum, RW_VAR* request, QList<RW_VAR>* list) {
    if (maximum < 1) return;
    if (total <= maximum)
        list->append(*request);
    else
        appendPieces(*request, total, maximum, *list);
}
