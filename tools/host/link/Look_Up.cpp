#include "host/link/Look_Up.h"

#include <netdb.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <thread>

namespace vornex {

namespace {

int ask(const Host_Port& target, int flags, std::vector<Socket_Address>& found) {
    addrinfo wanted = {};
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = flags | AI_NUMERICSERV;
    addrinfo* list = nullptr;
    const int error = ::getaddrinfo(target.host.c_str(), std::to_string(target.port).c_str(), &wanted, &list);
    for (const addrinfo* each = error == 0 ? list : nullptr; each; each = each->ai_next) {
        Socket_Address address = {};
        address.size = each->ai_addrlen;
        std::memcpy(&address.bytes, each->ai_addr, each->ai_addrlen);
        found.push_back(address);
    }
    if (error == 0) ::freeaddrinfo(list);
    return error;
}

}  // namespace

// Belongs to the look-up's thread until `finished` is readable, and lives as long as either side needs it.
struct Look_Up::Request {
    Host_Port target;
    std::vector<Socket_Address> found;
    std::string reason;
    Descriptor finished{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};

    void run() {
        const int error = ask(target, 0, found);
        if (error != 0) {
            reason = "the name '" + target.host +
                     "' cannot be looked up: " + (error == EAI_SYSTEM ? std::strerror(errno) : ::gai_strerror(error));
        }
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t told = ::write(finished.get(), &one, sizeof one);  // nothing to fail
    }
};

std::string Look_Up::find(const Host_Port& target, Steady_Time deadline, Wait_Point& wait,
                          std::vector<Socket_Address>& found) {
    if (ask(target, AI_NUMERICHOST, found) == 0) return {};
    if (!running || running->target.host != target.host || running->target.port != target.port) {
        running = std::make_shared<Request>();
        running->target = target;
        if (!running->finished.isOpen()) return running = nullptr, "no descriptor is left to look up a name";
        try {
            std::thread([request = running] { request->run(); }).detach();
        } catch (const std::system_error&) {
            return running = nullptr, "no thread is left to look up a name";
        }
    }
    const Wait_End end = wait.through(deadline, running->finished.get(), POLLIN);
    if (end == Wait_End::Stopped) return "interrupted";
    if (end == Wait_End::TimedOut) return "the name '" + target.host + "' is still being looked up";
    found = running->found;
    std::string reason = running->reason;
    running = nullptr;
    return reason;
}

}  // namespace vornex
