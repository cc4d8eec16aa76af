#include "sim/plant/Plant.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include "text/Number.h"
#include "text/Text.h"
#include "values/Shown_Value.h"
#include "values/Value_Codec.h"

namespace vornex::sim {
namespace {

constexpr std::uint32_t LargestElement = 255;

}  // namespace

Pattern parsePattern(const std::string& text) {
    constexpr std::uint64_t Day = 86400000;
    Pattern pattern;
    if (text == "read") {
        pattern.step = Pattern::Step::Read;
    } else if (text.rfind("fixed:", 0) == 0) {
        pattern.step = Pattern::Step::Fixed;
        pattern.first = wholeNumber<std::uint8_t>(text.substr(6));
    } else if (endsIn(text, "ms")) {
        pattern.step = Pattern::Step::Period;
        pattern.period = unsignedNumber(text.substr(0, text.size() - 2), 1, Day, "period in ms");
    } else {
        throw std::invalid_argument("pattern '" + text + "' is not read, fixed:N or a period like 250ms");
    }
    return pattern;
}

Plant::Plant(Label_File labels, const Pattern& patternMode, std::uint64_t noiseSeed, std::uint64_t memoryBytes)
    : file(std::move(labels)), pattern(patternMode), seed(noiseSeed), memory(memoryBytes) {
    std::map<const Label*, std::uint64_t> elements;
    if (!isPattern()) {
        const auto beyond =
            forEachMotion(file, [&](const Leaf& leaf) { addMotion(leaf, elements[leaf.definition]++); });
        if (beyond) throw File_Error(placeOf(*beyond) + TooManyMotions);
    }
    std::stable_sort(moving.begin(), moving.end(),
                     [](const Moving& a, const Moving& b) { return a.address < b.address; });
}

Plant::Plant(Label_File labels, std::unique_ptr<Played_Record> playedRecord, std::uint64_t memoryBytes)
    : file(std::move(labels)), seed(0), memory(memoryBytes), record(std::move(playedRecord)) {}

Played_Record::Line Plant::line(double now) {
    if (!record) return Played_Record::Line::Up;
    record->advance(now, memory);
    return record->line();
}

std::string Plant::placeOf(const Leaf& leaf) const {
    return file.path + ":" + std::to_string(leaf.definition->line) + ": label '" + leaf.text + "': sim: ";
}

void Plant::store(const Leaf& leaf, const std::string& bytes) {
    if (!memory.write(leaf.address, bytes)) throw File_Error(placeOf(leaf) + "the memory is full");
}

void Plant::addMotion(const Leaf& leaf, std::uint64_t element) {
    Motion motion;
    try {
        motion = parseMotion(leaf.definition->sim, Value_Form(leaf));
    } catch (const std::invalid_argument& error) {
        throw File_Error(placeOf(leaf) + error.what());
    }
    if (motion.kind == Motion::Kind::Const) {
        store(leaf, motion.bytes);
        return;
    }
    store(leaf, std::string(leaf.bytes, '\0'));  // its place is taken now: later it always finds room
    moving.push_back({leaf.address, leaf.bytes, leaf.view, motion, element});
}

void Plant::setMotion(const Leaf& leaf, const std::string& text, double now) {
    if (isPattern()) throw std::invalid_argument("pattern mode has no values to move");
    const Motion motion = parseMotion(text, Value_Form(leaf));
    const bool isConst = motion.kind == Motion::Kind::Const;
    if (!write(leaf.address, isConst ? motion.bytes : std::string(leaf.bytes, '\0'), now))
        throw std::invalid_argument("the memory is full; see --memory");
    if (isConst) return;
    const auto place = std::upper_bound(moving.begin(), moving.end(), leaf.address,
                                        [](std::uint32_t at, const Moving& value) { return at < value.address; });
    moving.insert(place, {leaf.address, leaf.bytes, leaf.view, motion, 0, now});
}

std::size_t Plant::firstMoving(std::uint32_t address) const {
    const std::uint32_t from = address < LargestElement ? 0 : address - LargestElement;
    const auto found = std::lower_bound(moving.begin(), moving.end(), from,
                                        [](const Moving& a, std::uint32_t at) { return a.address < at; });
    return static_cast<std::size_t>(found - moving.begin());
}

// Brings the moving values that touch this range up to date.
void Plant::move(std::uint32_t address, std::size_t bytes, double now) {
    if (record) record->advance(now, memory);
    const std::uint64_t end = std::uint64_t(address) + bytes;
    for (std::size_t i = firstMoving(address); i < moving.size() && moving[i].address < end; ++i) {
        const Moving& value = moving[i];
        if (std::uint64_t(value.address) + value.bytes <= address) continue;
        const std::uint64_t noise = seed ^ std::uint64_t(value.address) << 20;
        const double number = motionValue(value.motion, now - value.begin, value.element, noise);
        memory.write(value.address, bytesOfNumber(value.view, value.bytes, number));
    }
}

std::uint64_t Plant::generationAt(double now) const {
    if (pattern.step == Pattern::Step::Period) return static_cast<std::uint64_t>(now) / pattern.period;
    return pattern.step == Pattern::Step::Read ? generation : pattern.first;
}

std::vector<Reply_Item> Plant::read(const std::vector<Memory_Range>& items, double now) {
    if (pattern.step == Pattern::Step::Read) ++generation;
    std::vector<Reply_Item> result;
    result.reserve(items.size());
    for (const Memory_Range& item : items)
        result.push_back({static_cast<std::uint16_t>(item.bytes), peek(item.address, item.bytes, now)});
    return result;
}

std::string Plant::peek(std::uint32_t address, std::size_t bytes, double now) {
    if (isPattern()) return patternBytes(address, bytes, generationAt(now));
    move(address, bytes, now);
    return memory.read(address, bytes);
}

bool Plant::write(std::uint32_t address, const std::string& bytes, double now) {
    if (isPattern()) return true;
    move(address, bytes.size(), now);  // what the write leaves of a moving value stays as it was seen last
    if (!memory.write(address, bytes)) return false;
    if (record) record->written(address, bytes.size());
    const std::uint64_t end = std::uint64_t(address) + bytes.size();
    const auto first = moving.begin() + static_cast<std::ptrdiff_t>(firstMoving(address));
    const auto last = std::find_if(first, moving.end(), [&](const Moving& value) { return value.address >= end; });
    const auto stopped = std::remove_if(
        first, last, [&](const Moving& value) { return std::uint64_t(value.address) + value.bytes > address; });
    moving.erase(stopped, last);
    return true;
}

}  // namespace vornex::sim
