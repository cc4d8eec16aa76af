// The walk over every elementary element.
#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <unordered_map>

#include "labels/Label_File.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex {
namespace {

std::string firstName(const std::string& text) { return text.substr(0, text.find_first_of(".[")); }

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
        text += indexText(index, type.radix);
    }
    return text.empty() ? text : text + "]";
}

// Row-major, from 0; a text that is not how the group is written names none.
std::optional<std::uint64_t> elementNumber(const Type_Ref& type, const std::string& group) {
    if (group.empty() || group.back() != ']') return std::nullopt;
    const std::vector<std::string> texts = split(group.substr(1, group.size() - 2), ',');
    if (texts.size() != type.bounds.size()) return std::nullopt;
    std::vector<int> indexes;
    std::uint64_t number = 0;
    for (std::size_t d = 0; d < texts.size(); ++d) {
        const Index_Bounds& bounds = type.bounds[d];
        const std::optional<std::int64_t> index = indexNumber(texts[d], type.radix);
        if (!index || *index < bounds.low || *index > bounds.high) return std::nullopt;
        indexes.push_back(static_cast<int>(*index));
        number = number * extentOf(bounds) + static_cast<std::uint64_t>(*index - bounds.low);
    }
    if (indexGroup(type, indexes) != group) return std::nullopt;
    return number;
}

std::vector<int> indexesOf(const Type_Ref& type, std::uint64_t number) {
    std::vector<int> indexes(type.bounds.size());
    for (std::size_t d = indexes.size(); d-- > 0;) {
        const Index_Bounds& bounds = type.bounds[d];
        const std::uint64_t extent = extentOf(bounds);
        indexes[d] = static_cast<int>(bounds.low + static_cast<std::int64_t>(number % extent));
        number /= extent;
    }
    return indexes;
}

using Wanted_Texts = std::vector<const Wanted_Text*>;

// Whether the walk below this path comes to something that is wanted.
bool mayLeadTo(const Wanted_Text& wanted, const std::string& path) {
    if (wanted.isBeginning) return path.compare(0, wanted.text.size(), wanted.text, 0, path.size()) == 0;
    return leadsOnFrom(path, wanted.text) || leadsOnFrom(wanted.text, path);
}

Wanted_Texts thoseLeadingTo(const Wanted_Texts& texts, const std::string& path) {
    Wanted_Texts leading;
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(leading),
                 [&path](const Wanted_Text* text) { return mayLeadTo(*text, path); });
    return leading;
}

class Leaf_Walk {
public:
    Leaf_Walk(const Label_File& labelFile, const std::function<bool(const Leaf&)>& visitor,
              const Leaf_Filter& leafFilter)
        : file(labelFile), visit(visitor), filter(leafFilter) {
        for (const Wanted_Text& wanted : filter.texts)
            (wanted.isBeginning ? beginnings : byFirstName[firstName(wanted.text)]).push_back(&wanted);
    }

    // False when the visitor had enough.
    bool walk(const Label& label) {
        Wanted_Texts texts = beginnings;
        const auto named = byFirstName.empty() ? byFirstName.end() : byFirstName.find(firstName(label.name));
        if (named != byFirstName.end()) texts.insert(texts.end(), named->second.begin(), named->second.end());
        return walk(label, "", 0, texts);
    }

private:
    // However many texts are wanted, each step looks only at those that led to it.
    bool walk(const Label& label, const std::string& prefix, std::uint32_t base, const Wanted_Texts& before) {
        const std::string path = prefix + label.name;
        const Wanted_Texts texts = thoseLeadingTo(before, path);
        if (isUnwanted(texts) || !holdsWanted(label)) return true;
        const std::uint32_t start = base + label.at;
        std::map<std::uint64_t, Wanted_Texts> chosen;
        if (!chooseElements(label.type, path, texts, chosen))
            return elements(label, path, start, 0, std::numeric_limits<std::uint64_t>::max(), texts);
        if (label.type.code != 12) {
            const std::uint64_t reach = LongestValue / std::max(1u, elementBytes(file, label.type));
            return chosen.empty() ||
                   elements(label, path, start, chosen.begin()->first, std::prev(chosen.end())->first + reach, texts);
        }
        return std::all_of(chosen.begin(), chosen.end(), [&](const auto& one) {
            return elements(label, path, start, one.first, one.first, one.second);
        });
    }

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

    bool isUnwanted(const Wanted_Texts& texts) const { return texts.empty() && !filter.texts.empty(); }

    // The elements of the array at this path that the texts name, each with its texts. False when it is no array, or
    // one of the texts wants the whole of it.
    static bool chooseElements(const Type_Ref& type, const std::string& path, const Wanted_Texts& texts,
                               std::map<std::uint64_t, Wanted_Texts>& chosen) {
        if (texts.empty() || type.bounds.empty()) return false;
        for (const Wanted_Text* wanted : texts) {
            const std::string rest = wanted->text.substr(std::min(path.size(), wanted->text.size()));
            const std::size_t end = rest.find(']');
            if (rest.empty() || rest[0] != '[' || (wanted->isBeginning && end == std::string::npos)) return false;
            if (const auto number = elementNumber(type, rest.substr(0, end + 1))) chosen[*number].push_back(wanted);
        }
        return true;
    }

