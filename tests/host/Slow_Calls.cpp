// Preloaded into a tool: system calls that take longer than anybody expects, as on a machine that stands still.
//   SLOW_SEND=N,MS    the Nth send returns MS milliseconds late
//   SLOW_LOOK_UP=MS   so does every name look-up, which then fails
//   SLOW_RENAME=MS    a file takes its new name so much later; "standing still" on standard error tells that it begins
#include <dlfcn.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

void standStill(long ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

}  // namespace

extern "C" ssize_t send(int socket, const void* bytes, size_t size, int flags) {
    using Send = ssize_t (*)(int, const void*, size_t, int);
    static const Send real = reinterpret_cast<Send>(dlsym(RTLD_NEXT, "send"));
    static std::atomic<long> calls{0};
    const ssize_t sent = real(socket, bytes, size, flags);
    const char* const plan = std::getenv("SLOW_SEND");
    char* rest = nullptr;
    if (plan && ++calls == std::strtol(plan, &rest, 10) && *rest == ',') standStill(std::atol(rest + 1));
    return sent;
}

extern "C" int rename(const char* from, const char* to) {
    using Rename = int (*)(const char*, const char*);
    static const Rename real = reinterpret_cast<Rename>(dlsym(RTLD_NEXT, "rename"));
    if (const char* const ms = std::getenv("SLOW_RENAME")) {
        if (write(STDERR_FILENO, "standing still\n", 15) == 15) standStill(std::atol(ms));
    }
    return real(from, to);
}

extern "C" int getaddrinfo(const char* host, const char* service, const addrinfo* wanted, addrinfo** found) {
    using Look_Up = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
    static const Look_Up real = reinterpret_cast<Look_Up>(dlsym(RTLD_NEXT, "getaddrinfo"));
    const char* const ms = std::getenv("SLOW_LOOK_UP");
    // what is no name needs no name server
    if (!ms || (wanted && (wanted->ai_flags & AI_NUMERICHOST))) return real(host, service, wanted, found);
    standStill(std::atol(ms));
    return EAI_AGAIN;
}
