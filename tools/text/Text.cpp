#include "text/Text.h"

#include <algorithm>

#include <clocale>
#include <cstdint>
#include <cwchar>
#include <functional>

#include "text/Hex.h"

namespace vornex {
namespace {

unsigned char byteAt(const std::string& text, std::size_t at) { return static_cast<unsigned char>(text[at]); }

std::uint32_t utf8Code(const std::string& text, std::size_t at, std::size_t length) {
    if (length == 1) return byteAt(text, at);
    std::uint32_t code = byteAt(text, at) & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i)
        code = code << 6 | (byteAt(text, at + i) & 0x3Fu);
    return code;
}

// The C library knows the width of every character, but only in a locale of UTF-8, which the user's need not be.
std::size_t widthOf(std::uint32_t code) {
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (!utf8) return 1;
    const locale_t before = uselocale(utf8);
    const int width = wcwidth(static_cast<wchar_t>(code));
    uselocale(before);
    return width < 0 ? 1 : static_cast<std::size_t>(width);
}

}  // namespace

std::string trimmed(const std::string& text) {
    const char* const Blanks = " \t\r";
    const std::size_t begin = text.find_first_not_of(Blanks);
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(Blanks) - begin + 1);
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = text.find(separator, begin);
        pieces.push_back(text.substr(begin, end - begin));
        if (end == std::string::npos) return pieces;
        begin = end + 1;
    }
}

std::vector<std::string> splitTrimmed(const std::string& text, char separator) {
    std::vector<std::string> pieces = split(text, separator);
    for (std::string& piece : pieces)
        piece = trimmed(piece);
    return pieces;
}

std::string counted(std::size_t number, const std::string& noun) {
    return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

std::string joined(const std::vector<std::string>& pieces, const char* between) {
    std::string text;
    for (const std::string& piece : pieces)
        text += (&piece == &pieces.front() ? "" : between) + piece;
    return text;
}

bool endsIn(const std::string& text, const std::string& ending) {
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

std::string lowered(std::string text) {
    for (char& letter : text)
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    return text;
}

std::size_t utf8Length(const std::string& text, std::size_t at) {
    constexpr std::uint32_t Least[] = {0, 0, 0x80, 0x800, 0x10000};
    const unsigned char lead = byteAt(text, at);
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || at + length > text.size()) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(text, at + i) & 0xC0) != 0x80) return 0;
    }
    const std::uint32_t code = utf8Code(text, at, length);
    const bool isSurrogate = code >> 11 == 0x1B;
    return code < Least[length] || code > 0x10FFFF || isSurrogate ? 0 : length;
}

bool isUtf8(const std::string& text) {
    std::size_t length = 0;
    for (std::size_t at = 0; at < text.size(); at += length) {
        length = utf8Length(text, at);
        if (length == 0) return false;
    }
    return true;
}

std::size_t harmlessLength(const std::string& text, std::size_t at) {
    const std::size_t length = utf8Length(text, at);
    const std::uint32_t code = length == 0 ? 0 : utf8Code(text, at, length);
    return code < 0x20 || (code >= 0x7F && code < 0xA0) ? 0 : length;
}

namespace {

std::string harmlessBut(const std::string& text, const std::function<bool(std::size_t at)>& stays) {
    std::string shown;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = stays(at) ? 1 : harmlessLength(text, at);
        if (length == 0) shown += "\\x" + hexDigits(byteAt(text, at), 2);
        shown.append(text, at, length);
        at += std::max<std::size_t>(length, 1);
    }
    return shown;
}

}  // namespace

bool hasControl(const std::string& text) {
    for (std::size_t at = 0; at < text.size(); at += std::max<std::size_t>(utf8Length(text, at), 1)) {
        if (utf8Length(text, at) != 0 && harmlessLength(text, at) == 0) return true;
    }
    return false;
}

std::string harmless(const std::string& text) {
    return harmlessBut(text, [](std::size_t) { return false; });
}

std::string harmlessLines(const std::string& text) {
    return harmlessBut(text, [&text](std::size_t at) {
        return text[at] == '\t' || (text[at] == '\n' && text.compare(at + 1, 1, " ") == 0);
    });
}

std::string quoted(const std::string& word) {
    constexpr std::size_t Most = 60;
    return "'" + cutTo(word, Most) + "'";
}

std::size_t displayWidth(const std::string& text) {
    char all = 0;
    for (const char letter : text)
        all = static_cast<char>(all | letter);
    if ((all & 0x80) == 0) return text.size();
    std::size_t columns = 0;
    for (std::size_t at = 0, length = 1; at < text.size(); at += length) {
        length = utf8Length(text, at);
        columns += length < 2 ? 1 : widthOf(utf8Code(text, at, length));
        if (length == 0) length = 1;
    }
    return columns;
}

std::string padded(const std::string& text, std::size_t columns, Align align) {
    const std::size_t taken = displayWidth(text);
    std::string line = text;
    if (taken < columns) line.insert(align == Align::Right ? 0 : text.size(), columns - taken, ' ');
    return line;
}

std::string cutTo(const std::string& text, std::size_t columns) {
    if (displayWidth(text) <= columns) return text;
    std::string cut;
    for (std::size_t at = 0, taken = 1; at < text.size();) {  // 1: the ellipsis
        const std::size_t length = std::max<std::size_t>(utf8Length(text, at), 1);
        taken += displayWidth(text.substr(at, length));
        if (taken > columns) break;
        cut += text.substr(at, length);
        at += length;
    }
    return columns == 0 ? "" : cut + "\u2026";
}

}  // namespace vornex
