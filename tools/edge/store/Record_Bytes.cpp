#include "edge/store/Record_Bytes.h"

#include <zlib.h>

namespace vornex::edge {

namespace {

std::string fourBytes(std::uint32_t number) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(number >> shift & 0xFF);
    return bytes;
}

std::uint32_t numberAt(std::string_view text, std::size_t at) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number |= std::uint32_t(static_cast<unsigned char>(text[at + i])) << 8 * i;
    return number;
}

}  // namespace

std::uint32_t checksumOf(std::string_view bytes) {
    return static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
}

// The length is in the checksum: a row of zero bytes is no record.
std::string sealedRecord(std::string_view bytes) {
    const std::string length = fourBytes(static_cast<std::uint32_t>(bytes.size()));
    const std::string sealed = length + std::string(bytes);
    return length + fourBytes(checksumOf(sealed)) + std::string(bytes);
}

std::optional<std::string_view> firstRecord(std::string_view text) {
    if (text.size() < RecordHead) return std::nullopt;
    const std::size_t length = numberAt(text, 0);
    if (length > text.size() - RecordHead) return std::nullopt;
    const std::string_view bytes = text.substr(RecordHead, length);
    if (checksumOf(std::string(text.substr(0, 4)) + std::string(bytes)) != numberAt(text, 4)) return std::nullopt;
    return bytes;
}

}  // namespace vornex::edge
