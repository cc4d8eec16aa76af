// Socket files of programs that ended without removing them.
#ifndef VORNEX_SIM_NET_DEAD_SOCKET_H
#define VORNEX_SIM_NET_DEAD_SOCKET_H

#include <cstdint>
#include <string>
#include <utility>

namespace vornex::sim {

// While it is held nobody else who heeds it makes or removes a socket in the folder of `path`. Waits up to a second.
class Folder_Lock {
public:
    explicit Folder_Lock(const std::string& path);
    ~Folder_Lock();
    Folder_Lock(const Folder_Lock&) = delete;
    Folder_Lock& operator=(const Folder_Lock&) = delete;
    bool isHeld() const { return held; }

private:
    int folder = -1;
    bool held = false;
};

// Removes the file when it is a socket that nobody listens behind. Gives nothing then, else the reason to leave it: it
// is something else, or alive, or cannot be asked.
std::string removeDeadSocket(const std::string& path);

// Device and number of the file, not of what a link leads to; zeros when there is none.
std::pair<std::uint64_t, std::uint64_t> fileNumber(const std::string& path);

}  // namespace vornex::sim

#endif
