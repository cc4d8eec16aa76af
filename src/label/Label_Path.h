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

// Takes the first part off a list separated by commas; an empty text has one part, the empty one, and `rest.size` is -1
// behind the last. True when the part is a number, as QString::toInt reads it.
bool takeNumber(Text_View& rest, int radix, int& number);

// Whether the text holds the mark "%%" of a template.
bool hasMark(const QString& text);

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

// What a label's text is, by its characters alone.
enum Label_Kind {
    LabelName,      // a name alone: no index, no member
    LabelPath,      // segments with indexes or members
    LabelTemplate,  // holds the mark "%%"
};

// Whether splitLabel finds a name alone, told by characters that only names hold: false says nothing.
bool isName(const Text_View& text);

// Appends the segments of a label to `path`, but not those of a name alone; `label` has to outlive it. Looks at each
// character once, since many labels are resolved in a row.
Label_Kind splitLabel(const QString& label, Label_Path& path);

#endif
