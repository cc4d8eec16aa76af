#include "sim/net/Dead_Socket.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <thread>

namespace vornex::sim {
namespace {

// Nobody takes connections there. A live program whose queue is full gives another error, and is not waited for.
bool refusesConnections(const std::string& path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return false;
    path.copy(address.sun_path, path.size());
    const int asking = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const int result = ::connect(asking, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    const bool refused = result != 0 && errno == ECONNREFUSED;
    ::close(asking);
    return refused;
}

}  // namespace

Folder_Lock::Folder_Lock(const std::string& path) {
    const std::string name = std::filesystem::path(path).parent_path();
    folder = ::open(name.empty() ? "." : name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return;
    for (int tries = 0; !(held = ::flock(folder, LOCK_EX | LOCK_NB) == 0) && tries < 50; ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

Folder_Lock::~Folder_Lock() {
    if (folder >= 0) ::close(folder);
}

std::string removeDeadSocket(const std::string& path) {
    struct stat found = {};
    if (::lstat(path.c_str(), &found) != 0) return std::strerror(errno);
    if (!S_ISSOCK(found.st_mode)) return "what is there is no socket";
    if (!refusesConnections(path)) return "somebody listens there";
    return ::unlink(path.c_str()) == 0 ? "" : std::strerror(errno);
}

std::pair<std::uint64_t, std::uint64_t> fileNumber(const std::string& path) {
    struct stat found = {};
    if (::lstat(path.c_str(), &found) != 0) return {0, 0};
    return {found.st_dev, found.st_ino};
}

}  // namespace vornex::sim
