// One way of fetching a block of controller data over TCP, as the loopback benchmark measures it.
#ifndef VORNEX_BENCH_LOOPBACK_CONTENDER_H
#define VORNEX_BENCH_LOOPBACK_CONTENDER_H

#include <memory>
#include <string>

class Contender {
public:
    virtual ~Contender() {}
    // Payload bytes that one exchange brings.
    virtual int bytes() const = 0;
    // Sends a request, waits for its reply, and so on, strictly in turn. Ends the program when one fails.
    virtual void exchange(int times) = 0;
};

// Each connects to a server on this port of the loopback interface.
std::unique_ptr<Contender> makeDriverHost(const char* library, int port);  // a host with the real library, by dlopen
std::unique_ptr<Contender> makePingPong(int port);  // the same bytes to and fro, and nothing done with them
// The floor: the same bytes to and fro, with the check values of both frames, by the library's own function, and one
// plain find in the image's hash for each byte. The image's type allows no less.
std::unique_ptr<Contender> makeFloor(const char* library, int port);
std::unique_ptr<Contender> makeModbus(int port);     // libmodbus, 125 registers
std::unique_ptr<Contender> makeSerialBus(int port);  // Qt SerialBus, 125 registers

enum {
    BlockBytes = 999,   // one full group of the label protocol
    RequestBytes = 12,  // of both protocols
    ReplyBytes = 6 + 2 + BlockBytes,
    Registers = 125,  // the most that one Modbus request reads
    ModbusReplyBytes = 9 + 2 * Registers,
};

// Says what failed and ends the program.
[[noreturn]] void fail(const std::string& what);

#endif
