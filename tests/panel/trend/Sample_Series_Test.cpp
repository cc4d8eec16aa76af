// The pyramid beside a plain walk over the same samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>

#include "panel/trend/Sample_Series.h"

using namespace vornex;

namespace {

struct Extremes {
    double minimum = INFINITY, maximum = -INFINITY, sum = 0;
    unsigned values = 0;
    void add(const Sample& sample) {
        if (std::isnan(sample.value)) return;
        minimum = std::min(minimum, sample.value);
        maximum = std::max(maximum, sample.value);
        sum += sample.value;
        ++values;
    }
};

struct Filled {
    Sample_Series series;
    std::vector<Sample> plain;  // what the series must still hold
};

Filled filled(std::mt19937& random, std::size_t samples, std::size_t most) {
    Filled both{Sample_Series(most), {}};
    double time = 1000;
    bool gap = false;
    for (std::size_t i = 0; i < samples; ++i) {
        time += std::uniform_int_distribution<>(1, 3)(random) / 8.0;  // exact in binary, as are the pixels' edges
        gap = !gap && std::uniform_int_distribution<>(0, 40)(random) == 0;
        double value = std::uniform_int_distribution<>(-1000, 1000)(random);
        if (gap) value = NAN;
        both.series.append(time, value);
        both.plain.push_back({time, value});
    }
    if (samples > most) both.plain.erase(both.plain.begin(), both.plain.end() - static_cast<std::ptrdiff_t>(most));
    return both;
}

std::map<double, Extremes> byPixel(const std::vector<Sample>& samples, double from, double to, double width) {
    std::map<double, Extremes> pixels;
    for (const Sample& sample : samples)
        if (sample.time >= from && sample.time < to && !std::isnan(sample.value))
            pixels[std::floor(sample.time / width)].add(sample);
    return pixels;
}

}  // namespace

TEST(SampleSeries, EveryPixelShowsItsExtremes) {
    std::mt19937 random(7);
    for (const auto& [samples, most] : {std::pair{1, 5000}, {15, 5000}, {300, 100}, {5000, 5000}, {20000, 4567}}) {
        const Filled both = filled(random, samples, most);
        ASSERT_EQ(both.series.end() - both.series.begin(), both.plain.size());
        for (int turn = 0; turn < 40; ++turn) {
            const int pixels = 1 << std::uniform_int_distribution<>(3, 10)(random);
            const double width = 0.25 * (1 << std::uniform_int_distribution<>(0, 6)(random));
            const double from = both.plain.front().time + std::uniform_int_distribution<>(-100, 9000)(random) / 8.0;
            const double to = from + pixels * width;
            for (const Curve_Shape shape : {Curve_Shape::Line, Curve_Shape::Step}) {
                std::vector<Sample> points;
                both.series.points(from, to, pixels, shape, points);
                const auto values = std::count_if(points.begin(), points.end(), [](auto& p) { return !p.isGap(); });
                if (shape == Curve_Shape::Line) {
                    EXPECT_LE(values, 2 * pixels + 4);
                }
                EXPECT_TRUE(std::is_sorted(points.begin(), points.end(),
                                           [](const Sample& a, const Sample& b) { return a.time < b.time; }));
                const auto expected = byPixel(both.plain, from, to, width);
                const auto shown = byPixel(points, from, to, width);
                ASSERT_EQ(expected.size(), shown.size());
                for (const auto& [pixel, extremes] : expected) {
                    EXPECT_EQ(extremes.minimum, shown.at(pixel).minimum) << samples << " samples, pixel " << pixel;
                    EXPECT_EQ(extremes.maximum, shown.at(pixel).maximum) << samples << " samples, pixel " << pixel;
                }
            }
        }
    }
}

TEST(SampleSeries, WhatIsBetweenTwoTimesIsThatOfTheSamples) {
    std::mt19937 random(11);
    const Filled both = filled(random, 9000, 8000);
    for (int turn = 0; turn < 300; ++turn) {
        const double from = 1000 + std::uniform_int_distribution<>(0, 20000)(random) / 8.0;
        const double to = from + std::uniform_int_distribution<>(0, 12000)(random) / 8.0;
        Extremes expected;
        for (const Sample& sample : both.plain)
            if (sample.time >= from && sample.time <= to) expected.add(sample);
        const Sample_Summary found = both.series.between(from, to);
        ASSERT_EQ(expected.values, found.values) << from << " to " << to;
        if (found.values == 0) continue;
        EXPECT_EQ(expected.minimum, found.minimum);
        EXPECT_EQ(expected.maximum, found.maximum);
        EXPECT_EQ(expected.sum, found.sum);  // whole numbers: exact in any order
    }
}

TEST(SampleSeries, GapsHaveAReasonAndNoValue) {
    Sample_Series series(100);
    series.append(1, 5);
    series.append(2, NAN);
    series.append(3, -INFINITY);
    series.appendGap(4, Gap_Reason::LinkLost);
    series.append(3.5, 7);  // the clock was put back
    EXPECT_EQ(5, series.valueAt(1.5));
    for (const double time : {0.5, 2.0, 3.5})
        EXPECT_FALSE(series.valueAt(time)) << time;
    EXPECT_EQ(7, series.valueAt(4));
    EXPECT_EQ(Gap_Reason::NotANumber, series.at(1).reason());
    EXPECT_EQ(Gap_Reason::Infinite, series.at(2).reason());
    EXPECT_EQ(Gap_Reason::LinkLost, series.at(3).reason());
    std::vector<Sample> points;
    series.points(0, 10, 100, Curve_Shape::Line, points);
    ASSERT_EQ(3u, points.size());
    EXPECT_TRUE(points[1].isGap());
    // A gap among thousands of values in one pixel at its edges still breaks the curve.
    series.points(0, 1e6, 1, Curve_Shape::Line, points);
    EXPECT_EQ(2u, points.size());
}

TEST(SampleSeries, MemoryStaysWhereTheLimitIs) {
    Sample_Series series(50000);
    std::size_t most = 0, least = SIZE_MAX;
    for (int i = 0; i < 1000000; ++i) {
        series.append(i, i % 977);
        if (i < 100000) continue;
        most = std::max(most, series.bytes());
        least = std::min(least, series.bytes());
    }
    EXPECT_LE(most, 24u * 50000);
    EXPECT_LE(most - least, least / 100);
    EXPECT_EQ(950000, series.at(series.begin()).time);
}
