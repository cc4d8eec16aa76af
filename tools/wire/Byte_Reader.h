// Takes little-endian numbers and runs of bytes, one after the other.
#ifndef VORNEX_WIRE_BYTE_READER_H
#define VORNEX_WIRE_BYTE_READER_H

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace vornex {

// Cannot pass the end of its bytes, which have to outlive it: from there a number has zeroes and a run is shorter.
class Byte_Reader {
public:
    explicit Byte_Reader(std::string_view bytes) : rest(bytes) {}

    std::size_t left() const { return rest.size(); }
    // A number of `size` bytes, at most 4.
    std::uint32_t number(std::size_t size) {
        const std::string_view bytes = run(size);
        std::uint32_t value = 0;
        for (std::size_t i = bytes.size(); i-- > 0;)
            value = value << 8 | static_cast<unsigned char>(bytes[i]);
        return value;
    }
    std::string_view run(std::size_t size) {
        const std::string_view bytes = rest.substr(0, size);
        rest.remove_prefix(bytes.size());
        return bytes;
    }

private:
    std::string_view rest;
};

}  // namespace vornex

#endif
