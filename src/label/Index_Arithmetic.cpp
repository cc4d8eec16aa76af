#include "label/Index_Arithmetic.h"

#include <QtCore/QVector>

#include <algorithm>

namespace {

// The shape of an array, as its definition's `dimensions` list describes it.
class Array_Shape {
public:
    Array_Shape(qint64 dimensionCount, const QList<int>& dimensions)
        : count_(dimensionCount), dimensions_(dimensions) {}

    // The list is as long as its promise and the radix is one that numbers can be written in.
    bool isSound() const {
        return count_ >= 0 && 1 + 2 * count_ <= dimensions_.size() && radix() >= 2 && radix() <= 36;
    }
    // Every dimension holds at least one element.
    bool hasElements() const {
        for (int d = 0; d < count(); ++d)
            if (end(d) <= low(d)) return false;
        return true;
    }

    // Only for a sound shape. Dimensions are counted from 0, outermost first.
    int count() const { return static_cast<int>(count_); }
    int radix() const { return dimensions_.at(0); }
    qint64 low(int d) const { return dimensions_.at(1 + 2 * d); }
    qint64 end(int d) const { return dimensions_.at(2 + 2 * d); }
    qint64 high(int d) const { return end(d) - 1; }
    qint64 extent(int d) const { return end(d) - low(d); }

private:
    const qint64 count_;
    const QList<int>& dimensions_;
};

const char* const Mark = "%%";

// The value of a template term "12" or "7+5"; false when it is none.
bool termValue(const QString& term, int radix, qint64& value) {
    bool ok = false;
    value = term.toInt(&ok, radix);
    return ok;
}

bool sumValue(const QString& text, int radix, qint64& value) {
    const QStringList terms = text.split(QLatin1Char('+'));
    qint64 second = 0;
    if (terms.size() != 2 || !termValue(terms.at(0).trimmed(), radix, value) ||
        !termValue(terms.at(1).trimmed(), radix, second))
        return false;
    value += second;
    return true;
}

// The value of one index of a template. "+" has a meaning only beside the mark.
bool templateIndexValue(QString piece, int radix, int index, qint64& value) {
    if (!hasMark(piece)) return termValue(piece, radix, value);
    piece.replace(QLatin1String(Mark), QString::number(index, radix));
    return piece.contains(QLatin1Char('+')) ? sumValue(piece, radix, value) : termValue(piece, radix, value);
}

// The values that the inner text of an index group gives. Blank and unreadable pieces give none, so that the pieces
// behind them move up.
QVector<qint64> templateValues(const QString& inner, int radix, int index) {
    QVector<qint64> values;
    const QStringList pieces = inner.split(QLatin1Char(','));
    for (int i = 0; i < pieces.size(); ++i) {
        qint64 value = 0;
        if (templateIndexValue(pieces.at(i).trimmed(), radix, index, value)) values.append(value);
    }
    return values;
}

// Moves what is past the end of a dimension into the next outer one; past the outermost, the last element is meant.
void carry(const Array_Shape& shape, QVector<qint64>& indexes) {
    for (int d = shape.count() - 1; d >= 0; --d) {
        if (indexes.at(d) <= shape.high(d)) continue;
        if (d == 0) {
            for (int j = 0; j < shape.count(); ++j)
                indexes[j] = shape.high(j);
            return;
        }
        const qint64 past = indexes.at(d) - shape.high(d) - 1;
        indexes[d] = shape.low(d) + past % shape.extent(d);
        indexes[d - 1] += past / shape.extent(d) + 1;
    }
}

// QString::number writes a negative number in another radix than 10 as its two's complement, which cannot be read
// back.
QString indexText(qint64 value, int radix) {
    const QString digits = QString::number(value < 0 ? -value : value, radix);
    return value < 0 ? QLatin1Char('-') + digits : digits;
}

QString indexGroup(const QVector<qint64>& indexes, int radix) {
    if (indexes.isEmpty()) return QString();
    QStringList texts;
    for (int d = 0; d < indexes.size(); ++d)
        texts.append(indexText(indexes.at(d), radix));
    return QLatin1Char('[') + texts.join(QLatin1String(",")) + QLatin1Char(']');
}

}  // namespace

