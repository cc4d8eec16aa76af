// The example in examples/ does what its comments say, against a simulator of its own.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "Sim_Process.h"

namespace vornex::test {
namespace {

TEST(Minimal_Host, pollsAndWrites) {
    // the second reply is lost: the example has to connect again and send once more
    Sim_Process sim({"-l", EXAMPLES_DIR "/plant.json", "--fault", "drop@n=2"});
    ASSERT_NE(sim.port(), 0);
    const std::string command = HOST " " LIBRARY " " + std::to_string(sim.port()) + " 2>&1";
    FILE* const pipe = popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    char text[4096] = {};
    const std::size_t got = fread(text, 1, sizeof text - 1, pipe);
    EXPECT_EQ(pclose(pipe), 0) << text;
    EXPECT_NE(std::string(text, got).find("Speed = "), std::string::npos) << text;
    EXPECT_NE(std::string(text, got).find("Setpoint = 1234\n"), std::string::npos) << text;
    EXPECT_EQ(sim.finish(), 0);
    EXPECT_NE(sim.summary().find("drop"), std::string::npos) << sim.summary();
}

}  // namespace
}  // namespace vornex::test
