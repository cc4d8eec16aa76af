// The walk over every elementary element.
#include <algorithm>

#include "Label_File.h"

namespace vornex {
namespace {

std::string formatIndex(int index, int radix) {
    const bool negative = index < 0;
    std::int64_t rest = negative ? -std::int64_t(index) : index;
    std::string digits;
    do {
        digits += "0123456789abcdefghijklmnopqrstuvwxyz"[rest % radix];
        rest /= radix;
    } while (rest);
    if (negative) digits += '-';
    std::reverse(digits.begin(), digits.end());
    return digits;
}

View resolveView(const Label& label) {
    if (label.view != View::Default) return label.view;
    constexpr View Views[] = {View::U8,  View::U8,  View::U16, View::U16,  View::U32, View::U32,
                              View::U32, View::U64, View::U64, View::Text, View::Text};
    return Views[label.type.code - 1];
}

// Steps the indexes to the next element, the last one fastest. False after the last element.
bool nextElement(const Type_Ref& type, std::vector<int>& indexes) {
    for (std::size_t d = indexes.size(); d-- > 0;) {
        if (indexes[d] < type.bounds[d].high) {
            ++indexes[d];
            return true;
        }
        indexes[d] = type.bounds[d].low;
    }
    return false;
}

std::string indexGroup(const Type_Ref& type, const std::vector<int>& indexes) {
    std::string text;
    for (const int index : indexes) {
        text += text.empty() ? '[' : ',';
        text += formatIndex(index, type.radix);
    }
    return text.empty() ? text : text + "]";
}

class Leaf_Walk {
public:
    Leaf_Walk(const Label_File& labelFile, const std::function<bool(const Leaf&)>& visitor,
              const Leaf_Filter& leafFilter)
        : file(labelFile), visit(visitor), filter(leafFilter) {}

    // False when the visitor had enough.
    bool walk(const Label& label, const std::string& prefix, std::uint32_t base) {
        if (!holdsWanted(label) || !mayLeadOn(prefix + label.name)) return true;
        const std::uint32_t step = elementBytes(file, label.type);
        std::uint32_t address = base + label.at;
        std::vector<int> indexes;
        for (const Index_Bounds& bounds : label.type.bounds)
            indexes.push_back(bounds.low);
        do {
            if (!element(label, prefix + label.name + indexGroup(label.type, indexes), address, step)) return false;
            address += step;
        } while (nextElement(label.type, indexes));
        return true;
    }

private:
    // Without this a large array of a structure that holds nothing would be walked in vain, for minutes.
    bool holdsWanted(const Label& label) {
        if (label.type.code != 12) return !filter.definition || filter.definition(label);
        const auto found = file.structs.find(label.type.structName);
        if (found == file.structs.end()) return false;
        const auto known = wantedIn.find(label.type.structName);
        if (known != wantedIn.end()) return known->second;
        const std::vector<Label>& members = found->second.members;
        const bool some =
            std::any_of(members.begin(), members.end(), [this](const Label& member) { return holdsWanted(member); });
        return wantedIn[label.type.structName] = some;
    }

    bool mayLeadOn(const std::string& path) const { return !filter.path || filter.path(path); }

    bool element(const Label& label, const std::string& text, std::uint32_t address, std::uint32_t bytes) {
        if (label.type.code != 12) {
            return visit({text, &label, address, label.type.code, bytes, resolveView(label)});
        }
        const auto found = file.structs.find(label.type.structName);
        if (found == file.structs.end() || !mayLeadOn(text)) return true;
        for (const Label& member : found->second.members) {
            if (!walk(member, text + ".", address)) return false;
        }
        return true;
    }

    const Label_File& file;
    const std::function<bool(const Leaf&)>& visit;
    const Leaf_Filter& filter;
    std::map<std::string, bool> wantedIn;  // structures looked into so far
};

}  // namespace

void forEachLeaf(const Label_File& file, const std::function<bool(const Leaf&)>& visit, const Leaf_Filter& filter) {
    Leaf_Walk walk(file, visit, filter);
    for (const Label& label : file.labels) {
        if (!walk.walk(label, "", 0)) return;
    }
}

bool leadsOnFrom(const std::string& path, const std::string& text) {
    if (text.compare(0, path.size(), path) != 0) return false;
    return text.size() == path.size() || text[path.size()] == '.' || text[path.size()] == '[';
}

std::optional<Leaf> findLeaf(const Label_File& file, const std::string& text) {
    Leaf_Filter filter;
    filter.path = [&text](const std::string& path) { return leadsOnFrom(path, text); };
    std::optional<Leaf> found;
    const auto take = [&](const Leaf& leaf) {
        if (leaf.text == text) found = leaf;
        return !found;
    };
    forEachLeaf(file, take, filter);
    return found;
}

void checkHeld(const Label_File& file, std::size_t held) {
    if (held > MostElementsHeld) throw File_Error(file.path + ": more than a million elements at once");
}

}  // namespace vornex
