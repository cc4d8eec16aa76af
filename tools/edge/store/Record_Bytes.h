// A record as it lies in a segment: its length and the checksum of length and bytes, four bytes each, then the bytes.
#ifndef VORNEX_EDGE_STORE_RECORD_BYTES_H
#define VORNEX_EDGE_STORE_RECORD_BYTES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vornex::edge {

constexpr std::size_t RecordHead = 4 + 4;  // length, checksum

std::string sealedRecord(std::string_view bytes);
// The record that begins the text; nothing when it is not whole or its checksum is another.
std::optional<std::string_view> firstRecord(std::string_view text);
std::optional<std::string_view> firstRecord(std::string&&) = delete;  // what it finds lies in the text
// CRC-32, as in gzip.
std::uint32_t checksumOf(std::string_view bytes);

}  // namespace vornex::edge

#endif
