#include "Sim_Process.h"

#include <cstdlib>

namespace vornex::test {
namespace {

std::vector<std::string> commandOf(std::vector<std::string> arguments, int port) {
    arguments.insert(arguments.begin(), {VORNEX_SIM, "-p", std::to_string(port)});
    return arguments;
}

}  // namespace

Sim_Process::Sim_Process(std::vector<std::string> arguments, int wantedPort)
    : Process(commandOf(std::move(arguments), wantedPort)) {
    const std::string line = readLine();
    const std::string start = "listening 127.0.0.1:";
    if (line.compare(0, start.size(), start) == 0) portNumber = std::atoi(line.c_str() + start.size());
}

long Sim_Process::counted(const std::string& key) const {
    const std::string json = summary();
    const std::size_t at = json.find("\"" + key + "\":");
    return at == std::string::npos ? -1 : std::atol(json.c_str() + at + key.size() + 3);
}

}  // namespace vornex::test
