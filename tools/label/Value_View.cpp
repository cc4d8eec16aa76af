#include "Value_View.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace vornex {

namespace {

std::uint64_t littleEndian(const std::string& bytes) {
    std::uint64_t number = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    return number;
}

std::int64_t signExtended(std::uint64_t number, std::size_t bytes) {
    const unsigned spare = static_cast<unsigned>(64 - 8 * bytes);
    return static_cast<std::int64_t>(number << spare) >> spare;
}

Value floatValue(const std::string& bytes) {
    const std::uint64_t bits = littleEndian(bytes);
    if (bytes.size() == 4) {
        const std::uint32_t half = static_cast<std::uint32_t>(bits);
        float number;
        std::memcpy(&number, &half, sizeof number);
        return Value::number(shortestNumber(number));
    }
    double number;
    std::memcpy(&number, &bits, sizeof number);
    return Value::number(shortestNumber(number));
}

Value hexValue(const std::string& bytes) {
    if (bytes.empty() || bytes.size() > 8) return hexBytes(bytes);
    char text[24];
    std::snprintf(text, sizeof text, "0x%0*llX", static_cast<int>(2 * bytes.size()),
                  static_cast<unsigned long long>(littleEndian(bytes)));
    return text;
}

// Bytes of the UTF-8 character at `at`, 0 when there is none. Overlong forms and surrogates do not matter for showing.
std::size_t utf8Length(const std::string& bytes, std::size_t at) {
    const unsigned char lead = static_cast<unsigned char>(bytes[at]);
    const std::size_t length = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4 || at + length > bytes.size()) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((static_cast<unsigned char>(bytes[at + i]) & 0xC0) != 0x80) return 0;
    }
    return length;
}

std::string printable(const std::string& bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size() && bytes[i] != '\0';) {
        const unsigned char byte = static_cast<unsigned char>(bytes[i]);
        const std::size_t length = byte < 0x20 || byte == 0x7F ? 0 : utf8Length(bytes, i);
        if (length == 0) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X", byte);
            text += escape;
        }
        text.append(bytes, i, length);
        i += length == 0 ? 1 : length;
    }
    return text;
}

}  // namespace

std::size_t viewBytes(View view) {
    switch (view) {
        case View::U8:
        case View::S8: return 1;
        case View::U16:
        case View::S16: return 2;
        case View::U32:
        case View::S32:
        case View::F32: return 4;
        case View::U64:
        case View::S64:
        case View::F64: return 8;
        default: return 0;
    }
}

View defaultView(int typeCode) {
    if (typeCode <= 2) return View::U8;
    if (typeCode <= 4) return View::U16;
    if (typeCode <= 7) return View::U32;
    return typeCode <= 9 ? View::U64 : View::Text;
}

std::vector<std::string> viewNames() {
    return {"u8", "s8", "u16", "s16", "u32", "s32", "u64", "s64", "f32", "f64", "bool", "hex", "text", "bytes"};
}

Value viewValue(View view, const std::string& bytes) {
    const std::size_t width = viewBytes(view);
    if (width != 0 && bytes.size() != width) return hexBytes(bytes);
    switch (view) {
        case View::U8:
        case View::U16:
        case View::U32:
        case View::U64: return littleEndian(bytes);
        case View::S8:
        case View::S16:
        case View::S32:
        case View::S64: return signExtended(littleEndian(bytes), width);
        case View::F32:
        case View::F64: return floatValue(bytes);
        case View::Bool: return bytes.find_first_not_of('\0') != std::string::npos;
        case View::Text: return printable(bytes);
        case View::Hex: return hexValue(bytes);
        default: return hexBytes(bytes);
    }
}

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string hexBytes(const std::string& bytes) {
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    for (char letter : bytes) {
        const unsigned char byte = static_cast<unsigned char>(letter);
        if (!text.empty()) text += ' ';
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

}  // namespace vornex
