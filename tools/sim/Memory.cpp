#include "Memory.h"

#include <algorithm>
#include <array>

namespace vornex::sim {
namespace {

constexpr std::uint32_t PageBytes = 4096;
constexpr std::size_t PageLimit = 16384;  // 64 MiB: stray writes must not eat the machine

}  // namespace

struct Memory::Page {
    std::array<std::uint8_t, PageBytes> bytes{};
};

Bytes Memory::read(std::uint32_t address, std::size_t bytes) const {
    Bytes result(bytes);
    for (std::size_t done = 0, run = 0; done < bytes; done += run) {
        const std::uint32_t at = address + static_cast<std::uint32_t>(done);
        run = std::min<std::size_t>(bytes - done, PageBytes - at % PageBytes);
        const auto page = pages.find(at / PageBytes);
        if (page == pages.end()) continue;
        std::copy_n(page->second->bytes.begin() + at % PageBytes, run,
                    result.begin() + static_cast<std::ptrdiff_t>(done));
    }
    return result;
}

std::size_t Memory::write(std::uint32_t address, const Bytes& bytes) {
    std::size_t stored = 0;
    for (std::size_t done = 0, run = 0; done < bytes.size(); done += run) {
        const std::uint32_t at = address + static_cast<std::uint32_t>(done);
        run = std::min<std::size_t>(bytes.size() - done, PageBytes - at % PageBytes);
        auto page = pages.find(at / PageBytes);
        if (page == pages.end()) {
            if (pages.size() >= PageLimit) continue;
            page = pages.emplace(at / PageBytes, std::make_shared<Page>()).first;
        }
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(done), run,
                    page->second->bytes.begin() + at % PageBytes);
        stored += run;
    }
    return stored;
}

std::uint8_t mixAddress(std::uint32_t address) {
    // two rounds, so that neighbours and addresses one or many pages apart have nothing in common
    std::uint32_t mixed = address * 2654435761u;
    mixed ^= mixed >> 15;
    mixed *= 2246822519u;
    mixed ^= mixed >> 13;
    return static_cast<std::uint8_t>(mixed >> 24);
}

Bytes patternBytes(std::uint32_t address, std::size_t bytes, std::uint64_t generation) {
    Bytes result(bytes);
    for (std::size_t i = 0; i < bytes; ++i) {
        result[i] =
            static_cast<std::uint8_t>(mixAddress(address + static_cast<std::uint32_t>(i)) ^ (generation & 0xff));
    }
    return result;
}

std::size_t checkPattern(std::uint32_t address, const Bytes& bytes, std::uint8_t& generation) {
    generation = 0;
    if (bytes.empty()) return 0;
    generation = static_cast<std::uint8_t>(bytes[0] ^ mixAddress(address));
    std::size_t good = 1;
    while (good < bytes.size() &&
           (bytes[good] ^ mixAddress(address + static_cast<std::uint32_t>(good))) == generation) {
        ++good;
    }
    return good;
}

}  // namespace vornex::sim
