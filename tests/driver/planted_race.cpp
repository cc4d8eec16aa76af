// Writes the data image through the driver, under its lock, and looks at it from another thread without the lock.
#include <atomic>
#include <thread>

#include "driver/Communication_Protocol.h"
#include "protocol/Func_DealData.h"

int main() {
    std::atomic<bool> done{false};
    RW_VAR request;
    request.address = 0x100;
    request.length = 4;
    WriteDataToLocal(&request);
    std::thread careless([&done] {
        unsigned seen = 0;
        for (int i = 0; i < 100000; ++i)
            seen += PLC_driver.dataImage.value(0x100);
        done = seen < 1000;
    });
    while (!done)
        WriteDataToLocal(&request);
    careless.join();
}
