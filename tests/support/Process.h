// A program that a test starts. Every wait ends after a time.
#ifndef VORNEX_TESTS_PROCESS_H
#define VORNEX_TESTS_PROCESS_H

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace vornex::test {

constexpr int WaitLimit = 20000;  // ms

// Milliseconds of a clock that only goes forward.
double clockMs();

class Process {
public:
    // Begins with the program's path.
    explicit Process(std::vector<std::string> command);
    // Ends the program if it still runs.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    pid_t id() const { return pid; }
    void signal(int number) const;
    void writeLine(const std::string& line);  // to its standard input
    // The next line of its standard output, without the line end. False at its end, or when none comes in time.
    bool nextLine(std::string& line, int patience = WaitLimit);
    std::string readLine();                    // the same; empty when there is none
    void waitForLog(const std::string& text);  // until it stands in its standard error; fails when it never does
    // Whether both outputs are at their end, which comes with that of the program, within this time.
    bool ended(int patience);
    // Sends SIGTERM unless it is to end by itself, takes the rest of both outputs, returns the exit code; -1 when it
    // crashed or had to be killed.
    int finish(bool terminate = true, int patience = WaitLimit);
    // Standard output as far as no line was taken from it, and standard error; whole after finish().
    std::string output() const { return rest; }
    std::string log() const { return errors; }
    // The signal that ended the program, 0 when it ended by itself; known after finish().
    int endSignal() const { return killer; }

private:
    bool readMore(double until);

    pid_t pid = -1;
    int input = -1;
    int outputs[2] = {-1, -1};
    int killer = 0;
    std::string rest;
    std::string errors;
};

struct Outcome {
    int code = -1;
    std::string text;  // stdout and stderr
    bool holds(const std::string& part) const { return text.find(part) != std::string::npos; }
};

// Sees every line of the output while the program runs, and the process to signal.
using On_Line = std::function<void(const std::string& line, pid_t process)>;

// Runs one command in a folder, as a shell does. A hang is a failure, not a test that never ends: after a minute the
// program is ended, with code 124.
Outcome runCommand(const std::string& folder, const std::string& command, const On_Line& onLine = nullptr);

}  // namespace vornex::test

#endif
