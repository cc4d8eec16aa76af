#include "Bash_Terminal.h"

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace vornex::test {

namespace {

const int WaitLimit = 20000;
const char Begin[] = "[[[", End[] = "]]]";

}  // namespace

Bash_Terminal::Bash_Terminal(const std::string& folder, const std::string& path) {
    winsize size = {50, 200, 0, 0};
    process = forkpty(&terminal, nullptr, nullptr, &size);
    if (process == 0) {
        const std::string search = path + ":" + std::getenv("PATH");
        setenv("PATH", search.c_str(), 1);
        setenv("HOME", folder.c_str(), 1);
        setenv("TERM", "dumb", 1);
        setenv("INPUTRC", "/dev/null", 1);
        if (chdir(folder.c_str()) == 0) execlp("bash", "bash", "--norc", "--noprofile", "-i", nullptr);
        _exit(127);
    }
    // The marks are put together by bash: those that the terminal echoes differ.
    run("bind 'set bell-style none'; bind 'set completion-query-items 100000'; bind 'set page-completions off'");
    run("show() { printf '\\n[%s%s]%s\\n' '[[' \"$READLINE_LINE\" ']]'; }; bind -x '\"\\C-g\": show'");
}

Bash_Terminal::~Bash_Terminal() {
    kill(process, SIGKILL);
    close(terminal);
    waitpid(process, nullptr, 0);
}

std::string Bash_Terminal::run(const std::string& command) {
    type(command + "; echo ']]''] done'\n");
    return readUntil("]]] done");
}

std::string Bash_Terminal::lineAfter(const std::string& keys) {
    type(keys + "\x07");
    shown = readUntil(End);
    const std::size_t begin = shown.rfind(Begin);
    const std::size_t end = shown.rfind(End);
    type("\x01\x0b");  // Ctrl-A, Ctrl-K
    return begin < end ? shown.substr(begin + 3, end - begin - 3) : "(no line) " + shown;
}

void Bash_Terminal::type(const std::string& keys) {
    std::size_t done = 0;
    while (done < keys.size()) {
        const ssize_t put = write(terminal, keys.data() + done, keys.size() - done);
        if (put <= 0) return;
        done += static_cast<std::size_t>(put);
    }
}

std::string Bash_Terminal::readUntil(const std::string& mark) {
    std::string text;
    pollfd waiting = {terminal, POLLIN, 0};
    while (text.find(mark) == std::string::npos && poll(&waiting, 1, WaitLimit) > 0) {
        char part[4096];
        const ssize_t got = read(terminal, part, sizeof part);
        if (got <= 0) break;
        text.append(part, static_cast<std::size_t>(got));
    }
    return text;
}

}  // namespace vornex::test
