// Packing of reads into requests of bounded length, in one pass over reads that are sorted by address.
//
// What is packed is a `Reads`: size(), address(i), length(i), and describe(i, request), which makes the whole request.
// That is asked for only where a request begins: most reads join the request before them.
#ifndef VORNEX_LISTS_READ_PACKING_H
#define VORNEX_LISTS_READ_PACKING_H

#include "driver/Communication_Protocol.h"
#include "lists/Func_Initi.h"

// Addresses count as signed numbers here, and their sums in 64 bits.
inline qint64 signedAddress(quint32 address) { return static_cast<qint32>(address); }

// Appends copies of `piece` that cover `total` bytes from its address on, and leaves it as the last of them.
void appendPieces(RW_VAR& piece, qint64 total, int maximum, QList<RW_VAR>& list);

// Makes the last request as long as it may be. What goes beyond, up to `end`, becomes further requests, copies of the
// last one with addresses and lengths of their own.
void cutLast(QList<RW_VAR>& list, qint64 end, int maxLength);

// The request that reads are being packed into: the list's last, of which address and length are kept at hand.
class Open_Request {
public:
    explicit Open_Request(QList<RW_VAR>& list) : last_(list.isEmpty() ? nullptr : &list.last()) {
        start_ = last_ != nullptr ? signedAddress(last_->address) : 0;
        end_ = last_ != nullptr ? start_ + last_->length : 0;
    }
    bool takesIn(qint64 start, int maxLength) const { return last_ != nullptr && start < start_ + maxLength; }
    bool covers(qint64 end) const { return end <= end_; }
    // False when the request would become too long.
    bool growTo(qint64 end, int maxLength) {
        if (end - start_ > maxLength) return false;
        end_ = end;
        last_->length = static_cast<int>(end - start_);
        return true;
    }

private:
    RW_VAR* last_;  // null while the list is empty
    qint64 start_;
    qint64 end_;
};

// Made in the list: each copy of a record counts its texts anew.
template <class Reads>
void appendWhole(const Reads& reads, int i, QList<RW_VAR>& list) {
    list.append(RW_VAR());
    reads.describe(i, list.last());
}

template <class Reads>
void appendRead(const Reads& reads, int i, int maxLength, QList<RW_VAR>& list) {
    const int length = reads.length(i);
    if (length <= 0) return;
    if (length <= maxLength) {
        appendWhole(reads, i, list);
        return;
    }
    RW_VAR piece;
    reads.describe(i, piece);
    appendPieces(piece, length, maxLength, list);
}

template <class Reads>
void packGroups(const Reads& reads, int maxLength, QList<RW_VAR>& list) {
    Open_Request open(list);
    for (int i = 0; i < reads.size(); ++i) {
        const qint64 start = signedAddress(reads.address(i));
        const qint64 end = start + reads.length(i);
        if (!open.takesIn(start, maxLength)) {
            appendRead(reads, i, maxLength, list);
        } else if (open.covers(end) || open.growTo(end, maxLength)) {
            continue;
        } else {
            cutLast(list, end, maxLength);
        }
        open = Open_Request(list);
    }
}

// The longest of the reads at an address stands for it.
template <class Reads>
void packSingly(const Reads& reads, QList<RW_VAR>& list) {
    for (int i = 0; i < reads.size(); ++i) {
        if (i == 0 || reads.address(i) != reads.address(i - 1))
            appendWhole(reads, i, list);
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
