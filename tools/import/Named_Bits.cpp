#include "import/Named_Bits.h"

#include <algorithm>
#include <map>
#include <memory>

namespace vornex {
namespace {

bool mayHoldBits(const Label& label) {
    const View_Entry::Kind kind = viewEntry(viewOf(label)).kind;
    const bool isWhole =
        kind == View_Entry::Kind::Unsigned || kind == View_Entry::Kind::Signed || kind == View_Entry::Kind::Hex;
    return isWhole && label.type.bounds.empty() && label.type.textBytes == 0;
}

Label byteLabel(const Named_Bits::Bit& bit) {
    Label label;
    label.name = "Byte" + std::to_string(bit.byte);
    label.type = parseType("BYTE");
    label.at = bit.byte;
    label.line = bit.line;
    return label;
}

}  // namespace

void Named_Bits::place(const Tell& told, const Tell& refused) {
    const Label_File noStructs;
    std::map<std::uint32_t, std::size_t> holderAt;
    std::map<std::string, int> names;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (mayHoldBits(labels[i])) holderAt.emplace(labels[i].at, i);
        names.emplace(labels[i].name, labels[i].line);
    }
    for (const Bit& bit : bits) {
        auto holder = holderAt.upper_bound(bit.byte);
        if (holder != holderAt.begin()) --holder;
        const bool isHeld = holder != holderAt.end() && holder->first <= bit.byte &&
                            bit.byte - holder->first < elementBytes(noStructs, labels[holder->second].type);
        const Label made = byteLabel(bit);
        if (!isHeld && names.count(made.name)) {
            refused(bit.line, bit.name, "the label for its byte would be '" + made.name + "', which there is already");
            continue;
        }
        Label label = isHeld ? labels[holder->second] : made;
        Meaning meaning = meaningOf(label);
        meaning.bits.push_back({bit.name, 8 * std::int64_t(bit.byte - label.at) + bit.bit});
        const std::string problem = meaningProblem(meaning, viewOf(label), elementBytes(noStructs, label.type));
        if (!problem.empty()) {
            refused(bit.line, bit.name, problem);
            continue;
        }
        label.meaning = std::make_shared<const Meaning>(std::move(meaning));
        told(bit.line, bit.name,
             "is the bit " + label.name + "." + bit.name + (bit.lost.empty() ? "" : "; left out: its " + bit.lost));
        if (isHeld) {
            labels[holder->second] = std::move(label);
        } else {
            holderAt[bit.byte] = labels.size();
            names.emplace(label.name, bit.line);
            labels.push_back(std::move(label));
        }
    }
}

}  // namespace vornex
