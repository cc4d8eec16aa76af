// A client of the simulator that knows nothing but bytes, and the frames it sends.
#ifndef VORNEX_TESTS_SIM_CLIENT_H
#define VORNEX_TESTS_SIM_CLIENT_H

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Sim_Process.h"
#include "Tcp_Client.h"
#include "Test_Bytes.h"

namespace vornex::test {

using End = Tcp_Client::End;

// A client that speaks hex.
class Hex_Client : public Tcp_Client {
public:
    using Tcp_Client::Tcp_Client;
    void send(const std::string& hex) { Tcp_Client::send(bytesOf(hex)); }
    std::string receive(std::size_t bytes) { return hexOf(Tcp_Client::receive(bytes)); }
};

// Frames and answers with check values made by another program.
constexpr const char* Write = "02 0A 00 40 00 10 00 00 04 00 11 22 33 44 E7 BB";  // 11 22 33 44 to 4096
constexpr const char* Ack = "02 00 00 40 AC A5";
constexpr const char* Read = "02 06 00 41 00 10 00 00 04 00 11 29";  // 4 bytes from 4096
constexpr const char* Answer = "02 06 00 41 04 00 11 22 33 44 1D 3A";
constexpr const char* ReadTwo = "02 0C 00 41 00 10 00 00 01 00 01 10 00 00 03 00 6A E5";  // 1 from 4096, 3 from 4097
constexpr const char* AnswerTwo = "02 08 00 41 01 00 11 03 00 22 33 44 9B 56";

inline std::size_t bytesIn(const std::string& hex) { return (hex.size() + 1) / 3; }

// Writes the bytes that the answers above hold.
inline void fill(Hex_Client& client) {
    ASSERT_TRUE(client.isConnected());
    client.send(Write);
    ASSERT_EQ(client.receive(bytesIn(Ack)), Ack);
}

// A path for a control socket that no other test uses.
inline std::string controlPath() { return ::testing::TempDir() + "vornex-sim-test." + std::to_string(::getpid()); }

// A peer of the control socket.
class Control_Client {
public:
    explicit Control_Client(const std::string& path) : socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        const timeval patience = {WaitLimit / 1000, 0};
        ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        connected = ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }
    ~Control_Client() { ::close(socket); }
    Control_Client(const Control_Client&) = delete;
    Control_Client& operator=(const Control_Client&) = delete;

    bool isConnected() const { return connected; }
    bool send(const std::string& lines) {
        return ::send(socket, lines.data(), lines.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(lines.size());
    }
    // Without the line end; less when the connection ends before, or nothing comes.
    std::string readLine() {
        std::string line;
        for (char letter; ::recv(socket, &letter, 1, 0) == 1 && letter != '\n';)
            line += letter;
        return line;
    }

private:
    int socket;
    bool connected = false;
};

}  // namespace vornex::test

#endif
