#include "values/Named_Values.h"

#include "values/Shown_Value.h"
#include "values/Value_Codec.h"

namespace vornex {

namespace {
const std::size_t ValuesTold = 6;  // in a line of text
}

std::string namedValues(const Label_Names& names, std::uint32_t address, std::uint32_t length,
                        const std::string& data) {
    const std::vector<const Label_Names::Entry*> found = names.within(address, length);
    std::string text;
    for (std::size_t i = 0; i < found.size() && i < ValuesTold; ++i) {
        const Label_Names::Entry& entry = *found[i];
        const bool whole = entry.address >= address && entry.address - address + entry.bytes <= length;
        text += (text.empty() ? "" : ", ") + entry.text + (whole ? "" : " (in part)");
        if (!whole || data.size() < length) continue;
        text += " = " + typedText(entry.view, shownOf({entry.view, entry.bytes, entry.meaning},
                                                      data.substr(entry.address - address, entry.bytes)));
    }
    return found.size() > ValuesTold ? text + ", ... " + std::to_string(found.size() - ValuesTold) + " more" : text;
}

}  // namespace vornex
