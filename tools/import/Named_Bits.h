// Single bits of a symbol table as named bits of the labels that hold them.
#ifndef VORNEX_IMPORT_NAMED_BITS_H
#define VORNEX_IMPORT_NAMED_BITS_H

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "labels/Label_File.h"

namespace vornex {

class Named_Bits {
public:
    struct Bit {
        std::string name;
        std::uint32_t byte;
        unsigned bit;  // 0 to 7
        int line;
        std::string lost;  // the keys that a named bit cannot have, empty: none
    };
    using Tell = std::function<void(int line, const std::string& name, const std::string& words)>;

    // `fileLabels` must outlive this.
    explicit Named_Bits(std::vector<Label>& fileLabels) : labels(fileLabels) {}
    void add(Bit bit) { bits.push_back(std::move(bit)); }
    // When all labels are known: gives each bit to the whole number that holds its byte, or to a new label
    // "Byte<address>". `told`: where it went and what it lost. `refused`: why it could not be taken.
    void place(const Tell& told, const Tell& refused);

private:
    std::vector<Label>& labels;
    std::vector<Bit> bits;
};

}  // namespace vornex

#endif
