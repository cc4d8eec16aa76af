#include "lists/Func_Initi.h"

#include "lists/Address_Sort.h"
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
    void describe(int i, RW_VAR& request) const { request = list_.at(i); }

private:
    const QList<RW_VAR>& list_;
};

}  // namespace

void appendPieces(RW_VAR& piece, qint64 total, int maximum, QList<RW_VAR>& list) {
    if (total / maximum >= MostPieces) return;
    for (qint64 left = total; left > 0; left -= piece.length) {
        if (left != total) piece.address += static_cast<quint32>(maximum);
        piece.length = static_cast<int>(qMin<qint64>(left, maximum));
        list.append(piece);
    }
}

void cutLast(QList<RW_VAR>& list, qint64 end, int maxLength) {
    const qint64 span = end - signedAddress(list.last().address);
    list.last().length = maxLength;
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
