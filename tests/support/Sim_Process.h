// A simulator of its own for a test.
#ifndef VORNEX_TESTS_SIM_PROCESS_H
#define VORNEX_TESTS_SIM_PROCESS_H

#include "Process.h"

namespace vornex::test {

class Sim_Process : public Process {
public:
    // Starts it with these arguments on this port, 0: a free one, and waits for it. port() is 0 when it ended instead.
    explicit Sim_Process(std::vector<std::string> arguments, int wantedPort = 0);

    int port() const { return portNumber; }
    // After finish: the summary, which stands last.
    std::string summary() const { return output(); }
    // The number behind a key of a summary in JSON, -1 when there is none.
    long counted(const std::string& key) const;

private:
    int portNumber = 0;
};

}  // namespace vornex::test

#endif
