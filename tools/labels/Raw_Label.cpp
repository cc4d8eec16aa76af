#include "labels/Raw_Label.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "text/Number.h"

namespace vornex {

namespace {

const char StandardType[] = "UINT";
const std::uint64_t AddressSpace = std::uint64_t(1) << 32;

const Label* labelNamed(const Label_File& file, const std::string& name) {
    const auto isIt = [&name](const Label& label) { return label.name == name; };
    const auto found = std::find_if(file.labels.begin(), file.labels.end(), isIt);
    return found == file.labels.end() ? nullptr : &*found;
}

Label rawLabel(const std::string& text) {
    const std::size_t colon = text.find(':');
    Label label;
    label.at =
        wholeNumber<std::uint32_t>(text.substr(1, colon - 1), 0, std::numeric_limits<std::uint32_t>::max(), "address");
    label.type = parseType(colon == std::string::npos ? StandardType : text.substr(colon + 1));
    if (!label.type.structName.empty()) {
        throw std::invalid_argument("'" + label.type.structName +
                                    "' is no elementary type: INT, REAL*8, STRING(20), ...");
    }
    label.name = "@" + std::to_string(label.at) + ":" + elementName(label.type);
    const std::uint64_t bytes = elementCount(label.type) * elementBytes(Label_File(), label.type);
    if (label.at + bytes > AddressSpace) throw std::invalid_argument("it ends behind the last address, 0xFFFFFFFF");
    return label;
}

}  // namespace

std::string takeRawLabel(Label_File& file, const std::string& text) {
    if (text.empty() || text[0] != '@') return text;
    const Label* const own = labelNamed(file, text);
    if (own && own->line > 0) return text;  // one that was made up has no line
    Label label;
    try {
        label = rawLabel(text);
    } catch (const std::invalid_argument& mistake) {
        throw std::invalid_argument("'" + text + "': " + mistake.what());
    }
    const Label* const known = labelNamed(file, label.name);
    if (known && formatType(known->type) != formatType(label.type)) {
        throw std::invalid_argument("'" + text + "': '" + label.name + "' is of another length already");
    }
    if (!known) file.labels.push_back(label);
    return label.name;
}

}  // namespace vornex
