// What is published when.
#include <stdexcept>

#include <gtest/gtest.h>

#include "edge/Poll_Group.h"

namespace vornex::edge {
namespace {

TEST(Poll_Groups, areReadOrRefused) {
    const std::vector<Poll_Group> groups =
        parsePollGroups("Motors[*].Speed Grid[1,3]@ 100 deadband=1.5% silence=0.5 ; Setpoint @250 deadband=2;");
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0].patterns, (std::vector<std::string>{"Motors[*].Speed", "Grid[1,3]"}));
    EXPECT_EQ(groups[0].intervalMs, 100u);
    EXPECT_TRUE(groups[0].isPercent);
    EXPECT_EQ(groups[0].deadBand, 1.5);
    EXPECT_EQ(groups[0].silenceMs, 500u);
    EXPECT_EQ(groups[1].intervalMs, 250u);
    EXPECT_FALSE(groups[1].isPercent);
    for (const char* text : {"Speed", "@ 100", "Speed @", "Speed @ 0", "Speed @ 100ms", "Speed @ 100 deadband",
                             "Speed @ 100 deadband=-1", "Speed @ 100 dedband=1", "Speed @ 100 silence=0"})
        EXPECT_THROW(parsePollGroups(text), std::invalid_argument) << text;
}

TEST(Change_Filters, letThroughWhatCounts) {
    struct {
        const char* rules;
        Value value;
        std::uint64_t ms;
        bool isPublished;
    } const rows[] = {
        {"A @ 10", Value(100), 5, false},
        {"A @ 10", Value(101), 5, true},
        {"A @ 10", Value("on"), 5, true},
        {"A @ 10", Value(), 5, true},
        {"A @ 10 deadband=2", Value(102), 5, false},
        {"A @ 10 deadband=2", Value(97), 5, true},
        {"A @ 10 deadband=5%", Value(105), 5, false},
        {"A @ 10 deadband=5%", Value(106), 5, true},
        {"A @ 10 deadband=5%", Value::number("nan"), 5, true},
        {"A @ 10 silence=1", Value(100), 999, false},
        {"A @ 10 silence=1", Value(100), 1000, true},
    };
    for (const auto& row : rows) {
        const std::vector<Poll_Group> groups = parsePollGroups(row.rules);
        Change_Filter filter(groups[0]);
        EXPECT_TRUE(filter.take(Value(100), 0));
        EXPECT_EQ(filter.isDue(row.ms), row.ms >= 10) << row.ms;
        EXPECT_EQ(filter.take(row.value, row.ms), row.isPublished) << row.rules << " " << row.value.shown();
    }
}

// Small steps add up: what counts is the distance from the value that was published.
TEST(Change_Filters, doNotCreep) {
    const std::vector<Poll_Group> groups = parsePollGroups("A @ 10 deadband=2");
    Change_Filter filter(groups[0]);
    std::string published;
    for (int value = 100; value < 107; ++value)
        published += filter.take(Value(value), 0) ? "x" : ".";
    EXPECT_EQ(published, "x..x..x");
}

}  // namespace
}  // namespace vornex::edge
