#include "Process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>

#include <gtest/gtest.h>

extern char** environ;

namespace vornex::test {
namespace {

struct Pipe {
    int ends[2] = {-1, -1};
    Pipe() {
        if (::pipe2(ends, O_CLOEXEC) != 0) std::abort();
    }
};

void close(int& descriptor) {
    if (descriptor >= 0) ::close(descriptor);
    descriptor = -1;
}

}  // namespace

double clockMs() {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Process::Process(std::vector<std::string> command) {
    std::signal(SIGPIPE, SIG_IGN);
    std::vector<char*> argv;
    for (std::string& argument : command)
        argv.push_back(&argument[0]);
    argv.push_back(nullptr);
    const Pipe in, out, err;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in.ends[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out.ends[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err.ends[1], 2);
    // this process ignores a closed pipe, the program must not
    posix_spawnattr_t attributes;
    sigset_t usual;
    sigemptyset(&usual);
    sigaddset(&usual, SIGPIPE);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    if (::posix_spawn(&pid, argv[0], &actions, &attributes, argv.data(), environ) != 0) pid = -1;
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    for (const int theirs : {in.ends[0], out.ends[1], err.ends[1]})
        ::close(theirs);
    input = in.ends[1];
    outputs[0] = out.ends[0];
    outputs[1] = err.ends[0];
}

Process::~Process() {
    finish();
    close(input);
}

void Process::signal(int number) const {
    if (pid > 0) ::kill(pid, number);
}

// Waits for either output and takes what is there. False when both are at their end, or nothing comes in time.
bool Process::readMore(double until) {
    const double left = until - clockMs();
    if (left <= 0 || (outputs[0] < 0 && outputs[1] < 0)) return false;
    pollfd waits[] = {{outputs[0], POLLIN, 0}, {outputs[1], POLLIN, 0}};
    if (::poll(waits, 2, static_cast<int>(left) + 1) < 0) return errno == EINTR;
    for (int i = 0; i < 2; ++i) {
        if (waits[i].revents == 0) continue;
        char bytes[4096];
        const ssize_t got = ::read(outputs[i], bytes, sizeof bytes);
        if (got > 0) (i == 0 ? rest : errors).append(bytes, static_cast<std::size_t>(got));
        if (got <= 0) close(outputs[i]);
    }
    return true;
}

void Process::writeLine(const std::string& line) {
    const std::string text = line + "\n";
    EXPECT_EQ(::write(input, text.data(), text.size()), static_cast<ssize_t>(text.size())) << "not written: " << line;
}

bool Process::nextLine(std::string& line, int patience) {
    const double until = clockMs() + patience;
    while (rest.find('\n') == std::string::npos && outputs[0] >= 0 && readMore(until)) {
    }
    const std::size_t end = rest.find('\n');
    line = rest.substr(0, end);
    const bool found = !rest.empty();
    rest.erase(0, end == std::string::npos ? end : end + 1);
    return found;
}

std::string Process::readLine() {
    std::string line;
    nextLine(line);
    return line;
}

void Process::waitForLog(const std::string& text) {
    const double until = clockMs() + WaitLimit;
    while (errors.find(text) == std::string::npos && outputs[1] >= 0 && readMore(until)) {
    }
    EXPECT_NE(errors.find(text), std::string::npos) << "'" << text << "' is not in the log:\n" << errors;
}

bool Process::ended(int patience) {
    const double until = clockMs() + patience;
    while (readMore(until)) {
    }
    return outputs[0] < 0 && outputs[1] < 0;
}

int Process::finish(bool terminate, int patience) {
    if (pid < 0) return -1;
    if (terminate) signal(SIGTERM);
    const double until = clockMs() + patience;
    while (readMore(until)) {
    }
    if (clockMs() >= until) signal(SIGKILL);  // it hangs: this must not
    int status = 0;
    ::waitpid(pid, &status, 0);
    pid = -1;
    for (int& output : outputs)
        close(output);
    killer = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Outcome runCommand(const std::string& folder, const std::string& command, const On_Line& onLine) {
    // timeout passes signals on; 2>&1 first, because the command may send standard output elsewhere
    Process process({"/bin/sh", "-c", "cd '" + folder + "' && exec 2>&1 timeout -k 5 60 " + command});
    Outcome outcome;
    for (std::string line; process.nextLine(line, 70000);) {
        outcome.text += line + "\n";
        if (onLine) onLine(line, process.id());
    }
    outcome.code = process.finish(false);
    return outcome;
}

}  // namespace vornex::test
