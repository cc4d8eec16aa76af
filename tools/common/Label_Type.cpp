// Types, bounds and views as the label file writes them.
#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <utility>

#include "Label_File.h"

namespace vornex {
namespace {

constexpr std::array<std::uint32_t, 11> ElementBytes = {1, 1, 2, 2, 4, 4, 4, 8, 8, 255, 255};

constexpr std::array<std::pair<View, const char*>, 14> ViewNames = {{{View::U8, "u8"},
                                                                     {View::S8, "s8"},
                                                                     {View::U16, "u16"},
                                                                     {View::S16, "s16"},
                                                                     {View::U32, "u32"},
                                                                     {View::S32, "s32"},
                                                                     {View::U64, "u64"},
                                                                     {View::S64, "s64"},
                                                                     {View::F32, "f32"},
                                                                     {View::F64, "f64"},
                                                                     {View::Bool, "bool"},
                                                                     {View::Hex, "hex"},
                                                                     {View::Text, "text"},
                                                                     {View::Bytes, "bytes"}}};

int parseInt(const std::string& text, const char* what) {
    int value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || text.empty()) {
        throw std::invalid_argument(std::string(what) + " '" + text + "' is not a whole number");
    }
    return value;
}

Index_Bounds parseBounds(const std::string& text) {
    const std::size_t dots = text.find("..");
    if (dots == std::string::npos) throw std::invalid_argument("index bounds '" + text + "' are not LOW..HIGH");
    const Index_Bounds bounds = {parseInt(text.substr(0, dots), "index bound"),
                                 parseInt(text.substr(dots + 2), "index bound")};
    if (bounds.high < bounds.low) throw std::invalid_argument("index bounds '" + text + "' are upside down");
    // the driver is told one past the highest index
    if (bounds.high == std::numeric_limits<int>::max()) {
        throw std::invalid_argument("index bound " + std::to_string(bounds.high) + " is too large");
    }
    return bounds;
}

std::vector<Index_Bounds> parseBoundsList(const std::string& text) {
    std::vector<Index_Bounds> bounds;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t comma = text.find(',', begin);
        bounds.push_back(parseBounds(text.substr(begin, comma - begin)));
        if (comma == std::string::npos) return bounds;
        begin = comma + 1;
    }
}

void parseBase(const std::string& text, Type_Ref& type) {
    if (text.empty()) throw std::invalid_argument("the type is missing");
    if (text.find_first_not_of("0123456789") != std::string::npos) {
        type.code = 12;
        type.structName = text;
        return;
    }
    type.code = parseInt(text, "type code");
    if (type.code < 1 || type.code > 11) {
        throw std::invalid_argument("type code " + text + " is not 1 to 11 (a structure is given by its name)");
    }
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
    type.bounds = parseBoundsList(text.substr(open + 1, close - open - 1));
    const std::string rest = text.substr(close + 1);
    if (rest.empty()) return type;
    if (rest[0] != '/') throw std::invalid_argument("'" + rest + "' after the index bounds is not /RADIX");
    type.radix = parseInt(rest.substr(1), "radix");
    if (type.radix < 2 || type.radix > 36) throw std::invalid_argument("radix " + rest.substr(1) + " is not 2 to 36");
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

std::optional<View> parseView(const std::string& text) {
    for (const auto& entry : ViewNames) {
        if (text == entry.second) return entry.first;
    }
    return std::nullopt;
}

std::string viewName(View view) {
    for (const auto& entry : ViewNames) {
        if (view == entry.first) return entry.second;
    }
    return "default";
}

std::uint32_t elementBytes(const Label_File& file, const Type_Ref& type) {
    if (type.code >= 1 && type.code <= 11) return ElementBytes[static_cast<std::size_t>(type.code - 1)];
    const auto found = file.structs.find(type.structName);
    return found == file.structs.end() ? 0 : found->second.size;
}

std::uint64_t elementCount(const Type_Ref& type) {
    std::uint64_t count = 1;
    for (const Index_Bounds& bounds : type.bounds) {
        const auto extent = static_cast<std::uint64_t>(std::int64_t(bounds.high) - bounds.low + 1);
        // held at the largest number: far beyond every address already
        if (count > std::numeric_limits<std::uint64_t>::max() / extent)
            return std::numeric_limits<std::uint64_t>::max();
        count *= extent;
    }
    return count;
}

}  // namespace vornex
