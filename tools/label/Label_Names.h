// Which labels lie at an address: names for traces and messages.
#ifndef VORNEX_LABEL_LABEL_NAMES_H
#define VORNEX_LABEL_LABEL_NAMES_H

#include <string>
#include <vector>

#include "../common/Label_File.h"

namespace vornex {

class Label_Names {
public:
    explicit Label_Names(const Label_File& file);

    // "Speed", "Motors[1].Id .. Motors[4].Temp (12 labels)", or "no label".
    std::string of(std::uint32_t address, std::uint32_t length) const;

private:
    struct Entry {
        std::uint32_t address;
        std::uint32_t bytes;
        std::string text;
    };
    std::vector<Entry> entries;  // by address
};

}  // namespace vornex

#endif
