// Addresses as the symbol tables of other programs write them.
#ifndef VORNEX_IMPORT_IMPORT_ADDRESS_H
#define VORNEX_IMPORT_IMPORT_ADDRESS_H

#include <cstdint>
#include <optional>
#include <string>

namespace vornex {

// What the numbers of a symbol table count. %MB counts bytes in any table.
enum class Address_Count { Bytes, Words };

struct Import_Address {
    std::uint32_t byte = 0;
    std::optional<unsigned> bit;  // 0 to 7, of that byte
};

// Takes 100, 0x64, 16#64, MW100, %MD100, 100.3, %MX10.3, with a decimal comma too, and adds `base`. In words a bit is 0
// to 15. Throws std::invalid_argument with the reason, also for inputs and outputs, which lie elsewhere.
Import_Address parseImportAddress(const std::string& text, Address_Count count, std::uint32_t base);

}  // namespace vornex

#endif
