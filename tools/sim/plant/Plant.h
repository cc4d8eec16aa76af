// What the controller does with requests: memory, moving values, pattern.
#ifndef VORNEX_SIM_PLANT_PLANT_H
#define VORNEX_SIM_PLANT_PLANT_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "labels/Label_File.h"
#include "sim/plant/Memory.h"
#include "sim/plant/Played_Record.h"
#include "values/Value_Motion.h"
#include "wire/Frame.h"

namespace vornex::sim {

// How the generation of pattern mode goes on.
struct Pattern {
    enum class Step {
        Off,     // no pattern: memory and motions
        Read,    // every answered read shows the next generation, the first one 1
        Period,  // the next one every `period` ms, beginning with 0
        Fixed    // always `first`
    };
    Step step = Step::Off;
    std::uint64_t period = 0;  // ms
    std::uint64_t first = 0;
};

// Reads "read", "250ms" or "fixed:7". Throws std::invalid_argument.
Pattern parsePattern(const std::string& text);

class Plant {
public:
    // Throws File_Error for a motion that makes no sense, or for which the memory has no room, naming its line.
    // `now` in all calls: ms since the start.
    Plant(Label_File labels, const Pattern& pattern, std::uint64_t seed, std::uint64_t memoryBytes = DefaultMemory);
    // The record's values instead of motions.
    Plant(Label_File labels, std::unique_ptr<Played_Record> playedRecord, std::uint64_t memoryBytes);

    // Whether the controller answers at this moment; always but for a record.
    Played_Record::Line line(double now);
    // How many of these bytes the record has not shown; 0 without one.
    std::size_t unknown(const Memory_Range& range) const {
        return record ? record->unknown(range.address, range.bytes) : 0;
    }
    // The record was ended by a mistake in it.
    bool recordFailed() const { return record && record->failed(); }

    // The items of the answer to a read: one generation for all of them in pattern mode.
    std::vector<Reply_Item> read(const std::vector<Memory_Range>& items, double now);
    // Stores the bytes and stops the motions there; in pattern mode nothing is stored. False when the memory has no
    // room for all of them: then nothing is changed.
    bool write(std::uint32_t address, const std::string& bytes, double now);

    // Bytes as a read would show them, without going on to the next generation.
    std::string peek(std::uint32_t address, std::size_t bytes, double now);
    // The element moves from now on, beginning at the motion's begin; a const stands still. Throws
    // std::invalid_argument with the reason, and nothing is changed then.
    void setMotion(const Leaf& leaf, const std::string& motion, double now);
    // The element of this label text. For people, not for requests: it is searched for in the file.
    std::optional<Leaf> find(const std::string& label) const { return findLeaf(file, label); }

    std::uint64_t generationAt(double now) const;
    bool isPattern() const { return pattern.step != Pattern::Step::Off; }

private:
    struct Moving {
        std::uint32_t address;
        std::uint32_t bytes;
        View view;
        Motion motion;
        std::uint64_t element;  // of its label or member, from 0
        double begin = 0;       // ms since the start
    };
    std::string placeOf(const Leaf& leaf) const;
    void store(const Leaf& leaf, const std::string& bytes);
    void addMotion(const Leaf& leaf, std::uint64_t element);
    void move(std::uint32_t address, std::size_t bytes, double now);
    std::size_t firstMoving(std::uint32_t address) const;

    Label_File file;
    Pattern pattern;
    std::uint64_t seed;
    std::uint64_t generation = 0;  // of the last read, for Step::Read
    Memory memory;
    std::unique_ptr<Played_Record> record;
    std::vector<Moving> moving;  // by address
};

}  // namespace vornex::sim

#endif
