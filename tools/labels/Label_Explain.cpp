#include "labels/Label_Explain.h"

#include <algorithm>
#include <vector>

#include "text/Nearest_Word.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex {

namespace {

// A piece of a text with its place.
struct Piece {
    std::string text;
    std::size_t at = 0;
};

std::vector<Piece> split(const Piece& whole, char separator) {
    std::vector<Piece> pieces;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = whole.text.find(separator, begin);
        pieces.push_back({whole.text.substr(begin, end - begin), whole.at + begin});
        if (end == std::string::npos) return pieces;
        begin = end + 1;
    }
}

// A segment as the driver takes it: the last "[" opens the index group, the final character closes it.
struct Segment {
    explicit Segment(const Piece& whole) : name(whole) {
        const std::size_t open = whole.text.rfind('[');
        hasGroup = open != std::string::npos && whole.text.find(']') != std::string::npos;
        if (!hasGroup) return;
        name.text = whole.text.substr(0, open);
        group = {whole.text.substr(open), whole.at + open};
        const std::size_t inner = group.text.size() < 2 ? 0 : group.text.size() - 2;
        indexes = {group.text.substr(1, inner), group.at + 1};
        closed = group.text.back() == ']';
    }

    Piece name;
    bool hasGroup = false;
    bool closed = true;
    Piece group;    // "[1,2]"
    Piece indexes;  // "1,2"
};

std::string suggestion(const std::vector<Label>& labels, const std::string& name) {
    std::vector<std::string> names;
    names.reserve(labels.size());
    for (const Label& label : labels)
        names.push_back(label.name);
    return didYouMean(name, names);
}

std::string memberList(const std::vector<Label>& members) {
    const std::size_t shown = 6;
    std::string text;
    for (std::size_t i = 0; i < members.size() && i < shown; ++i)
        text += (i == 0 ? "" : ", ") + members[i].name;
    if (members.size() > shown) text += ", ...";
    return text;
}

const Label* findByName(const std::vector<Label>& labels, const std::string& name) {
    const auto found =
        std::find_if(labels.begin(), labels.end(), [&name](const Label& label) { return label.name == name; });
    return found == labels.end() ? nullptr : &*found;
}

std::string boundsText(const Type_Ref& type) {
    const std::string text = formatType(type);
    return text.substr(text.find('['));
}

class Walk {
public:
    enum class What { Variable, Path };
    Walk(const Label_File& labelFile, const std::string& labelText, What what = What::Variable)
        : file(labelFile), segments(split({labelText, 0}, '.')), isPath(what == What::Path) {}

    std::optional<Label_Problem> run() {
        const Segment first(segments[0]);
        const Label* const label = findByName(file.labels, first.name.text);
        if (!label) {
            return problem(
                LabelNoName, first.name,
                "no label has the name " + quoted(first.name.text) + suggestion(file.labels, first.name.text));
        }
        return walk(*label, 0, 0);
    }

    // Those that the walk used.
    std::vector<Path_Step> steps;

private:
    static Label_Problem problem(int code, const Piece& place, const std::string& reason) {
        return {code, place.at, std::max<std::size_t>(place.text.size(), 1), reason};
    }

    std::optional<Label_Problem> walk(const Label& label, std::size_t i, std::uint32_t base) {
        const Segment segment(segments[i]);
        steps.push_back({&label, "", base + label.at});
        if (!label.type.bounds.empty()) {
            const bool isWhole = isPath && (!segment.hasGroup || segment.indexes.text.find("%%") != std::string::npos);
            if (auto wrong = isWhole ? std::nullopt : checkIndexes(label, segment)) return wrong;
            if (!isWhole) takeElement(label.type, segment);
        } else if (segment.hasGroup) {
            return problem(LabelMisfit, segment.group, "'" + label.name + "' is no array and takes no index");
        }
        if (label.type.code == 12) return member(label, i);
        if (!isPath || i + 1 == segments.size()) return std::nullopt;
        return problem(LabelMisfit, segments[i + 1], "'" + label.name + "' is no structure and has no members");
    }

    // Of indexes that are right.
    void takeElement(const Type_Ref& type, const Segment& segment) {
        const std::vector<Piece> indexes = split(segment.indexes, ',');
        std::uint64_t number = 0;
        for (std::size_t d = 0; d < indexes.size(); ++d) {
            const std::int64_t index = indexNumber(indexes[d].text, type.radix).value_or(0);
            number = number * extentOf(type.bounds[d]) + static_cast<std::uint64_t>(index - type.bounds[d].low);
            steps.back().indexes += (d == 0 ? "[" : ",") + indexText(index, type.radix);
        }
        steps.back().indexes += "]";
        steps.back().address += static_cast<std::uint32_t>(number * elementBytes(file, type));
    }

