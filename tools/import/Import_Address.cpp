#include "import/Import_Address.h"

#include <algorithm>
#include <stdexcept>

#include "text/Number.h"
#include "text/Text.h"

namespace vornex {
namespace {

constexpr std::uint64_t LastAddress = 0xFFFFFFFF;

// Cuts "%MW" off; returns the letter of the size, 0 when there is none.
char takeArea(const std::string& whole, std::string& rest) {
    if (!rest.empty() && rest[0] == '%') rest.erase(0, 1);
    if (rest.empty() || (rest[0] >= '0' && rest[0] <= '9')) return '\0';
    const char area = rest[0];
    if (area == 'i' || area == 'q')
        throw std::invalid_argument("'" + whole + "' is an input or output; only memory (M) has label addresses");
    if (area != 'm') throw std::invalid_argument("'" + whole + "' is no address such as 100, 0x64, %MW100, %MX10.3");
    rest.erase(0, 1);
    const bool hasSize = !rest.empty() && std::string("xbwdl").find(rest[0]) != std::string::npos;
    const char size = hasSize ? rest[0] : '\0';
    if (hasSize) rest.erase(0, 1);
    return size;
}

}  // namespace

Import_Address parseImportAddress(const std::string& text, Address_Count count, std::uint32_t base) {
    std::string rest = lowered(trimmed(text));
    const char size = takeArea(text, rest);
    std::replace(rest.begin(), rest.end(), ',', '.');
    const std::size_t point = rest.find('.');
    std::string number = rest.substr(0, point);
    if (number.compare(0, 3, "16#") == 0) number.replace(0, 3, "0x");
    const std::uint64_t unit = count == Address_Count::Words && size != 'b' ? 2 : 1;
    std::uint64_t byte = base + unit * unsignedNumber(number, 0, LastAddress, "address");
    Import_Address address;
    if (point != std::string::npos) {
        const std::uint64_t bit = unsignedNumber(rest.substr(point + 1), 0, 8 * unit - 1, "bit");
        byte += bit / 8;
        address.bit = static_cast<unsigned>(bit % 8);
    } else if (size == 'x') {
        throw std::invalid_argument("'" + text + "' names no bit; it is %MX10.3");
    }
    if (byte > LastAddress) throw std::invalid_argument("'" + text + "' with its base is past the 32-bit addresses");
    address.byte = static_cast<std::uint32_t>(byte);
    return address;
}

}  // namespace vornex
