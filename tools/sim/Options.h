// The command line of vornex-sim.
#ifndef VORNEX_SIM_OPTIONS_H
#define VORNEX_SIM_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "sim/net/Client_Connection.h"
#include "sim/plant/Memory.h"

namespace vornex::sim {

enum class Exit_Code { Ok = 0, Usage = 1, Labels = 2, NoPort = 3, ExpectationFailed = 7, Output = 8 };

struct Options {
    std::string labels;
    bool isStrict = false;
    std::string listen = "127.0.0.1";
    std::optional<unsigned short> port;  // none: the port of the label file's target
    std::vector<std::string> faults;
    std::vector<std::string> expectations;
    std::string pattern;  // empty: off
    std::string record;   // empty: none
    double speed = 1;
    bool loops = false;
    std::string gaps = "keep";
    std::string control;  // empty: none; "-": standard input; else a path
    std::string output = "text";
    std::string logFile;  // empty: standard error
    std::uint64_t seed = 1;
    std::uint64_t memory = DefaultMemory >> 20;  // MiB
    Caps caps;
    bool quiet = false;
    bool verbose = false;
};

// Reads the command line. When that is all there is to do (--help, a mistake), says so and returns the exit code.
std::optional<int> readOptions(int argc, char** argv, Options& options);

}  // namespace vornex::sim

#endif
