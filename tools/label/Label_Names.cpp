#include "Label_Names.h"

#include <algorithm>

namespace vornex {

Label_Names::Label_Names(const Label_File& file) {
    forEachLeaf(file, [this](const Leaf& leaf) {
        entries.push_back({leaf.address, leaf.bytes, leaf.text});
        return true;
    });
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.address < b.address; });
}

std::string Label_Names::of(std::uint32_t address, std::uint32_t length) const {
    const std::uint64_t end = std::uint64_t(address) + length;
    const std::uint32_t longestElement = 255;
    const std::uint32_t from = address < longestElement ? 0 : address - longestElement;
    auto entry = std::lower_bound(entries.begin(), entries.end(), from,
                                  [](const Entry& a, std::uint32_t b) { return a.address < b; });
    const Entry* first = nullptr;
    const Entry* last = nullptr;
    std::size_t count = 0;
    for (; entry != entries.end() && entry->address < end; ++entry) {
        if (std::uint64_t(entry->address) + entry->bytes <= address) continue;
        if (!first) first = &*entry;
        last = &*entry;
        ++count;
    }
    if (!first) return "no label";
    if (count == 1) return first->text;
    if (count == 2) return first->text + ", " + last->text;
    return first->text + " .. " + last->text + " (" + std::to_string(count) + " labels)";
}

}  // namespace vornex
