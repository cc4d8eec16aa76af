#include "label/Label_Path.h"

#include <cstring>

namespace {

Text_View part(const Text_View& text, int from, int size) {
    const Text_View view = {text.begin + from, size};
    return view;
}

// As many decimal digits stay below the largest int in every radix.
enum { PlainDigits = 6 };

// Letters, digits and all that is not ASCII: what names are made of.
bool isOfNames(ushort character) { return character > ']' || (character >= '0' && character <= 'Z'); }

// Four characters at once, each in a lane of 16 bits with its bit 7 as the outcome of a comparison; that bit does not
// tell characters beyond ASCII apart, and false says nothing.
enum { FourCharacters = 4 };
bool areOfNames(const QChar* characters) {
    const quint64 lanes = Q_UINT64_C(0x0001000100010001), marks = lanes * 0x80;
    quint64 four;
    std::memcpy(&four, characters, sizeof four);
    const quint64 marked = four | marks;  // so that no lane borrows from the next one
    const quint64 fromZero = marked - lanes * '0', fromBracket = marked - lanes * '[', beyond = marked - lanes * '^';
    return (four & lanes * 0xFF80) == 0 && (fromZero & (beyond | ~fromBracket) & marks) == marks;
}

// The brackets met in one segment.
struct Brackets {
    int open;     // where the last "[" stands in the segment, or -1
    bool closed;  // a "]" stands anywhere in it
};
const Brackets NoBrackets = {-1, false};

Label_Segment segmentWith(const Brackets& brackets, const Text_View& segment) {
    Label_Segment split = {segment, part(segment, 0, 0), brackets.open >= 0 && brackets.closed};
    if (!split.hasIndex) return split;
    split.name.size = brackets.open;
    // In "a]b[" nothing is between the last "[" and the final character.
    split.indexList = part(segment, brackets.open + 1, qMax(segment.size - brackets.open - 2, 0));
    return split;
}

}  // namespace

bool equals(const Text_View& view, const QString& text) {
    return view.size == text.size() &&
           std::memcmp(view.begin, text.constData(), static_cast<size_t>(view.size) * sizeof(QChar)) == 0;
}

bool takeNumber(Text_View& rest, int radix, int& number) {
    // Nearly every index is a few decimal digits, which are read on the way to the comma.
    unsigned int value = 0;
    bool plain = true;
    int size = 0;
    for (; size < rest.size && rest.begin[size] != QLatin1Char(','); ++size) {
        const unsigned int digit = rest.begin[size].unicode() - static_cast<unsigned int>('0');
        plain = plain && digit <= 9 && digit < static_cast<unsigned int>(radix);
        value = value * static_cast<unsigned int>(radix) + digit;
    }
    const Text_View text = part(rest, 0, size);
    rest = size < rest.size ? part(rest, size + 1, rest.size - size - 1) : part(rest, size, -1);

    bool isNumber = plain && size > 0 && size <= PlainDigits;
    number = isNumber ? static_cast<int>(value) : textOf(text).toInt(&isNumber, radix);
    return isNumber;
}

Label_Segment splitSegment(const Text_View& segment) {
    Brackets brackets = NoBrackets;
    for (int i = 0; i < segment.size; ++i) {
        if (segment.begin[i] == QLatin1Char('[')) brackets.open = i;
        if (segment.begin[i] == QLatin1Char(']')) brackets.closed = true;
    }
    return segmentWith(brackets, segment);
}

bool hasMark(const QString& text) {
    for (int i = 1; i < text.size(); ++i)
        if (text.at(i) == QLatin1Char('%') && text.at(i - 1) == QLatin1Char('%')) return true;
    return false;
}

bool isName(const Text_View& text) {
    int at = 0;
    for (; at + FourCharacters <= text.size; at += FourCharacters)
        if (!areOfNames(text.begin + at)) break;
    while (at < text.size && isOfNames(text.begin[at].unicode()))
        ++at;
    return at == text.size;
}

Label_Kind splitLabel(const QString& label, Label_Path& path) {
    const Text_View text = viewOf(label);
    Label_Kind kind = LabelName;
    Brackets brackets = NoBrackets;
    int begin = 0;
    for (int i = 0; i < text.size; ++i) {
        const ushort character = text.begin[i].unicode();
        if (isOfNames(character)) continue;
        if (character == '%' && i > 0 && text.begin[i - 1] == QLatin1Char('%')) kind = LabelTemplate;
        if (character != '.' && character != '[' && character != ']') continue;
        if (kind == LabelName) kind = LabelPath;
        if (character == '[') brackets.open = i - begin;
        if (character == ']') brackets.closed = true;
        if (character != '.') continue;
        path.append(segmentWith(brackets, part(text, begin, i - begin)));
        brackets = NoBrackets;
        begin = i + 1;
    }
    if (kind != LabelName) path.append(segmentWith(brackets, part(text, begin, text.size - begin)));
    return kind;
}
