// The values of one curve over time, and as few points of them as a picture needs.
#ifndef VORNEX_PANEL_TREND_SAMPLE_SERIES_H
#define VORNEX_PANEL_TREND_SAMPLE_SERIES_H

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

namespace vornex {

// Why there is no value for a while.
enum class Gap_Reason { LinkLost, Unknown, NotANumber, Infinite };
const char* gapText(Gap_Reason reason);

struct Sample {
    double time = 0;   // seconds since 1970
    double value = 0;  // nan: a gap begins, until the next sample
    bool isGap() const { return value != value; }
    // Of a gap.
    Gap_Reason reason() const;
};

// What is known of the samples of an interval.
struct Sample_Summary {
    double minimum = 0;
    double maximum = 0;
    double sum = 0;
    std::uint32_t values = 0;  // without them minimum and maximum say nothing
    std::uint32_t gaps = 0;
    double mean() const { return sum / values; }
    void add(const Sample_Summary& other);
};

enum class Curve_Shape { Line, Step };

// Samples in the order of time, the oldest dropped when there are too many; above them a pyramid, each of whose blocks
// sums up sixteen of the floor below. Takes about 18 bytes a sample. One thread at a time.
class Sample_Series {
public:
    explicit Sample_Series(std::size_t mostSamples) : most(mostSamples) {}

    // At the live end. A time before the last one, of a clock that was put back, counts as the last one. What is not
    // finite is a gap.
    void append(double time, double value);
    void appendGap(double time, Gap_Reason reason);

    bool isEmpty() const { return samples.empty(); }
    // Samples have numbers that stay when old ones are dropped: from begin() to before end().
    std::uint64_t begin() const { return first; }
    std::uint64_t end() const { return first + samples.size(); }
    const Sample& at(std::uint64_t number) const { return samples[number - first]; }
    // The first sample at or after the time; end() when there is none.
    std::uint64_t numberAt(double time) const { return numberAt(begin(), time); }
    // The value that holds at the time: the last sample's up to then. Nothing before the first one and in a gap.
    std::optional<double> valueAt(double time) const;

    // The samples numbered from `from` to before `to`: O(log n).
    Sample_Summary summary(std::uint64_t from, std::uint64_t to) const;
    // Those from one time to the other, both included. The mean is that of the samples.
    Sample_Summary between(double from, double to) const;

    // What a picture so many pixels wide needs: the minimum and maximum of each pixel's samples, in the order that
    // leads to the next pixel's, and the last samples beyond both edges. At most two points a pixel and four more; a
    // nan beside them breaks the curve; of steps the pixel's last value follows when it is neither. Pixels begin at
    // multiples of their width, so that a picture that moves along does not flicker.
    void points(double from, double to, int pixels, Curve_Shape shape, std::vector<Sample>& out) const;

    // That the samples and the pyramid take.
    std::size_t bytes() const;

private:
    struct Floor {
        std::deque<Sample_Summary> blocks;  // the last one may be unfinished
        std::uint64_t first = 0;            // number of the first block
    };
    void add(const Sample& sample);
    void dropOldest();
    std::uint64_t numberAt(std::uint64_t from, double time) const;
    void addPixel(std::uint64_t from, std::uint64_t to, Curve_Shape shape, std::vector<Sample>& out) const;

    const std::size_t most;
    std::deque<Sample> samples;
    std::uint64_t first = 0;
    std::vector<Floor> floors;
};

}  // namespace vornex

#endif
