#include "lists/Func_Initi.h"

#include <algorithm>
#include <numeric>

#include "lists/Read_Packing.h"

namespace {

// Exchanges two entries by their pointers, without copying the records.
void swapEntries(QList<RW_VAR>& list, int i, int j) {
#if QT_VERSION >= 0x050D00
    list.swapItemsAt(i, j);
#else
    list.swap(i, j);
#endif
}

// A sorted list of requests, as the packing takes it.
class Sorted_Requests {
public:
    explicit Sorted_Requests(const QList<RW_VAR>& list) : list_(list) {}
    int size() const { return list_.size(); }
    quint32 address(int i) const { return list_.at(i).address; }
    int length(int i) const { return list_.at(i).length; }
    const RW_VAR& record(int i) const { return list_.at(i); }

private:
    const QList<RW_VAR>& list_;
};

// Appends to `sorted` at the places that one byte of the keys gives them, which `starts` leads to.
void distribute(const QVector<quint64>& keys, int shift, int* starts, quint64* sorted) {
    for (int i = 0; i < keys.size(); ++i)
        sorted[starts[keys.at(i) >> shift & 0xFF]++] = keys.at(i);
}

}  // namespace

// Byte by byte of the address, the lowest first: a comparing sort takes a third of a rebuild.
void sortByAddress(QVector<quint64>& keys) {
    QVector<quint64> sorted(keys.size());
    for (int shift = 32; shift < 64; shift += 8) {
        int starts[257] = {};
        for (int i = 0; i < keys.size(); ++i)
            ++starts[(keys.at(i) >> shift & 0xFF) + 1];
        if (std::count(starts, starts + 257, keys.size()) != 0) continue;  // all have the same byte here
        std::partial_sum(starts, starts + 257, starts);
        distribute(keys, shift, starts, sorted.data());
        keys.swap(sorted);
    }
}

void appendPieces(RW_VAR& piece, qint64 total, int maximum, QList<RW_VAR>& list) {
    if (total / maximum >= MostPieces) return;
    for (qint64 left = total; left > 0; left -= piece.length) {
        if (left != total) piece.address += static_cast<quint32>(maximum);
        piece.length = static_cast<int>(qMin<qint64>(left, maximum));
        list.append(piece);
    }
}

void growLast(QList<RW_VAR>& list, qint64 end, int maxLength) {
    const qint64 span = end - signedAddress(list.last().address);
    if (span <= list.last().length) return;
    list.last().length = static_cast<int>(qMin<qint64>(span, maxLength));
    if (span <= maxLength) return;
    RW_VAR rest = list.last();
    rest.address += static_cast<quint32>(maxLength);
    appendPieces(rest, span - maxLength, maxLength, list);
}

void Bubble_Sort(QList<RW_VAR>* list) {
    QVector<quint64> keys;
    keys.reserve(list->size());
    for (int i = 0; i < list->size(); ++i)
        keys.append(sortKey(list->at(i).address, i));
    sortByAddress(keys);

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

void BitVarReCreat(QList<RW_VAR>* list, int maxLength) { pack(Sorted_Requests(*list), maxLength, PLC_driver.readList); }

void WhetherGroup(int total, int maximum, RW_VAR* request, QList<RW_VAR>* list) {
    if (maximum < 1) return;
    if (total <= maximum)
        list->append(*request);
    else
        appendPieces(*request, total, maximum, *list);
}
