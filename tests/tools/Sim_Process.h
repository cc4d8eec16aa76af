// A simulator of its own for a test, and a client that knows nothing but bytes. Every wait ends after WaitLimit ms.
#ifndef VORNEX_TESTS_SIM_PROCESS_H
#define VORNEX_TESTS_SIM_PROCESS_H

#include <string>
#include <vector>

namespace vornex::test {

constexpr int WaitLimit = 20000;

// Milliseconds of a clock that only goes forward.
double clockMs();

class Sim_Process {
public:
    // Starts it with these arguments on this port, 0: a free one, and waits for it. port() is 0 when it ended instead.
    explicit Sim_Process(std::vector<std::string> arguments, int wantedPort = 0);
    ~Sim_Process();
    Sim_Process(const Sim_Process&) = delete;
    Sim_Process& operator=(const Sim_Process&) = delete;

    int port() const { return portNumber; }
    void signal(int number) const;
    void writeLine(const std::string& line);   // to its standard input
    std::string readLine();                    // of its standard output, without the line end
    void waitForLog(const std::string& text);  // until it stands in its standard error
    // Sends SIGTERM unless it ended by itself, takes the rest of both outputs, returns the exit code; -1 when it
    // crashed.
    int finish(bool terminate = true);
    // After finish: the summary, which stands last.
    std::string summary() const { return rest; }
    std::string log() const { return errors; }

private:
    bool readMore(int& descriptor, std::string& buffer, double until);

    int pid = -1;
    int input = -1;
    int output = -1;
    int error = -1;
    int portNumber = 0;
    std::string rest;
    std::string errors;
};

class Raw_Client {
public:
    enum class End { Open, Closed, Reset };

    explicit Raw_Client(int port);
    ~Raw_Client();
    Raw_Client(const Raw_Client&) = delete;
    Raw_Client& operator=(const Raw_Client&) = delete;

    bool isConnected() const { return connected; }
    void send(const std::string& hex);
    // Exactly so many bytes as hex, fewer when the connection ends before.
    std::string receive(std::size_t bytes);
    // What the connection's end looks like; waits for it.
    End waitForEnd();

private:
    int socket = -1;
    bool connected = false;
    End end = End::Open;
};

}  // namespace vornex::test

#endif