bool get_label_address_array_split(QString& segment, QString& indexList) {
    const Label_Segment split = splitSegment(viewOf(segment));
    if (!split.hasIndex) return false;
    indexList = textOf(split.indexList);
    segment.truncate(split.name.size);
    return true;
}

int get_label_address_array_memory_index(QString indexList, int dimensionCount, const QList<int>& dimensions,
                                         unsigned int& element) {
    return elementNumber(viewOf(indexList), dimensionCount, dimensions, element);
}

int elementNumber(const Text_View& indexList, int dimensionCount, const QList<int>& dimensions, unsigned int& element) {
    const Array_Shape shape(dimensionCount, dimensions);
    if (dimensionCount < 1 || !shape.isSound()) return LabelPathMismatch;

    int result = LabelOk;
    unsigned int number = 0;
    int d = 0;
    for (Text_View rest = indexList; rest.size >= 0; ++d) {
        if (d == dimensionCount) return LabelPathMismatch;
        int index = 0;
        // The upper bound guards what lies behind the array: a write past it would change other data.
        if (!takeNumber(rest, shape.radix(), index) || index < shape.low(d) || index >= shape.end(d))
            result = LabelIndexBad;  // unless their number is wrong
        number = number * static_cast<unsigned int>(shape.extent(d)) + static_cast<unsigned int>(index - shape.low(d));
    }
    if (d != dimensionCount) return LabelPathMismatch;
    if (result == LabelOk) element = number;
    return result;
}

int Address_offset(const Label_Type_Info& entry, QString& segment, int index) {
    const int open = segment.indexOf(QLatin1Char('['));
    const int close = segment.lastIndexOf(QLatin1Char(']'));
    if (open < 0 && close < 0 && !hasMark(segment)) return OffsetNoIndexSyntax;
    const Array_Shape shape(entry.dimensionCount, entry.dimensions);
    if (open < 0 || close < open || !shape.isSound() || !shape.hasElements()) return OffsetMalformed;

    const QString inner = segment.mid(open + 1, close - open - 1);
    QVector<qint64> indexes = templateValues(inner, shape.radix(), index);
    indexes.resize(qMin(indexes.size(), shape.count()));
    for (int d = indexes.size(); d < shape.count(); ++d)
        indexes.append(shape.low(d));
    carry(shape, indexes);
    segment = segment.left(open) + indexGroup(indexes, shape.radix());
    return OffsetRewritten;
}

const Label_Type_Info* findMember(const Label_Type_Info& structType, const Text_View& name) {
    const qint64 promised = structType.memberCount;
    for (int i = 0; i < structType.members.size() && i < promised; ++i)
        if (equals(name, structType.members.at(i).name)) return &structType.members.at(i);
    return nullptr;
}

int get_label_address_address_offset(const Label_Type_Info& entry, QStringList& path, int segment, int index) {
    const Label_Type_Info* at = &entry;
    for (int i = segment; i >= 0 && i < path.size();) {
        QString name = path.at(i);
        QString indexList;
        bool hasIndex = get_label_address_array_split(name, indexList);
        if (at->typeFlags & LabelIsArray) {
            QString rewritten = path.at(i);
            const int result = Address_offset(*at, rewritten, index);
            if (result == OffsetMalformed) return LabelPathMismatch;
            if (result == OffsetRewritten) {
                path[i] = rewritten;
                return LabelOk;
            }
            hasIndex = true;  // an array needs its index here, as another definition must not have one
        }
        if (at->typeFlags & LabelIsStructType) {
            at = findMember(*at, viewOf(name));
            if (at == nullptr) return LabelMemberUnknown;
            continue;  // the same segment, against the member's own definition
        }
        if (hasIndex) return LabelPathMismatch;
        if ((at->typeFlags & LabelTypeMask) != StructTypeCode) return LabelOk;
        if (at->elementType.isEmpty()) return LabelPathMismatch;
        at = &at->elementType.first();
        ++i;
    }
    return LabelPathMismatch;
}
