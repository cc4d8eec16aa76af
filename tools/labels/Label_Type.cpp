// Types, bounds and views as the label file writes them.
#include <algorithm>
#include <limits>

#include "labels/Label_File.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex {
namespace {

Index_Bounds parseBounds(const std::string& text) {
    const std::size_t dots = text.find("..");
    if (dots == std::string::npos) throw std::invalid_argument("index bounds '" + text + "' are not LOW..HIGH");
    const auto bound = [](const std::string& number) {
        // the driver is told one past the highest index
        constexpr int Most = std::numeric_limits<int>::max() - 1;
        return wholeNumber<int>(number, std::numeric_limits<int>::min(), Most, "index bound");
    };
    const Index_Bounds bounds = {bound(text.substr(0, dots)), bound(text.substr(dots + 2))};
    if (bounds.high < bounds.low) throw std::invalid_argument("index bounds '" + text + "' are upside down");
    return bounds;
}

void parseBase(const std::string& text, Type_Ref& type) {
    if (text.empty()) throw std::invalid_argument("the type is missing");
    if (text.find_first_not_of("0123456789") != std::string::npos) {
        type.code = 12;
        type.structName = text;
        return;
    }
    type.code = wholeNumber(text, 1, 11, "type code (a structure goes by its name)");
}

}  // namespace

Type_Ref parseType(const std::string& text) {
    Type_Ref type;
    const std::size_t open = text.find('[');
    parseBase(text.substr(0, std::min(open, text.find('/'))), type);
    if (open == std::string::npos) {
        if (text.find('/') != std::string::npos) throw std::invalid_argument("a radix needs index bounds before it");
        return type;
    }
    const std::size_t close = text.find(']', open);
    if (close == std::string::npos) throw std::invalid_argument("']' is missing in '" + text + "'");
    for (const std::string& bounds : split(text.substr(open + 1, close - open - 1), ','))
        type.bounds.push_back(parseBounds(bounds));
    const std::string rest = text.substr(close + 1);
    if (rest.empty()) return type;
    if (rest[0] != '/') throw std::invalid_argument("'" + rest + "' after the index bounds is not /RADIX");
    type.radix = wholeNumber(rest.substr(1), 2, 36, "radix");
    return type;
}

std::string formatType(const Type_Ref& type) {
    std::string text = type.code == 12 ? type.structName : std::to_string(type.code);
    const char* before = "[";
    for (const Index_Bounds& bounds : type.bounds) {
        text += before + std::to_string(bounds.low) + ".." + std::to_string(bounds.high);
        before = ",";
    }
    if (!type.bounds.empty()) text += ']';
    if (!type.bounds.empty() && type.radix != 10) text += "/" + std::to_string(type.radix);
    return text;
}

View viewOf(const Label& label) { return label.view == View::Default ? elementType(label.type.code).view : label.view; }

std::uint32_t elementBytes(const Label_File& file, const Type_Ref& type) {
    if (type.code >= 1 && type.code <= 11) return elementType(type.code).bytes;
    const auto found = file.structs.find(type.structName);
    return found == file.structs.end() ? 0 : found->second.size;
}

std::uint64_t elementCount(const Type_Ref& type) {
    std::uint64_t count = 1;
    for (const Index_Bounds& bounds : type.bounds) {
        const std::uint64_t extent = extentOf(bounds);
        // held at the largest number: far beyond every address already
        if (count > std::numeric_limits<std::uint64_t>::max() / extent)
            return std::numeric_limits<std::uint64_t>::max();
        count *= extent;
    }
    return count;
}

}  // namespace vornex