    std::optional<Label_Problem> member(const Label& label, std::size_t i) {
        const std::vector<Label>& members = file.structs.at(label.type.structName).members;
        if (i + 1 >= segments.size() && isPath) return std::nullopt;
        if (i + 1 >= segments.size()) {
            const Piece end = {"", segments[i].at + segments[i].text.size()};
            return problem(
                LabelMisfit, end,
                "ends on structure " + label.type.structName + "; name a member of it: " + memberList(members));
        }
        const Segment next(segments[i + 1]);
        const Label* const found = findByName(members, next.name.text);
        if (found) return walk(*found, i + 1, steps.back().address);
        const std::string nearest = suggestion(members, next.name.text);
        return problem(LabelNoMember, next.name,
                       "structure " + label.type.structName + " has no member " + quoted(next.name.text) +
                           (nearest.empty() ? "; it has " + memberList(members) : nearest));
    }

    static std::optional<Label_Problem> checkIndexes(const Label& label, const Segment& segment) {
        const std::vector<Index_Bounds>& bounds = label.type.bounds;
        if (!segment.hasGroup) {
            const Piece end = {"", segment.name.at + segment.name.text.size()};
            // with one dimension the driver reads an empty index, with more it misses some
            return problem(bounds.size() == 1 ? LabelNoIndex : LabelMisfit, end,
                           "'" + label.name + "' is an array " + boundsText(label.type) + "; its index is missing");
        }
        const std::vector<Piece> indexes = split(segment.indexes, ',');
        if (indexes.size() != bounds.size()) {
            return problem(LabelMisfit, segment.group,
                           "'" + label.name + "' has " + std::to_string(bounds.size()) + " dimensions " +
                               boundsText(label.type) + ", not " + std::to_string(indexes.size()));
        }
        for (std::size_t d = 0; d < indexes.size(); ++d) {
            if (auto wrong = checkIndex(indexes[d], bounds[d], label.type.radix)) return wrong;
        }
        if (segment.closed) return std::nullopt;
        return problem(LabelNoIndex, segment.group, "the index group does not end with ']'");
    }

    static std::optional<Label_Problem> checkIndex(const Piece& index, const Index_Bounds& bounds, int radix) {
        const std::optional<std::int64_t> value = indexNumber(index.text, radix);
        const std::string base = radix == 10 ? "" : " in radix " + std::to_string(radix);
        if (!value && index.text.find("%%") != std::string::npos) {
            return problem(LabelNoIndex, index, "%% is put in for the first array of a label alone");
        }
        if (!value) return problem(LabelNoIndex, index, "index " + quoted(index.text) + " is no number" + base);
        if (*value >= bounds.low && *value <= bounds.high) return std::nullopt;
        return problem(LabelNoIndex, index,
                       "index " + index.text + base + " is outside " + std::to_string(bounds.low) + " to " +
                           std::to_string(bounds.high) + (radix == 10 ? "" : " (decimal)"));
    }

    const Label_File& file;
    const std::vector<Piece> segments;
    const bool isPath;
};

}  // namespace

std::string labelCodeText(int code) {
    switch (code) {
        case LabelGood: return "resolves";
        case LabelMisfit: return "the text does not fit the definition";
        case LabelNoName: return "no label has this name";
        case LabelNoIndex: return "an index is no number or outside its array";
        case LabelNoText: return "the text is empty";
        case LabelNoMember: return "the structure has no such member";
        default: return "unknown result";
    }
}

std::optional<Label_Problem> explainLabel(const Label_File& file, const std::string& text) {
    if (text.empty()) return Label_Problem{LabelNoText, 0, 1, "the label text is empty"};
    return Walk(file, text).run();
}

std::optional<Label_Problem> explainPath(const Label_File& file, const std::string& text,
                                         std::vector<Path_Step>& steps) {
    Walk walk(file, text, Walk::What::Path);
    std::optional<Label_Problem> problem = walk.run();
    steps = walk.steps;
    return problem;
}

std::string problemWords(const std::string& text, const Label_Problem& problem) {
    return ": " + problem.reason + "\n    " + text + "\n    " + markLine(text, problem.at, problem.length);
}

std::string ignoredTail(const Label_File& file, const std::string& text) {
    Walk walk(file, text);
    if (text.empty() || walk.run()) return "";
    std::size_t at = 0;
    for (std::size_t i = 0; i < walk.steps.size() && at != std::string::npos; ++i)
        at = text.find('.', i == 0 ? 0 : at + 1);
    return at == std::string::npos ? "" : text.substr(at);
}

std::string markLine(const std::string& text, std::size_t at, std::size_t length) {
    const std::size_t begin = std::min(at, text.size());
    const auto width = [&text](std::size_t from, std::size_t bytes) {
        return displayWidth(harmless(text.substr(from, bytes)));
    };
    return std::string(width(0, begin), ' ') + std::string(std::max<std::size_t>(width(begin, length), 1), '^');
}

}  // namespace vornex
