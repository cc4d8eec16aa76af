// A port of this machine with somebody behind it who is no controller.
#ifndef VORNEX_TESTS_LISTENER_H
#define VORNEX_TESTS_LISTENER_H

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace vornex::test {

class Listener {
public:
    // Connections come about, and nobody answers. `waiting`: how many may wait to be taken.
    explicit Listener(int waiting = 16);
    // Each connection is taken and given to `serve`, with its number from 1 on, one after the other; then it is closed.
    using Serve = std::function<void(int socket, int number)>;
    explicit Listener(Serve serve);
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    int port() const { return portNumber; }
    int connections() const { return taken; }
    // Takes every place where a connection could wait: the next one comes about for nobody, and is not refused.
    void fill();

private:
    void open(int waiting);

    int socket = -1;
    int portNumber = 0;
    std::vector<int> fillers;
    std::atomic<int> taken{0};
    std::thread thread;
};

// What comes within WaitLimit ms, at least `bytes`; less when the peer closes before.
std::string receiveFrom(int socket, std::size_t bytes);
void sendTo(int socket, const std::string& bytes);
// Until the peer has closed.
void waitForClose(int socket);

}  // namespace vornex::test

#endif
