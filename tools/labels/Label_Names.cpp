#include "labels/Label_Names.h"

#include <algorithm>

namespace vornex {

namespace {
const std::uint32_t LongestElement = 255;  // type codes 10 and 11
}  // namespace

Label_Names::Label_Names(const Label_File& file) {
    forEachLeaf(file, [this](const Leaf& leaf) {
        tooManyElements = entries.size() == MostElementsHeld;
        if (!tooManyElements)
            entries.push_back({leaf.address, leaf.bytes, leaf.view, leaf.text, leaf.definition->meaning});
        return !tooManyElements;
    });
    if (tooManyElements) entries = {};
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.address < b.address; });
}

// The elements that share a byte with the run.
std::vector<const Label_Names::Entry*> Label_Names::within(std::uint32_t address, std::uint32_t length) const {
    const std::uint64_t end = std::uint64_t(address) + length;
    const std::uint32_t from = address < LongestElement ? 0 : address - LongestElement;
    auto entry = std::lower_bound(entries.begin(), entries.end(), from,
                                  [](const Entry& a, std::uint32_t b) { return a.address < b; });
    std::vector<const Entry*> found;
    for (; entry != entries.end() && entry->address < end; ++entry) {
        if (std::uint64_t(entry->address) + entry->bytes > address) found.push_back(&*entry);
    }
    return found;
}

std::string Label_Names::of(std::uint32_t address, std::uint32_t length) const {
    if (tooManyElements) {
        const std::uint32_t last = address + std::max(length, 1u) - 1;
        return "bytes " + std::to_string(address) + " to " + std::to_string(last);
    }
    const std::vector<const Entry*> found = within(address, length);
    if (found.empty()) return "no label";
    if (found.size() == 1) return found[0]->text;
    if (found.size() == 2) return found[0]->text + ", " + found[1]->text;
    return found.front()->text + " .. " + found.back()->text + " (" + std::to_string(found.size()) + " labels)";
}

}  // namespace vornex
