// An interactive bash on a terminal of its own, typed into as a user does.
#ifndef VORNEX_TESTS_BASH_TERMINAL_H
#define VORNEX_TESTS_BASH_TERMINAL_H

#include <sys/types.h>

#include <string>

namespace vornex::test {

class Bash_Terminal {
public:
    // Its prompt shows in `folder` with `path` in front of PATH; HOME is `folder` too.
    Bash_Terminal(const std::string& folder, const std::string& path);
    ~Bash_Terminal();
    Bash_Terminal(const Bash_Terminal&) = delete;
    Bash_Terminal& operator=(const Bash_Terminal&) = delete;

    // Runs a command; what it and bash wrote until the next one could be typed.
    std::string run(const std::string& command);
    // The line as bash has it after these keys; the line is then thrown away.
    std::string lineAfter(const std::string& keys);
    // What bash wrote meanwhile.
    std::string shown;

private:
    void type(const std::string& keys);
    // What comes until `mark`, or within WaitLimit ms.
    std::string readUntil(const std::string& mark);

    int terminal = -1;
    pid_t process = -1;
};

}  // namespace vornex::test

#endif
