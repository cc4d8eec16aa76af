#include "text/Output_File.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

namespace vornex {

namespace {

const std::size_t MuchText = 65536;
const int WaitStep = 100;  // ms; how soon stopWaiting() is noticed

std::atomic<bool> waitNoMore{false};

[[noreturn]] void unusable(const std::string& name, const std::string& reason) {
    throw Output_Error(Output_Error::Kind::Unusable, name + ": " + reason);
}

// Behind links, also behind one that leads to a file that is not there yet.
std::string behindLinks(const std::string& path) {
    std::filesystem::path at = path;
    for (int links = 0; links < 40; ++links) {
        std::error_code isNone;
        const std::filesystem::path next = std::filesystem::read_symlink(at, isNone);
        if (isNone) return at;
        at = at.parent_path() / next;
    }
    unusable(path, std::strerror(ELOOP));
}

// The checks that need no file to be made: a run ends before it begins when its output cannot be.
bool isRegularOrNew(const std::string& name, const std::string& target, const Output_Policy& policy) {
    struct stat found;
    if (stat(target.c_str(), &found) != 0) {
        if (errno != ENOENT) unusable(name, std::strerror(errno));
        const std::string folder = std::filesystem::path(target).parent_path();
        if (access(folder.empty() ? "." : folder.c_str(), W_OK) != 0)
            unusable(name, std::string("its folder: ") + std::strerror(errno));
        return true;
    }
    for (const std::string& file : policy.filesRead) {
        std::error_code isNone;
        if (std::filesystem::equivalent(file, target, isNone))
            unusable(name, "is read by this run and cannot be its output");
    }
    if (S_ISDIR(found.st_mode)) unusable(name, "is a folder");
    if (!S_ISREG(found.st_mode)) return false;
    if (policy.existing == Existing_File::Refuse) throw Output_Error(Output_Error::Kind::Exists, name + " exists");
    if (access(target.c_str(), W_OK) != 0) unusable(name, std::strerror(errno));
    return true;
}

// A new file beside `target` with the rights of the one that it is to replace. `path` takes its name.
int makeBeside(const std::string& target, std::string& path) {
    path = target + ".XXXXXX";
    const int fd = mkostemp(&path[0], O_CLOEXEC);
    struct stat old;
    if (fd < 0) return fd;
    if (stat(target.c_str(), &old) == 0) {
        (void)!fchown(fd, old.st_uid, old.st_gid);  // only root may; the file is the user's own otherwise
        fchmod(fd, old.st_mode & 07777);
    } else {
        const mode_t mask = umask(0);
        umask(mask);
        fchmod(fd, 0666 & ~mask);
    }
    return fd;
}

}  // namespace

Output_File::Output_File(const std::string& path, const Output_Policy& outputPolicy)
    : shownName(path), target(behindLinks(path)), policy(outputPolicy) {
    regular = isRegularOrNew(shownName, target, policy);
    if (regular && policy.existing == Existing_File::Append) continueOld(target);
}

Output_File::Output_File(int descriptor, std::string standardName)
    : shownName(std::move(standardName)), fd(descriptor), standard(true) {}

Output_File::~Output_File() {
    if (fd >= 0 && !standard) ::close(fd);
    if (!beside.empty()) unlink(beside.c_str());
}

void Output_File::stopWaiting() { waitNoMore = true; }

// What a file holds that is to be continued: its first line, and where its last complete line ends.
void Output_File::continueOld(const std::string& path) {
    const int old = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (old < 0) return;
    char text[4096];
    std::uint64_t at = 0;
    for (ssize_t got; (got = read(old, text, sizeof text)) > 0; at += static_cast<std::uint64_t>(got)) {
        const std::string piece(text, static_cast<std::size_t>(got));
        if (size == 0 && oldFirstLine.size() < MuchText) oldFirstLine += piece.substr(0, piece.find('\n'));
        const std::size_t end = piece.rfind('\n');
        if (end != std::string::npos) size = at + end + 1;
    }
    ::close(old);
    torn = at - size;
    if (!oldFirstLine.empty() && oldFirstLine.back() == '\r') oldFirstLine.pop_back();
}

void Output_File::open() {
    if (!regular) {
        fd = ::open(target.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    } else if (policy.existing == Existing_File::Append) {
        fd = ::open(target.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
        if (fd >= 0 && torn > 0 && ftruncate(fd, static_cast<off_t>(size)) != 0) fail(errno);
    } else if (policy.existing == Existing_File::Replace || takesNameAtEnd) {
        fd = makeBeside(target, beside);
        if (fd < 0) beside.clear();
    } else {
        fd = ::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    }
    if (fd < 0) fail(errno);
}

void Output_File::mend() {
    if (torn > 0 && fd < 0) open();
}

void Output_File::write(const std::string& text) {
    if (failed) return;
    buffer += text;
    if (buffer.size() >= MuchText) flush();
}

void Output_File::flush() {
    if (failed || buffer.empty()) return;
    if (fd < 0) open();
    while (sent < buffer.size())
        sendSome();
    lines += linesIn(0, buffer.size());
    size += buffer.size();
    buffer.clear();
    sent = 0;
    if (!takesNameAtEnd) takeName();
}

void Output_File::close() {
    flush();
    if (fd < 0 || failed) return;
    if (takesNameAtEnd && regular && fsync(fd) != 0) fail(errno);
    const int closed = ::close(std::exchange(fd, -1));
    if (closed != 0 && errno != EINTR) fail(errno);
    takeName();
}

// A name that must be free is linked, not renamed: somebody may have taken it meanwhile.
void Output_File::takeName() {
    if (beside.empty()) return;
    const bool replaces = policy.existing == Existing_File::Replace;
    const int taken = replaces ? rename(beside.c_str(), target.c_str()) : link(beside.c_str(), target.c_str());
    if (taken != 0) fail(errno);
    if (!replaces) unlink(beside.c_str());
    beside.clear();
}

// To a pipe no more than it takes at once, so that a write never waits in the kernel, where stopWaiting() does not
// reach it.
void Output_File::sendSome() {
    if (!regular) waitForReader();
    const std::size_t length = buffer.size() - sent;
    const ssize_t written =
        ::write(fd, buffer.data() + sent, regular ? length : std::min<std::size_t>(length, PIPE_BUF));
    if (written >= 0)
        sent += static_cast<std::size_t>(written);
    else if (errno != EINTR && errno != EAGAIN)
        fail(errno);
}

bool Output_File::wouldWait() const {
    pollfd ready = {fd, POLLOUT, 0};
    return !regular && fd >= 0 && poll(&ready, 1, 0) == 0;
}

void Output_File::waitForReader() {
    pollfd ready = {fd, POLLOUT, 0};
    while (poll(&ready, 1, WaitStep) == 0) {
        if (waitNoMore) fail(ETIMEDOUT);
    }
}

std::uint64_t Output_File::linesIn(std::size_t from, std::size_t to) const {
    return static_cast<std::uint64_t>(std::count(buffer.begin() + static_cast<std::ptrdiff_t>(from),
                                                 buffer.begin() + static_cast<std::ptrdiff_t>(to), '\n'));
}

// A regular file is cut back to its last complete line: what was complete stays readable.
void Output_File::fail(int error) {
    const std::size_t lastEnd = sent == 0 ? std::string::npos : buffer.rfind('\n', sent - 1);
    const std::size_t complete = lastEnd == std::string::npos ? 0 : lastEnd + 1;
    if (regular && fd >= 0 && sent > complete) (void)!ftruncate(fd, static_cast<off_t>(size + complete));
    lines += linesIn(0, complete);
    missing = linesIn(complete, buffer.size());
    failed = true;
    std::string message = shownName + ": " + (error == ETIMEDOUT ? "its reader stands still" : std::strerror(error));
    if (takesNameAtEnd) {
        message += "; nothing is written";
    } else {
        message += "; " + std::to_string(lines) + " lines are written, " + std::to_string(missing) +
                   " and what would follow are missing";
    }
    throw Output_Error(error == EPIPE ? Output_Error::Kind::ReaderGone : Output_Error::Kind::Failed, message);
}

void printText(const std::string& text) {
    Output_File out = Output_File::standardOutput();
    out.write(text);
    out.flush();
}

void writeWholeFile(const std::string& path, const std::string& text, const Output_Policy& policy) {
    Output_File file(path, policy);
    file.takeNameAtEnd();
    file.write(text);
    file.close();
}

}  // namespace vornex
