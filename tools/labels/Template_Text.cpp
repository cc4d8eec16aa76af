#include "labels/Template_Text.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "text/Number.h"
#include "text/Text.h"

namespace vornex {

namespace {

const char Mark[] = "%%";

// A piece of an index group: a number, or a sum of two when it has the mark. Nothing: the driver leaves it out.
std::optional<std::int64_t> indexOf(std::string piece, int number, int radix) {
    if (piece.find(Mark) == std::string::npos) return indexNumber(piece, radix);
    for (std::size_t at = 0; (at = piece.find(Mark, at)) != std::string::npos;)
        piece.replace(at, 2, indexText(number, radix));
    if (piece.find('+') == std::string::npos) return indexNumber(piece, radix);
    const std::vector<std::string> terms = splitTrimmed(piece, '+');
    if (terms.size() != 2) return std::nullopt;
    const auto first = indexNumber(terms[0], radix), second = indexNumber(terms[1], radix);
    return first && second ? std::optional<std::int64_t>(*first + *second) : std::nullopt;
}

std::optional<std::string> filled(const Type_Ref& type, const std::string& segment, int number) {
    const std::size_t open = segment.find('['), close = segment.rfind(']');
    if (open == std::string::npos || close == std::string::npos || close < open) return std::nullopt;
    std::vector<std::int64_t> indexes;
    for (const std::string& piece : splitTrimmed(segment.substr(open + 1, close - open - 1), ',')) {
        if (const auto index = indexOf(piece, number, type.radix)) indexes.push_back(*index);
    }
    std::string text = segment.substr(0, open);
    for (std::size_t d = 0; d < type.bounds.size(); ++d) {
        const std::int64_t index = d < indexes.size() ? indexes[d] : type.bounds[d].low;
        text += (d == 0 ? "[" : ",") + indexText(index, type.radix);
    }
    return text + "]";
}

const Label* named(const std::vector<Label>& labels, const std::string& segment) {
    const std::string name = segment.substr(0, segment.find('['));
    const auto found =
        std::find_if(labels.begin(), labels.end(), [&](const Label& label) { return label.name == name; });
    return found == labels.end() ? nullptr : &*found;
}

}  // namespace

bool isTemplate(const std::string& text) { return text.find(Mark) != std::string::npos; }

std::optional<std::string> templateText(const Label_File& file, const std::string& text, int number) {
    const std::vector<Label>* labels = &file.labels;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find('.', at), text.size());
        const std::string segment = text.substr(at, end - at);
        const Label* const label = named(*labels, segment);
        if (!label) return std::nullopt;
        if (!label->type.bounds.empty()) {
            const std::optional<std::string> whole = filled(label->type, segment, number);
            if (!whole) return std::nullopt;
            return text.substr(0, at) + *whole + text.substr(end);
        }
        if (label->type.structName.empty()) return std::nullopt;
        labels = &file.structs.at(label->type.structName).members;
        at = end + 1;
    }
    return std::nullopt;
}

}  // namespace vornex
