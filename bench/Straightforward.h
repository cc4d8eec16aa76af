// What the driver does, done the straightforward way: the textbook steps without a second thought. The benchmarks
// compare the driver with these in one process, so that every figure is a ratio.
#ifndef VORNEX_BENCH_STRAIGHTFORWARD_H
#define VORNEX_BENCH_STRAIGHTFORWARD_H

#include <QtCore/QHash>
#include <QtCore/QMutex>

#include "vornex_label_tcp/Entry_Points.h"

namespace straightforward {

typedef QHash<unsigned int, unsigned char> Image;

// One table of 256 entries, one step for each byte.
unsigned short crc(const unsigned char* bytes, unsigned short count);

// Two lookups for each byte: is there an entry, then the value.
void store(Image& image, unsigned int address, const unsigned char* bytes, int count);
QByteArray read(Image& image, unsigned int address, int count);

// The least that the image's type allows: one plain find for each byte and nothing else.
void storeAlone(Image& image, unsigned int address, const unsigned char* bytes, int count);
void readAlone(const Image& image, unsigned int address, char* bytes, int count);

// Label resolution: ask the cache, fetch from the cache; split, copy each definition that is passed, recurse.
class Labels {
public:
    void pass(const QList<Label_Type_Info>& labels);
    int resolve(QString label, ControlInformationM& info);
    // The same without looking at the cache or filling it.
    int walk(const QString& label, ControlInformationM& info) const;
    void forget() { cache_.clear(); }

private:
    QMutex mutex_;
    QHash<QString, Label_Type_Info> table_;
    QHash<QString, ControlInformationM> cache_;
};

// Reads a value by label: resolve, then two lookups for each byte into a buffer that replaces `out`.
int readValue(Labels& labels, Image& image, QMutex& mutex, QString label, QByteArray* out, int count);

// The sort by pairwise swaps of neighbours, and std::stable_sort, both moving whole records.
void sortByPairwiseSwaps(QList<RW_VAR>& list);
void stableSort(QList<RW_VAR>& list);

// Appends the read unless one like it is queued: looks at every entry.
void appendOnce(QList<RW_VAR>& queue, const RW_VAR& read);

}  // namespace straightforward

#endif
