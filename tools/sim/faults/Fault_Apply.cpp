// What each fault does to an answer.
#include <algorithm>
#include <set>

#include "sim/Controller.h"
#include "wire/Check_Value.h"

namespace vornex::sim {
namespace {

char randomByte(Fault_Rules& noise) { return static_cast<char>(noise.random(256)); }

constexpr char Turned = -1;  // exclusive-or: every bit the other way

// Faults that leave the check value right.
void changeContent(const Fault_Rule& rule, Reply& reply, Fault_Rules& noise) {
    switch (rule.kind) {
        case Fault_Kind::Empty: reply.items.clear(); return;
        case Fault_Kind::Header:
            for (char& byte : reply.header)
                byte = randomByte(noise);
            return;
        case Fault_Kind::Count:
            if (!reply.items.empty())
                reply.items[0].count = static_cast<std::uint16_t>(reply.items[0].count + rule.args[0]);
            return;
        case Fault_Kind::Swap:
            if (!reply.items.empty()) std::swap(reply.items.front(), reply.items.back());
            return;
        default: return;
    }
}

// An argument is small (Fault_Rules.cpp): it fits a size on every machine.
std::size_t sizeOf(std::uint64_t argument) { return static_cast<std::size_t>(argument); }

void flipBits(std::string& bytes, std::size_t bits, Fault_Rules& noise) {
    std::set<std::size_t> places;
    bits = std::min(bits, bytes.size() * 8);
    while (places.size() < bits)
        places.insert(sizeOf(noise.random(bytes.size() * 8)));
    for (const std::size_t place : places)
        bytes[place / 8] ^= static_cast<char>(1u << place % 8);
}

void makeJunk(std::string& bytes, std::size_t count, Fault_Rules& noise) {
    if (count) bytes.resize(count);
    for (char& byte : bytes)
        byte = randomByte(noise);
    if (bytes.size() < 3) return;
    // chance must not make it a good answer
    const std::uint16_t good = checkValue(std::string_view(bytes).substr(0, bytes.size() - 2));
    if (storedCheck(bytes) == good) bytes.back() ^= Turned;
}

void changeBytes(const Fault_Rule& rule, std::string& bytes, const std::string& previous, Fault_Rules& noise) {
    switch (rule.kind) {
        case Fault_Kind::Crc:
            for (std::size_t i = bytes.size() < 2 ? 0 : bytes.size() - 2; i < bytes.size(); ++i)
                bytes[i] ^= Turned;
            return;
        case Fault_Kind::Flip: flipBits(bytes, sizeOf(rule.args[0]), noise); return;
        case Fault_Kind::Short: bytes.resize(bytes.size() - std::min(bytes.size(), sizeOf(rule.args[0]))); return;
        case Fault_Kind::Long:
            for (std::uint64_t i = 0; i < rule.args[0]; ++i)
                bytes.push_back(randomByte(noise));
            return;
        case Fault_Kind::Junk: makeJunk(bytes, sizeOf(rule.args[0]), noise); return;
        case Fault_Kind::Stale: bytes = previous; return;
        case Fault_Kind::Drop: bytes.clear(); return;
        case Fault_Kind::Dup: bytes += std::string(bytes); return;
        default: return;
    }
}

void endAfter(Delivery& delivery, Delivery::End end, std::size_t bytes) {
    delivery.end = end;
    delivery.bytes.resize(std::min(delivery.bytes.size(), bytes));
}

void changeWay(const Fault_Rule& rule, Delivery& delivery, Fault_Rules& noise) {
    const std::uint64_t first = rule.args[0];
    switch (rule.kind) {
        case Fault_Kind::Delay:
            delivery.delay += first + (rule.args[1] > first ? noise.random(rule.args[1] - first + 1) : 0);
            return;
        case Fault_Kind::Late:
            delivery.hold = Delivery::Hold::Late;
            delivery.holdGap = first;
            return;
        case Fault_Kind::Glue: delivery.hold = Delivery::Hold::Glue; return;
        case Fault_Kind::Slice:
            delivery.pieceBytes = sizeOf(first);
            delivery.pieceGap = rule.args[1];
            return;
        case Fault_Kind::Rst: return endAfter(delivery, Delivery::End::Rst, sizeOf(first));
        case Fault_Kind::Fin: return endAfter(delivery, Delivery::End::Fin, sizeOf(first));
        case Fault_Kind::Refuse: delivery.refuse = first; return;
        case Fault_Kind::Stall: delivery.stall = first; return;
        case Fault_Kind::Kill: delivery.kill = true; return;
        default: return;
    }
}

}  // namespace

Delivery applyFaults(Reply reply, const std::vector<const Fault_Rule*>& rules, const std::string& previous,
                     Fault_Rules& noise) {
    for (const Fault_Rule* rule : rules)
        changeContent(*rule, reply, noise);
    Delivery delivery;
    delivery.bytes = encodeReply(reply);
    for (const Fault_Rule* rule : rules)
        changeBytes(*rule, delivery.bytes, previous, noise);
    for (const Fault_Rule* rule : rules)
        changeWay(*rule, delivery, noise);
    return delivery;
}

}  // namespace vornex::sim
