// bench against a simulator that counts for itself.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "Sim_Process.h"
#include "Tool_Run.h"

namespace vornex::test {
namespace {

// What bench tells of the size it recommends is what the controller sees with that size, and no other is clearly
// better.
TEST(Bench, recommendsTheSizeThatTheLinkCarriesBest) {
    Sim_Process slow({"-l", PLANT, "-q", "--fault", "delay(5)"});
    const Outcome outcome = run("bench '*' -d 0.4 -o json" + on(slow.port()));
    EXPECT_EQ(outcome.code, 0) << outcome.text;
    std::vector<nlohmann::json> rows;
    std::istringstream lines(outcome.text);
    for (std::string line; std::getline(lines, line);)
        rows.push_back(nlohmann::json::parse(line));
    ASSERT_EQ(rows.size(), 6u) << outcome.text;
    const nlohmann::json& taken = rows.back();
    EXPECT_NE(taken["reason"].get<std::string>().find(" rounds a second"), std::string::npos);
    EXPECT_EQ(taken["bytesWanted"], 713);
    // each exchange takes as long as the other; one more in a trial's sixty rounds, a retry or the first one, is chance
    for (const nlohmann::json& row : rows)
        EXPECT_LE(taken["exchangesPerRound"].get<double>(), row["exchangesPerRound"].get<double>() + 0.06) << row;
    Sim_Process sim({"-l", PLANT, "-q", "-o", "json"});
    const double rounds = 20;
    run("stats '*' -q -n 20 -m " + taken["bytesPerRequest"].dump() + on(sim.port()));
    EXPECT_EQ(sim.finish(), 0);
    EXPECT_NEAR(static_cast<double>(sim.counted("reads")) / rounds, taken["exchangesPerRound"].get<double>(), 0.06);
    EXPECT_NEAR(static_cast<double>(sim.counted("bytesRead")) / rounds, taken["dataBytesPerRound"].get<double>(), 50);
    EXPECT_NEAR(static_cast<double>(sim.counted("items")) / rounds, taken["requestsPerRound"].get<double>(), 0.7);
}

}  // namespace
}  // namespace vornex::test
