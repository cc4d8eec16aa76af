#include "Sim_Process.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>

extern char** environ;

namespace vornex::test {
namespace {

struct Pipe {
    int ends[2] = {-1, -1};
    Pipe() {
        if (::pipe2(ends, O_CLOEXEC) != 0) std::abort();
    }
};

bool waitReadable(int descriptor, double until) {
    for (;;) {
        const double left = until - clockMs();
        if (left <= 0) return false;
        pollfd wait = {descriptor, POLLIN, 0};
        const int ready = ::poll(&wait, 1, static_cast<int>(left) + 1);
        if (ready > 0) return true;
        if (ready < 0 && errno != EINTR) return false;
    }
}

int digitOf(char c) { return c <= '9' ? c - '0' : c - 'a' + 10; }

}  // namespace

double clockMs() {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Sim_Process::Sim_Process(std::vector<std::string> arguments, int wantedPort) {
    std::signal(SIGPIPE, SIG_IGN);
    arguments.insert(arguments.begin(), {VORNEX_SIM, "-p", std::to_string(wantedPort)});
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(&argument[0]);
    argv.push_back(nullptr);
    const Pipe in, out, err;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in.ends[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out.ends[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err.ends[1], 2);
    if (::posix_spawn(&pid, VORNEX_SIM, &actions, nullptr, argv.data(), environ) != 0) pid = -1;
    posix_spawn_file_actions_destroy(&actions);
    for (const int theirs : {in.ends[0], out.ends[1], err.ends[1]})
        ::close(theirs);
    input = in.ends[1];
    output = out.ends[0];
    error = err.ends[0];
    const std::string line = readLine();
    const std::string start = "listening 127.0.0.1:";
    if (line.compare(0, start.size(), start) == 0) portNumber = std::atoi(line.c_str() + start.size());
}

Sim_Process::~Sim_Process() {
    finish();
    ::close(input);
}

void Sim_Process::signal(int number) const {
    if (pid > 0) ::kill(pid, number);
}

bool Sim_Process::readMore(int& descriptor, std::string& buffer, double until) {
    char bytes[4096];
    if (descriptor < 0 || !waitReadable(descriptor, until)) return false;
    const ssize_t got = ::read(descriptor, bytes, sizeof bytes);
    if (got > 0) buffer.append(bytes, static_cast<std::size_t>(got));
    return got > 0;
}

void Sim_Process::writeLine(const std::string& line) {
    const std::string text = line + "\n";
    if (::write(input, text.data(), text.size()) != static_cast<ssize_t>(text.size())) portNumber = 0;
}

std::string Sim_Process::readLine() {
    const double until = clockMs() + WaitLimit;
    while (rest.find('\n') == std::string::npos && readMore(output, rest, until)) {
    }
    const std::size_t end = rest.find('\n');
    const std::string line = rest.substr(0, end);
    rest.erase(0, end == std::string::npos ? end : end + 1);
    return line;
}

void Sim_Process::waitForLog(const std::string& text) {
    const double until = clockMs() + WaitLimit;
    while (errors.find(text) == std::string::npos && readMore(error, errors, until)) {
    }
}

int Sim_Process::finish(bool terminate) {
    if (pid < 0) return -1;
    if (terminate) signal(SIGTERM);
    const double until = clockMs() + WaitLimit;
    while (readMore(output, rest, until)) {
    }
    while (readMore(error, errors, until)) {
    }
    if (clockMs() >= until) ::kill(pid, SIGKILL);  // it hangs: this must not
    int status = 0;
    ::waitpid(pid, &status, 0);
    pid = -1;
    ::close(output);
    ::close(error);
    output = error = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Raw_Client::Raw_Client(int port) {
    socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    connected = ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

Raw_Client::~Raw_Client() { ::close(socket); }

void Raw_Client::send(const std::string& hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 3) {
        bytes += static_cast<char>(digitOf(hex[i]) * 16 + digitOf(hex[i + 1]));
    }
    if (::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) < 0) end = End::Reset;
}

std::string Raw_Client::receive(std::size_t bytes) {
    const double until = clockMs() + WaitLimit;
    std::string hex;
    for (std::size_t got = 0; got < bytes && waitReadable(socket, until); ++got) {
        unsigned char byte = 0;
        const ssize_t result = ::recv(socket, &byte, 1, 0);
        if (result <= 0) {
            end = result == 0 ? End::Closed : End::Reset;
            break;
        }
        hex += got ? " " : "";
        hex += "0123456789abcdef"[byte >> 4];
        hex += "0123456789abcdef"[byte & 15];
    }
    return hex;
}

Raw_Client::End Raw_Client::waitForEnd() {
    if (end == End::Open && !receive(1).empty()) return End::Open;
    return end;
}

}  // namespace vornex::test
