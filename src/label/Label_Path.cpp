#include "label/Label_Path.h"

#include <cstring>

namespace {

int indexOf(const Text_View& text, QChar sought) {
    for (int i = 0; i < text.size; ++i)
        if (text.begin[i] == sought) return i;
    return -1;
}

int lastIndexOf(const Text_View& text, QChar sought) {
    int i = text.size - 1;
    while (i >= 0 && text.begin[i] != sought)
        --i;
    return i;
}

Text_View part(const Text_View& text, int from, int size) {
    const Text_View view = {text.begin + from, size};
    return view;
}

// As many decimal digits stay below the largest int in every radix.
enum { PlainDigits = 6 };

// Reads what nearly every index is: a few decimal digits. False when the text is anything else.
bool plainNumber(const Text_View& text, int radix, int& number) {
    if (text.size < 1 || text.size > PlainDigits) return false;
    int value = 0;
    for (int i = 0; i < text.size; ++i) {
        const int digit = text.begin[i].unicode() - '0';
        if (digit < 0 || digit > 9 || digit >= radix) return false;
        value = value * radix + digit;
    }
    number = value;
    return true;
}

}  // namespace

bool equals(const Text_View& view, const QString& text) {
    return view.size == text.size() &&
           std::memcmp(view.begin, text.constData(), static_cast<size_t>(view.size) * sizeof(QChar)) == 0;
}

bool takePart(Text_View& rest, QChar separator, Text_View& taken) {
    if (rest.size < 0) return false;
    const int at = indexOf(rest, separator);
    taken = part(rest, 0, at < 0 ? rest.size : at);
    rest = at < 0 ? part(rest, 0, -1) : part(rest, at + 1, rest.size - at - 1);
    return true;
}

bool toNumber(const Text_View& text, int radix, int& number) {
    if (plainNumber(text, radix, number)) return true;
    bool ok = false;
    number = textOf(text).toInt(&ok, radix);
    return ok;
}

Label_Segment splitSegment(const Text_View& segment) {
    const int open = lastIndexOf(segment, QLatin1Char('['));
    const bool hasIndex = open >= 0 && indexOf(segment, QLatin1Char(']')) >= 0;
    Label_Segment split = {segment, part(segment, 0, 0), hasIndex};
    if (!hasIndex) return split;
    split.name.size = open;
    // In "a]b[" nothing is between the last "[" and the final character.
    split.indexList = part(segment, open + 1, qMax(segment.size - open - 2, 0));
    return split;
}

void splitLabel(const QString& label, Label_Path& path) {
    Text_View rest = viewOf(label);
    Text_View segment;
    while (takePart(rest, QLatin1Char('.'), segment))
        path.append(splitSegment(segment));
}
