// A label's text taken apart into segments, without a copy of any of it.
// Free functions without state: any thread, no locks.
#ifndef VORNEX_LABEL_LABEL_PATH_H
#define VORNEX_LABEL_LABEL_PATH_H

#include <QtCore/QString>
#include <QtCore/QVarLengthArray>

// A run of characters in somebody else's text, which has to outlive it.
struct Text_View {
    const QChar* begin;
    int size;
};

inline Text_View viewOf(const QString& text) {
    const Text_View view = {text.constData(), text.size()};
    return view;
}

inline QString textOf(const Text_View& view) { return QString(view.begin, view.size); }

bool equals(const Text_View& view, const QString& text);

// The part before the first `separator`, which is taken off `rest` together with the separator. False when nothing is
// left; an empty text has one part, the empty one. `rest.size` is -1 behind the last part.
bool takePart(Text_View& rest, QChar separator, Text_View& part);

// The number that QString::toInt reads in the text; false when it reads none.
bool toNumber(const Text_View& text, int radix, int& number);

// A segment: "Grid[1,2]" has the name "Grid" and the index list "1,2". The last "[" opens the index group, the
// segment's final character closes it, whatever it is; without a "]" anywhere there is no group.
struct Label_Segment {
    Text_View name;
    Text_View indexList;
    bool hasIndex;
};

Label_Segment splitSegment(const Text_View& segment);

// As many segments as hardly any label has: a longer path takes its place from the heap.
typedef QVarLengthArray<Label_Segment, 8> Label_Path;

// Appends the label's segments to `path`; `label` has to outlive it.
void splitLabel(const QString& label, Label_Path& path);

#endif
