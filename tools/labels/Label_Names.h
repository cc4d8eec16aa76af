// Which labels lie at an address: names for traces, messages and the dissector.
#ifndef VORNEX_LABELS_LABEL_NAMES_H
#define VORNEX_LABELS_LABEL_NAMES_H

#include <memory>
#include <string>
#include <vector>

#include "labels/Label_File.h"

namespace vornex {

class Label_Names {
public:
    // An elementary element.
    struct Entry {
        std::uint32_t address = 0;
        std::uint32_t bytes = 0;
        View view = View::Default;  // never Default
        std::string text;
        std::shared_ptr<const Meaning> meaning;
    };

    Label_Names() = default;
    // Of a file with more than a million elements no names are kept: they would take the machine's memory.
    explicit Label_Names(const Label_File& file);
    bool tooMany() const { return tooManyElements; }

    // By address; those at one address in the order of the file.
    const std::vector<Entry>& all() const { return entries; }

    // "Speed", "Motors[1].Id .. Motors[4].Temp (12 labels)", or "no label"; "bytes 16 to 19" when no names are kept.
    std::string of(std::uint32_t address, std::uint32_t length) const;

    // The elements that share a byte with the run, by address.
    std::vector<const Entry*> within(std::uint32_t address, std::uint32_t length) const;

private:
    std::vector<Entry> entries;
    bool tooManyElements = false;
};

}  // namespace vornex

#endif
