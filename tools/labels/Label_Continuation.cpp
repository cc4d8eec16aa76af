#include "labels/Label_Continuation.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace vornex {

namespace {

const std::size_t MostOffered = 1000;
const std::int64_t MostIndexes = 1000000;

bool begins(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

class Step {
public:
    explicit Step(const Label_File& labelFile) : file(labelFile) {}

    // `settled` is the text so far, `rest` what was typed behind it.
    void name(const std::vector<Label>& labels, const std::string& settled, const std::string& rest) {
        const std::size_t end = rest.find_first_of(".[");
        for (const Label& label : labels) {
            if (end == std::string::npos) {
                const char* const next = label.type.bounds.empty() ? memberDot(label.type) : "[";
                if (begins(label.name, rest)) texts.push_back(settled + label.name + next);
            } else if (rest.compare(0, end, label.name) == 0) {
                return behindName(label.type, settled + label.name, rest.substr(end));
            }
        }
    }

    std::vector<std::string> texts;

private:
    static const char* memberDot(const Type_Ref& type) { return type.code == 12 ? "." : ""; }

    void behindName(const Type_Ref& type, const std::string& settled, const std::string& rest) {
        const std::size_t close = rest.find(']');
        if (rest[0] == '[' && close == std::string::npos) return index(type, settled, rest);
        const std::size_t group = rest[0] == '[' ? close + 1 : 0;
        const std::string path = settled + rest.substr(0, group);
        if (group == rest.size())
            texts.push_back(path + memberDot(type));
        else if (rest[group] == '.' && type.code == 12)
            name(file.structs.at(type.structName).members, path + ".", rest.substr(group + 1));
    }

    // The number of the dimension that the text has come to, "[1,2": the second one's.
    void index(const Type_Ref& type, const std::string& settled, const std::string& rest) {
        const auto dimension = static_cast<std::size_t>(std::count(rest.begin(), rest.end(), ','));
        if (dimension >= type.bounds.size()) return;
        const Index_Bounds& bounds = type.bounds[dimension];
        if (std::int64_t(bounds.high) - bounds.low >= MostIndexes) return;
        const std::size_t begin = rest.find_last_of("[,") + 1;
        const bool isLast = dimension + 1 == type.bounds.size();
        for (int number = bounds.low;; ++number) {
            char text[40];
            const std::string digits(text, std::to_chars(text, text + sizeof text, number, type.radix).ptr);
            if (begins(digits, rest.substr(begin))) {
                std::string whole = settled;
                whole.append(rest, 0, begin).append(digits).append(isLast ? "]" : ",");
                if (isLast) whole += memberDot(type);
                texts.push_back(std::move(whole));
            }
            if (number == bounds.high) return;
        }
    }

    const Label_File& file;
};

// The longest beginnings of more than MostOffered texts that are no more than MostOffered.
std::vector<std::string> cut(std::vector<std::string> texts) {
    std::sort(texts.begin(), texts.end());
    std::vector<std::size_t> common;  // letters that neighbours share
    for (std::size_t i = 1; i < texts.size(); ++i) {
        const auto end = std::mismatch(texts[i].begin(), texts[i].end(), texts[i - 1].begin(), texts[i - 1].end());
        common.push_back(static_cast<std::size_t>(end.first - texts[i].begin()));
    }
    std::nth_element(common.begin(), common.begin() + (MostOffered - 1), common.end());
    for (std::string& text : texts)
        text.resize(std::min(text.size(), common[MostOffered - 1]));
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
    return texts;
}

}  // namespace

Label_Continuation continueLabel(const Label_File& file, const std::string& beginning) {
    Step step(file);
    step.name(file.labels, "", beginning);
    Label_Continuation result;
    const bool isMany = step.texts.size() > MostOffered;
    result.texts = isMany ? cut(std::move(step.texts)) : std::move(step.texts);
    result.isWhole = !isMany && std::any_of(result.texts.begin(), result.texts.end(), [](const std::string& text) {
        return std::string(".[,").find(text.back()) == std::string::npos;
    });
    return result;
}

}  // namespace vornex
