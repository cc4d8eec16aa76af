// Writes the data image through the driver, under its lock, and looks at it from another thread without the lock.
#include <atomic>
#include <thread>

#include "driver/Communication_Protocol.h"
#include "protocol/Func_DealData.h"

int main() {
    std::atomic<bool> written{false};
    RW_VAR request;
    request.address = 0x100;
    request.length = 4;
    unsigned char seen = 1;
    std::thread careless([&written, &seen] {
        // Relaxed: the wait orders the two accesses in time, but is no lock for either.
        while (!written.load(std::memory_order_relaxed))
            std::this_thread::yield();
        seen = PLC_driver.dataImage.value(0x100);
    });
    WriteDataToLocal(&request);
    written.store(true, std::memory_order_relaxed);
    careless.join();
    return seen;
}
