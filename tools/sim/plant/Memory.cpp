#include "sim/plant/Memory.h"

#include <algorithm>

namespace vornex::sim {
namespace {

constexpr std::uint32_t PageBytes = 4096;

}  // namespace

std::string Memory::read(std::uint32_t address, std::size_t bytes) const {
    std::string result(bytes, '\0');
    for (std::size_t done = 0, run = 0; done < bytes; done += run) {
        const std::uint32_t at = address + static_cast<std::uint32_t>(done);
        run = std::min<std::size_t>(bytes - done, PageBytes - at % PageBytes);
        const auto page = pages.find(at / PageBytes);
        if (page == pages.end()) continue;
        result.replace(done, run, page->second, at % PageBytes, run);
    }
    return result;
}

bool Memory::hasRoom(std::uint32_t address, std::size_t bytes) const {
    std::size_t missing = 0;
    for (std::size_t done = 0; done < bytes; done += PageBytes - (address + done) % PageBytes) {
        missing += pages.count((address + static_cast<std::uint32_t>(done)) / PageBytes) == 0;
    }
    return pages.size() + missing <= limit / PageBytes;
}

bool Memory::write(std::uint32_t address, const std::string& bytes) {
    if (!hasRoom(address, bytes.size())) return false;
    for (std::size_t done = 0, run = 0; done < bytes.size(); done += run) {
        const std::uint32_t at = address + static_cast<std::uint32_t>(done);
        run = std::min<std::size_t>(bytes.size() - done, PageBytes - at % PageBytes);
        std::string& page = pages[at / PageBytes];
        page.resize(PageBytes);  // the first time
        page.replace(at % PageBytes, run, bytes, done, run);
    }
    return true;
}

std::uint8_t mixAddress(std::uint32_t address) {
    // two rounds, so that neighbours and addresses one or many pages apart have nothing in common
    std::uint32_t mixed = address * 2654435761u;
    mixed ^= mixed >> 15;
    mixed *= 2246822519u;
    mixed ^= mixed >> 13;
    return static_cast<std::uint8_t>(mixed >> 24);
}

std::string patternBytes(std::uint32_t address, std::size_t bytes, std::uint64_t generation) {
    std::string result(bytes, '\0');
    for (std::size_t i = 0; i < bytes; ++i) {
        result[i] = static_cast<char>(mixAddress(address + static_cast<std::uint32_t>(i)) ^ (generation & 0xff));
    }
    return result;
}

std::size_t checkPattern(std::uint32_t address, const std::string& bytes, std::uint8_t& generation) {
    generation = 0;
    if (bytes.empty()) return 0;
    generation = static_cast<std::uint8_t>(bytes[0] ^ mixAddress(address));
    std::size_t good = 1;
    while (good < bytes.size() && static_cast<std::uint8_t>(bytes[good]) ==
                                      (mixAddress(address + static_cast<std::uint32_t>(good)) ^ generation)) {
        ++good;
    }
    return good;
}

}  // namespace vornex::sim