    // The elements from the one number to the other, as far as there are any.
    bool elements(const Label& label, const std::string& path, std::uint32_t start, std::uint64_t first,
                  std::uint64_t last, const Wanted_Texts& texts) {
        const std::uint32_t step = elementBytes(file, label.type);
        std::vector<int> indexes = indexesOf(label.type, first);
        std::uint64_t number = first;
        do {
            const auto address = static_cast<std::uint32_t>(start + number * step);
            if (!element(label, path + indexGroup(label.type, indexes), address, step, texts)) return false;
        } while (number++ < last && nextElement(label.type, indexes));
        return true;
    }

    bool element(const Label& label, const std::string& text, std::uint32_t address, std::uint32_t bytes,
                 const Wanted_Texts& before) {
        if (label.type.code != 12) {
            return visit({text, &label, address, label.type.code, bytes, viewOf(label)});
        }
        const auto found = file.structs.find(label.type.structName);
        const Wanted_Texts texts = thoseLeadingTo(before, text);
        if (found == file.structs.end() || isUnwanted(texts)) return true;
        for (const Label& member : found->second.members) {
            if (!walk(member, text + ".", address, texts)) return false;
        }
        return true;
    }

    const Label_File& file;
    const std::function<bool(const Leaf&)>& visit;
    const Leaf_Filter& filter;
    std::unordered_map<std::string, Wanted_Texts> byFirstName;  // without the beginnings
    Wanted_Texts beginnings;
    std::map<std::string, bool> wantedIn;  // structures looked into so far
};

}  // namespace

void forEachLeaf(const Label_File& file, const std::function<bool(const Leaf&)>& visit, const Leaf_Filter& filter) {
    Leaf_Walk walk(file, visit, filter);
    if (filter.index && filter.texts.size() == 1 && !filter.texts.front().isBeginning) {
        for (std::size_t at : filter.index->of(filter.texts.front().text)) {
            if (!walk.walk(file.labels[at])) return;
        }
        return;
    }
    for (const Label& label : file.labels) {
        if (!walk.walk(label)) return;
    }
}

Label_Index::Label_Index(const Label_File& file) {
    byFirstName.reserve(file.labels.size());
    for (std::size_t at = 0; at < file.labels.size(); ++at)
        byFirstName[firstName(file.labels[at].name)].push_back(at);
}

const std::vector<std::size_t>& Label_Index::of(const std::string& text) const {
    static const std::vector<std::size_t> none;
    const auto found = byFirstName.find(firstName(text));
    return found == byFirstName.end() ? none : found->second;
}

std::uint64_t elementsIn(const Label_File& file) {
    std::map<std::string, std::uint64_t> ofStruct;
    const std::function<std::uint64_t(const std::vector<Label>&)> sum = [&](const std::vector<Label>& labels) {
        std::uint64_t elements = 0;
        for (const Label& label : labels) {
            const std::string& name = label.type.structName;
            if (!name.empty() && !ofStruct.count(name)) ofStruct[name] = sum(file.structs.at(name).members);
            elements += elementCount(label.type) * (name.empty() ? 1 : ofStruct[name]);
        }
        return elements;
    };
    return sum(file.labels);
}

std::uint32_t elementBytes(const Label_File& file, const Type_Ref& type) {
    if (type.textBytes > 0) return type.textBytes;
    if (type.code >= 1 && type.code <= 11) return elementType(type.code).bytes;
    const auto found = file.structs.find(type.structName);
    return found == file.structs.end() ? 0 : found->second.size;
}

View viewOf(const Label& label) {
    if (label.view != View::Default) return label.view;
    return label.type.name ? label.type.name->view : elementType(label.type.code).view;
}

std::string driverLabel(const Leaf& leaf) {
    const Type_Ref& type = leaf.definition->type;
    if (type.textBytes == 0 || type.bounds.empty()) return leaf.text;
    return leaf.text.substr(0, leaf.text.size() - 1) + ",0]";
}

bool leadsOnFrom(const std::string& path, const std::string& text) {
    if (text.compare(0, path.size(), path) != 0) return false;
    return text.size() == path.size() || text[path.size()] == '.' || text[path.size()] == '[';
}

std::optional<Leaf> findLeaf(const Label_File& file, const std::string& text) {
    Leaf_Filter filter;
    filter.texts = {{text, false}};
    std::optional<Leaf> found;
    const auto take = [&](const Leaf& leaf) {
        if (leaf.text == text) found = leaf;
        return !found;
    };
    forEachLeaf(file, take, filter);
    return found;
}

std::string driverSpelling(const Label_File& file, const std::string& text) {
    const std::optional<Leaf> leaf = findLeaf(file, text);
    return leaf ? driverLabel(*leaf) : text;
}

void refuseSoMany(const Label_File& file) { throw File_Error(file.path + ": more than a million elements"); }

}  // namespace vornex
