#include "Straightforward.h"

#include <QtCore/QMutexLocker>
#include <QtCore/QStringList>

#include <algorithm>
#include <array>

namespace straightforward {

namespace {

std::array<unsigned short, 256> makeTable() {
    std::array<unsigned short, 256> table{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned crc = byte << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc << 1 ^ (crc & 0x8000 ? 0x1021U : 0U)) & 0xFFFF;
        table[byte] = static_cast<unsigned short>(crc);
    }
    return table;
}

const std::array<unsigned short, 256> table = makeTable();

void ensureEntry(Image& image, unsigned int address) {
    if (!image.contains(address)) image.insert(address, 0);
}

bool splitIndex(QString& segment, QString& indexList) {
    if (!segment.contains('[') || !segment.contains(']')) return false;
    const int open = segment.lastIndexOf('[');
    indexList = segment.mid(open + 1, segment.size() - open - 2);
    segment = segment.left(open);
    return true;
}

int elementNumber(const QString& indexList, const Label_Type_Info& entry, unsigned& element) {
    const QStringList pieces = indexList.split(',');
    if (pieces.size() != static_cast<int>(entry.dimensionCount)) return 1;
    unsigned number = 0;
    for (int d = 0; d < pieces.size(); ++d) {
        bool ok = false;
        const int low = entry.dimensions[1 + 2 * d];
        const int end = entry.dimensions[2 + 2 * d];
        const int index = pieces[d].toInt(&ok, entry.dimensions[0]);
        if (!ok || index < low || index >= end) return 3;
        number = number * static_cast<unsigned>(end - low) + static_cast<unsigned>(index - low);
    }
    element = number;
    return 0;
}

int walkFrom(Label_Type_Info entry, const QStringList& path, int i, ControlInformationM& info) {
    static const unsigned sizes[] = {0, 1, 1, 2, 2, 4, 4, 4, 8, 8, 255, 255};
    if (i >= path.size()) return 1;
    QString name = path[i];
    QString indexList;
    int own = splitIndex(name, indexList) ? 1 : 0;
    unsigned element = 0;
    if (entry.typeFlags & LabelIsArray) {
        own = elementNumber(indexList, entry, element);
        if (own != 0) return own;
    }
    if (entry.typeFlags & LabelIsStructType) {
        for (int m = 0; m < entry.members.size(); ++m) {
            const Label_Type_Info member = entry.members[m];
            if (member.name != name) continue;
            info.address += member.address;
            return walkFrom(member, path, i, info);
        }
        return 7;
    }
    const int typeCode = entry.typeFlags & LabelTypeMask;
    if (typeCode != StructTypeCode) {
        info.typeCode = static_cast<quint8>(typeCode);
        info.address += element * sizes[typeCode];
        return own;
    }
    const Label_Type_Info structType = entry.elementType[0];
    info.address += element * structType.address;
    const int result = walkFrom(structType, path, i + 1, info);
    return own != 0 ? own : result;
}

bool sameRead(const RW_VAR& a, const RW_VAR& b) {
    return a.varType == b.varType && a.varId == b.varId && a.station == b.station && a.dataType == b.dataType &&
           a.address == b.address && a.length == b.length && a.areaId == b.areaId;
}

bool isLower(const RW_VAR& a, const RW_VAR& b) { return static_cast<int>(a.address) < static_cast<int>(b.address); }

}  // namespace

unsigned short crc(const unsigned char* bytes, unsigned short count) {
    unsigned value = 0;
    for (unsigned i = 0; i < count; ++i)
        value = (value << 8 & 0xFFFF) ^ table[value >> 8 ^ bytes[i]];
    return static_cast<unsigned short>(value);
}

void store(Image& image, unsigned int address, const unsigned char* bytes, int count) {
    for (int i = 0; i < count; ++i) {
        ensureEntry(image, address + static_cast<unsigned>(i));
        image[address + static_cast<unsigned>(i)] = bytes[i];
    }
}

QByteArray read(Image& image, unsigned int address, int count) {
    QByteArray bytes(count, '\0');
    for (int i = 0; i < count; ++i) {
        ensureEntry(image, address + static_cast<unsigned>(i));
        bytes[i] = static_cast<char>(image.value(address + static_cast<unsigned>(i)));
    }
    return bytes;
}

void storeAlone(Image& image, unsigned int address, const unsigned char* bytes, int count) {
    image.detach();
    const Image& known = image;
    for (int i = 0; i < count; ++i, ++address) {
        const Image::const_iterator found = known.constFind(address);
        if (found == known.constEnd())
            image.insert(address, bytes[i]);
        else
            const_cast<unsigned char&>(*found) = bytes[i];
    }
}

void readAlone(const Image& image, unsigned int address, char* bytes, int count) {
    for (int i = 0; i < count; ++i, ++address) {
        const Image::const_iterator found = image.constFind(address);
        bytes[i] = found == image.constEnd() ? '\0' : static_cast<char>(*found);
    }
}

void Labels::pass(const QList<Label_Type_Info>& labels) {
    cache_.clear();
    for (int i = 0; i < labels.size(); ++i)
        table_.insert(labels[i].name, labels[i]);
}

int Labels::resolve(QString label, ControlInformationM& info) {
    if (label.isEmpty()) return 6;
    {
        const QMutexLocker lock(&mutex_);
        if (cache_.contains(label)) {
            info = cache_.value(label);
            return 0;
        }
    }
    const int result = walk(label, info);
    if (result == 0) {
        const QMutexLocker lock(&mutex_);
        cache_.insert(label, info);
    }
    return result;
}

int Labels::walk(const QString& label, ControlInformationM& info) const {
    const QStringList path = label.split('.');
    QString name = path[0];
    QString indexList;
    splitIndex(name, indexList);
    if (!table_.contains(name)) return 2;
    const Label_Type_Info entry = table_.value(name);
    info.address = entry.address;
    return walkFrom(entry, path, 0, info);
}

int readValue(Labels& labels, Image& image, QMutex& mutex, QString label, QByteArray* out, int count) {
    if (label.contains("%%")) return 0;  // none of the benchmarks reads a template
    ControlInformationM info;
    if (labels.resolve(label, info) != 0) {
        *out = QByteArray(2 * count, '\0');
        return 0;
    }
    const QMutexLocker lock(&mutex);
    const QByteArray bytes = read(image, info.address, (count + 1) / 2 * 4);
    out->clear();
    out->append(bytes);
    return 1;
}

void sortByPairwiseSwaps(QList<RW_VAR>& list) {
    for (int i = 1; i < list.size(); ++i)
        for (int j = list.size() - 1; j >= i; --j)
            if (isLower(list[j], list[j - 1])) {
                const RW_VAR moved = list[j - 1];
                list[j - 1] = list[j];
                list[j] = moved;
            }
}

void stableSort(QList<RW_VAR>& list) { std::stable_sort(list.begin(), list.end(), isLower); }

void appendOnce(QList<RW_VAR>& queue, const RW_VAR& read) {
    for (int i = 0; i < queue.size(); ++i)
        if (sameRead(queue[i], read)) return;
    queue.append(read);
}

}  // namespace straightforward
