#include "Label_Explain.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <vector>

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

// Edit distance, given up above `limit`; upper and lower case are the same here.
std::size_t distance(const std::string& a, const std::string& b, std::size_t limit) {
    if (a.size() > b.size() + limit || b.size() > a.size() + limit) return limit + 1;
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const bool same =
                std::tolower(static_cast<unsigned char>(a[i])) == std::tolower(static_cast<unsigned char>(b[j]));
            const std::size_t next = std::min({row[j] + 1, row[j + 1] + 1, diagonal + (same ? 0 : 1)});
            diagonal = row[j + 1];
            row[j + 1] = next;
        }
    }
    return row[b.size()];
}

std::string suggestion(const std::vector<Label>& labels, const std::string& name) {
    std::size_t best = 3;  // more than two slips is another word
    std::string found;
    for (const Label& label : labels) {
        const std::size_t slips = distance(label.name, name, best);
        if (slips >= best || slips >= label.name.size()) continue;
        best = slips;
        found = label.name;
    }
    return found.empty() ? "" : "; did you mean '" + found + "'?";
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

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t");
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

std::optional<long> readIndex(const std::string& text, int radix) {
    const std::string digits = trimmed(text);
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(digits.c_str(), &end, radix);
    if (digits.empty() || *end != '\0' || errno != 0) return std::nullopt;
    return value;
}

class Walk {
public:
    Walk(const Label_File& labelFile, const std::string& labelText)
        : file(labelFile), segments(split({labelText, 0}, '.')) {}

    std::optional<Label_Problem> run() {
        const Segment first(segments[0]);
        const Label* const label = findByName(file.labels, first.name.text);
        if (!label) {
            return problem(
                LabelNoName, first.name,
                "no label has the name '" + first.name.text + "'" + suggestion(file.labels, first.name.text));
        }
        return walk(*label, 0);
    }

    // The number of segments that the walk used.
    std::size_t used = 0;

private:
    static Label_Problem problem(int code, const Piece& place, const std::string& reason) {
        return {code, place.at, std::max<std::size_t>(place.text.size(), 1), reason};
    }

    std::optional<Label_Problem> walk(const Label& label, std::size_t i) {
        used = i + 1;
        const Segment segment(segments[i]);
        if (!label.type.bounds.empty()) {
            if (auto wrong = checkIndexes(label, segment)) return wrong;
        } else if (segment.hasGroup) {
            return problem(LabelMisfit, segment.group, "'" + label.name + "' is no array and takes no index");
        }
        return label.type.code == 12 ? member(label, i) : std::nullopt;
    }

    std::optional<Label_Problem> member(const Label& label, std::size_t i) {
        const std::vector<Label>& members = file.structs.at(label.type.structName).members;
        if (i + 1 >= segments.size()) {
            const Piece end = {"", segments[i].at + segments[i].text.size()};
            return problem(
                LabelMisfit, end,
                "ends on structure " + label.type.structName + "; name a member of it: " + memberList(members));
        }
        const Segment next(segments[i + 1]);
        const Label* const found = findByName(members, next.name.text);
        if (found) return walk(*found, i + 1);
        const std::string nearest = suggestion(members, next.name.text);
        return problem(LabelNoMember, next.name,
                       "structure " + label.type.structName + " has no member '" + next.name.text + "'" +
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
        const std::optional<long> value = readIndex(index.text, radix);
        const std::string base = radix == 10 ? "" : " in radix " + std::to_string(radix);
        if (!value && index.text.find("%%") != std::string::npos) {
            return problem(LabelNoIndex, index, "%% is put in for the first array of a label alone");
        }
        if (!value) return problem(LabelNoIndex, index, "index '" + index.text + "' is no number" + base);
        if (*value >= bounds.low && *value <= bounds.high) return std::nullopt;
        return problem(LabelNoIndex, index,
                       "index " + index.text + base + " is outside " + std::to_string(bounds.low) + " to " +
                           std::to_string(bounds.high) + (radix == 10 ? "" : " (decimal)"));
    }

    const Label_File& file;
    const std::vector<Piece> segments;
};

std::size_t characters(const std::string& text, std::size_t begin, std::size_t end) {
    return static_cast<std::size_t>(
        std::count_if(text.begin() + static_cast<std::ptrdiff_t>(std::min(begin, text.size())),
                      text.begin() + static_cast<std::ptrdiff_t>(std::min(end, text.size())),
                      [](char letter) { return (static_cast<unsigned char>(letter) & 0xC0) != 0x80; }));
}

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

std::string ignoredTail(const Label_File& file, const std::string& text) {
    Walk walk(file, text);
    if (text.empty() || walk.run()) return "";
    std::size_t at = 0;
    for (std::size_t i = 0; i < walk.used && at != std::string::npos; ++i)
        at = text.find('.', i == 0 ? 0 : at + 1);
    return at == std::string::npos ? "" : text.substr(at);
}

std::string markLine(const std::string& text, std::size_t at, std::size_t length) {
    return std::string(characters(text, 0, at), ' ') +
           std::string(std::max<std::size_t>(characters(text, at, at + length), 1), '^');
}

}  // namespace vornex
