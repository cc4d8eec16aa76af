// Why a label text does not resolve, and where in the text it lies. The driver only gives a code.
#ifndef VORNEX_LABELS_LABEL_EXPLAIN_H
#define VORNEX_LABELS_LABEL_EXPLAIN_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "labels/Label_File.h"

namespace vornex {

// The driver's result codes of a label, as docs/errors.md lists them.
enum Label_Code {
    LabelGood = 0,
    LabelMisfit = 1,
    LabelNoName = 2,
    LabelNoIndex = 3,
    LabelNoText = 6,
    LabelNoMember = 7
};

// The code in general words: "no label has this name".
std::string labelCodeText(int code);

// A place in a label text, in bytes, and what is wrong there.
struct Label_Problem {
    int code = 0;  // the result code that this mistake leads to
    std::size_t at = 0;
    std::size_t length = 0;
    std::string reason;
};

// The first mistake in `text`, found by a walk of the tool's own through the file's definitions; nothing for a text
// that resolves.
std::optional<Label_Problem> explainLabel(const Label_File& file, const std::string& text);

// One segment of a path.
struct Path_Step {
    const Label* label = nullptr;
    std::string indexes;        // "[1,2]" as the file's own texts have it; empty: no array, or all of it
    std::uint32_t address = 0;  // of the element, or of the array's first one
};

// The same for a path, which may end on a structure or an array and leave out indexes, or have %% in their place:
// "Motors[1]", "Line.Feed[2].Speed". `steps` are those up to the mistake.
std::optional<Label_Problem> explainPath(const Label_File& file, const std::string& text,
                                         std::vector<Path_Step>& steps);

// ": REASON", and in lines of their own the text with its place marked.
std::string problemWords(const std::string& text, const Label_Problem& problem);

// What of a text that resolves the driver does not look at: ".x" in "Speed.x"; empty when it looks at everything.
std::string ignoredTail(const Label_File& file, const std::string& text);

// A line with marks under the place: "       ^^".
std::string markLine(const std::string& text, std::size_t at, std::size_t length);

}  // namespace vornex

#endif
