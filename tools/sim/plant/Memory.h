// The controller's memory: all 32-bit addresses, kept where something was written; the rest reads as 0.
#ifndef VORNEX_SIM_PLANT_MEMORY_H
#define VORNEX_SIM_PLANT_MEMORY_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

namespace vornex::sim {

// Bytes that a plant's memory takes at most: stray writes must not eat the machine.
constexpr std::uint64_t DefaultMemory = 256u << 20;

class Memory {
public:
    // `bytesAtMost`: of the pages of 4096 bytes that hold what was written, wherever that is.
    explicit Memory(std::uint64_t bytesAtMost) : limit(bytesAtMost) {}

    // Ranges that pass the last address go on at 0.
    std::string read(std::uint32_t address, std::size_t bytes) const;
    // Stores all of it, or nothing: false when there is no room.
    bool write(std::uint32_t address, const std::string& bytes);

private:
    bool hasRoom(std::uint32_t address, std::size_t bytes) const;

    std::uint64_t limit;
    std::unordered_map<std::uint32_t, std::string> pages;
};

// The byte that pattern mode shows at an address: mixAddress(address) XOR the low 8 bits of the generation. So every
// single byte tells which generation it would be of, and bytes of one reply that are where they belong all tell the
// same one; a byte from another address, or of another reply, tells another with probability 255/256.
std::uint8_t mixAddress(std::uint32_t address);
std::string patternBytes(std::uint32_t address, std::size_t bytes, std::uint64_t generation);

// How many bytes, from the first, belong to this address and to one generation; `generation` is the one that the
// first byte tells (0 to 255).
std::size_t checkPattern(std::uint32_t address, const std::string& bytes, std::uint8_t& generation);

}  // namespace vornex::sim

#endif
