#include "panel/trend/Sample_Series.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vornex {
namespace {

constexpr unsigned BlockBits = 4;
constexpr std::uint64_t BlockSize = 1u << BlockBits;
constexpr std::uint64_t QuietNan = 0x7FF8000000000000u;  // its low bits are free: they hold the reason

Sample gapAt(double time, Gap_Reason reason) {
    Sample gap{time, 0};
    const std::uint64_t bits = QuietNan | static_cast<std::uint64_t>(reason);
    std::memcpy(&gap.value, &bits, sizeof bits);
    return gap;
}

Sample_Summary summaryOf(const Sample& sample) {
    if (sample.isGap()) return {0, 0, 0, 0, 1};
    return {sample.value, sample.value, sample.value, 1, 0};
}

void putGap(const Sample& gap, std::vector<Sample>& out) {
    if (!out.empty() && !out.back().isGap()) out.push_back(gap);
}

void put(const Sample& sample, std::vector<Sample>& out) {
    if (sample.isGap()) {
        putGap(sample, out);
    } else {
        out.push_back(sample);
    }
}

}  // namespace

const char* gapText(Gap_Reason reason) {
    switch (reason) {
        case Gap_Reason::LinkLost: return "connection lost";
        case Gap_Reason::Unknown: return "value unknown";
        case Gap_Reason::NotANumber: return "not a number";
        case Gap_Reason::Infinite: return "infinite";
    }
    return "";
}

Gap_Reason Sample::reason() const {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return static_cast<Gap_Reason>(bits & 3u);
}

void Sample_Summary::add(const Sample_Summary& other) {
    gaps += other.gaps;
    if (other.values == 0) return;
    minimum = values == 0 ? other.minimum : std::min(minimum, other.minimum);
    maximum = values == 0 ? other.maximum : std::max(maximum, other.maximum);
    sum += other.sum;
    values += other.values;
}

void Sample_Series::append(double time, double value) {
    if (std::isfinite(value)) {
        add({time, value});
    } else {
        appendGap(time, std::isnan(value) ? Gap_Reason::NotANumber : Gap_Reason::Infinite);
    }
}

void Sample_Series::appendGap(double time, Gap_Reason reason) {
    const bool sameGap = !samples.empty() && samples.back().isGap() && samples.back().reason() == reason;
    if (!sameGap) add(gapAt(time, reason));
}

void Sample_Series::add(const Sample& sample) {
    std::uint64_t number = end();
    Sample placed = sample;
    if (!samples.empty() && !(placed.time > samples.back().time)) placed.time = samples.back().time;
    samples.push_back(placed);
    // Upwards as far as blocks are finished by it.
    Sample_Summary news = summaryOf(placed);
    for (std::size_t level = 0;; ++level, number >>= BlockBits) {
        if (level == floors.size()) floors.emplace_back();
        std::deque<Sample_Summary>& blocks = floors[level].blocks;
        if (number % BlockSize == 0) blocks.emplace_back();
        blocks.back().add(news);
        if (number % BlockSize != BlockSize - 1) break;
        news = blocks.back();
    }
    if (samples.size() > most) dropOldest();
}

void Sample_Series::dropOldest() {
    samples.pop_front();
    ++first;
    std::uint64_t kept = first;
    for (Floor& floor : floors) {
        kept >>= BlockBits;  // the number of the block that holds the first sample
        for (; floor.first < kept; ++floor.first)
            floor.blocks.pop_front();
    }
}

// Looks ahead in steps that double: what is sought is mostly near.
std::uint64_t Sample_Series::numberAt(std::uint64_t from, double time) const {
    std::uint64_t low = from;
    std::uint64_t step = 1;
    while (low + step < end() && at(low + step).time < time) {
        low += step;
        step *= 2;
    }
    std::uint64_t high = std::min(low + step, end());
    while (low < high) {
        const std::uint64_t middle = low + (high - low) / 2;
        if (at(middle).time < time) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

std::optional<double> Sample_Series::valueAt(double time) const {
    const std::uint64_t after = numberAt(std::nextafter(time, INFINITY));
    if (after == begin() || at(after - 1).isGap()) return std::nullopt;
    return at(after - 1).value;
}

Sample_Summary Sample_Series::summary(std::uint64_t from, std::uint64_t to) const {
    Sample_Summary all;
    for (from = std::max(from, begin()), to = std::min(to, end()); from < to;) {
        unsigned bits = 0;  // of the largest block that begins here and ends before `to`
        std::size_t level = 0;
        for (; level < floors.size(); ++level, bits += BlockBits) {
            const std::uint64_t size = 1ull << (bits + BlockBits);
            if (from % size != 0 || from + size > to) break;
        }
        if (level == 0) {
            all.add(summaryOf(at(from)));
        } else {
            const Floor& floor = floors[level - 1];
            all.add(floor.blocks[(from >> bits) - floor.first]);
        }
        from += 1ull << bits;
    }
    return all;
}

Sample_Summary Sample_Series::between(double from, double to) const {
    if (isEmpty() || !(from <= to)) return {};
    return summary(numberAt(from), numberAt(std::nextafter(to, INFINITY)));
}

void Sample_Series::addPixel(std::uint64_t from, std::uint64_t to, Curve_Shape shape, std::vector<Sample>& out) const {
    const Sample& head = at(from);
    const Sample& tail = at(to - 1);
    if (to - from <= 2) {
        put(head, out);
        if (to - from == 2) put(tail, out);
        return;
    }
    const Sample_Summary all = summary(from, to);
    if (head.isGap()) putGap(head, out);
    if (all.values != 0) {
        const bool falls = !tail.isGap() && tail.value - all.minimum < all.maximum - tail.value;
        out.push_back({head.time, falls ? all.maximum : all.minimum});
        out.push_back({tail.time, falls ? all.minimum : all.maximum});
        const bool between = !tail.isGap() && tail.value != out.back().value;
        if (shape == Curve_Shape::Step && between) out.push_back(tail);
    }
    if (tail.isGap()) putGap(tail, out);
}

void Sample_Series::points(double from, double to, int pixels, Curve_Shape shape, std::vector<Sample>& out) const {
    out.clear();
    if (isEmpty() || !(from < to) || pixels < 1) return;
    std::uint64_t number = numberAt(from);
    const std::uint64_t inside = numberAt(number, to);
    if (number > begin()) put(at(number - 1), out);
    const double width = (to - from) / pixels;
    const bool all = inside - number <= 2u * static_cast<unsigned>(pixels);
    while (number < inside) {
        const double edge = (std::floor(at(number).time / width) + 1) * width;
        // A sample that lies on the edge as far as rounding tells is at least a pixel of its own.
        const std::uint64_t next = all ? number + 1 : std::clamp(numberAt(number, edge), number + 1, inside);
        addPixel(number, next, shape, out);
        number = next;
    }
    if (inside < end()) put(at(inside), out);
}

std::size_t Sample_Series::bytes() const {
    std::size_t blocks = 0;
    for (const Floor& floor : floors)
        blocks += floor.blocks.size();
    return sizeof *this + samples.size() * sizeof(Sample) + blocks * sizeof(Sample_Summary);
}

}  // namespace vornex
