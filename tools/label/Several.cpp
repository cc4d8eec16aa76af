#include "label/Several.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <deque>

#include "cli/Defaults.h"
#include "label/Signal_Watch.h"

extern char** environ;

namespace vornex {

namespace {

using Clock = std::chrono::steady_clock;

const int PollStep = 100;                 // ms; how soon Ctrl-C is noticed
const std::chrono::seconds Patience{10};  // of a process that was told to end

// One process of this program, and the lines that it prints.
class Child {
public:
    Child(const std::string& controller, char** argv) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) throw Tool_Error(Exit_Code::Output, std::strerror(errno));
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        std::string variable = std::string(ControllerVariable) + "=" + controller;
        std::vector<char*> environment;
        for (char** entry = environ; *entry; ++entry)
            environment.push_back(*entry);
        environment.push_back(&variable[0]);
        environment.push_back(nullptr);
        const int failed = posix_spawn(&id, "/proc/self/exe", &actions, nullptr, argv, environment.data());
        posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
        output = ends[0];
        if (failed == 0) return;
        ::close(output);
        throw Tool_Error(Exit_Code::Output, "no process for '" + controller + "': " + std::strerror(failed));
    }
    ~Child() {
        if (output >= 0) ::close(output);
        end(SIGTERM);
        finish(Clock::now() + Patience);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void end(int number) const {
        if (id > 0) kill(id, number);
    }
    int descriptor() const { return output; }

    // What can be read now, and the whole lines in it. At the end of its output the descriptor is closed.
    std::string lines() {
        char piece[65536];
        const ssize_t got = read(output, piece, sizeof piece);
        if (got < 0) return "";
        if (got == 0) {
            ::close(output);
            output = -1;
            if (!rest.empty()) rest += '\n';
        }
        rest.append(piece, static_cast<std::size_t>(got));
        const std::size_t length = rest.rfind('\n') + 1;
        std::string whole = rest.substr(0, length);
        rest.erase(0, length);
        return whole;
    }

    // Its exit code; -1 when a signal ended it, ours included when it does not end in time.
    int finish(Clock::time_point deadline) {
        int status = 0;
        while (id > 0 && waitpid(id, &status, WNOHANG) == 0) {
            if (Clock::now() >= deadline) end(SIGKILL);
            poll(nullptr, 0, 10);
        }
        if (id > 0) code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        id = -1;
        return code;
    }

private:
    pid_t id = -1;
    int output = -1;
    int code = -1;
    std::string rest;  // of a line that is not whole yet
};

// The lines without headings of CSV that have been printed already.
std::string withoutHeadings(const std::string& lines, std::string& heading) {
    const std::string first = std::string(key::controller.name) + ",";
    std::string text;
    for (std::size_t at = 0; at < lines.size();) {
        const std::size_t end = lines.find('\n', at) + 1;
        const std::string line = lines.substr(at, end - at);
        at = end;
        const bool isHeading = line.compare(0, first.size(), first) == 0;
        if (!isHeading || line != heading) text += line;
        if (isHeading) heading = line;
    }
    return text;
}

void join(Tool& tool, std::deque<Child>& children, const std::atomic<bool>& interrupted) {
    std::string heading;
    std::optional<Clock::time_point> deadline;
    for (;;) {
        std::vector<pollfd> waiting;
        waiting.reserve(children.size());
        for (const Child& child : children) {
            waiting.push_back({child.descriptor(), POLLIN, 0});  // a negative one is passed over
        }
        const auto isOpen = [](const pollfd& one) { return one.fd >= 0; };
        if (std::none_of(waiting.begin(), waiting.end(), isOpen)) return;
        poll(waiting.data(), waiting.size(), PollStep);
        if (interrupted && !deadline) {
            deadline = Clock::now() + Patience;
            for (const Child& child : children)
                child.end(SIGTERM);
        }
        if (deadline && Clock::now() > *deadline) return;
        for (std::size_t i = 0; i < waiting.size(); ++i) {
            if (waiting[i].revents == 0) continue;
            const std::string lines = children[i].lines();
            const bool isCsv = tool.out.format == Output::Format::Csv;
            tool.out.block(isCsv ? withoutHeadings(lines, heading) : lines);
        }
        tool.out.flush();
    }
}

}  // namespace

Exit_Code runForEach(Tool& tool, const std::vector<std::string>& controllers, char** argv) {
    std::atomic<bool> interrupted{false};
    std::deque<Child> children;
    const Signal_Watch signals([&interrupted] { interrupted = true; });
    for (const std::string& controller : controllers)
        children.emplace_back(controller, argv);
    join(tool, children, interrupted);
    Exit_Code worst = Exit_Code::Ok;
    for (std::size_t i = 0; i < children.size(); ++i) {
        const int code = children[i].finish(Clock::now() + Patience);
        if (code < 0) tool.out.error("the process for '" + controllers[i] + "' did not end by itself");
        if (worst == Exit_Code::Ok) worst = code < 0 ? Exit_Code::GaveUp : static_cast<Exit_Code>(code);
    }
    return interrupted ? Exit_Code::Interrupted : worst;
}

void endWithParent() { prctl(PR_SET_PDEATHSIG, SIGTERM); }

}  // namespace vornex
