// Check values and the data image: the driver's byte work, beside the straightforward way and the bare hash.
#include <benchmark/benchmark.h>

#include <vector>

#include "Scene.h"
#include "Straightforward.h"
#include "protocol/Check_Functions.h"
#include "protocol/Func_DealData.h"

namespace {

enum { GroupAddress = 0x10000 };

std::vector<unsigned char> countingBytes(int64_t count) {
    std::vector<unsigned char> bytes(static_cast<size_t>(count));
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(i * 37);
    return bytes;
}

void checkDriver(benchmark::State& state) {
    std::vector<unsigned char> bytes = countingBytes(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(CalCRC(bytes.data(), static_cast<unsigned short>(bytes.size())));
}

void checkPlain(benchmark::State& state) {
    const std::vector<unsigned char> bytes = countingBytes(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(straightforward::crc(bytes.data(), static_cast<unsigned short>(bytes.size())));
}

BENCHMARK(checkDriver)->Name("check/driver")->Arg(12)->Arg(256)->Arg(1012);
BENCHMARK(checkPlain)->Name("check/256_entries")->Arg(12)->Arg(256)->Arg(1012);

void storeDriver(benchmark::State& state) {
    scene::reset();
    scene::pollOneGroup();
    QByteArray reply = scene::replyTo(*ComCommunication());
    for (auto _ : state) {
        const Mutex_Lock lock(PLC_driver.dataMutex);
        SaveToLocalDataErea(&reply);
    }
}

template <void Store(straightforward::Image&, unsigned int, const unsigned char*, int)>
void storePlain(benchmark::State& state) {
    straightforward::Image image;
    const std::vector<unsigned char> bytes = countingBytes(scene::GroupBytes);
    for (auto _ : state)
        Store(image, GroupAddress, bytes.data(), scene::GroupBytes);
}

BENCHMARK(storeDriver)->Name("store_999/driver");
BENCHMARK_TEMPLATE(storePlain, straightforward::store)->Name("store_999/two_lookups");
BENCHMARK_TEMPLATE(storePlain, straightforward::storeAlone)->Name("store_999/hash_alone");

void readDriver(benchmark::State& state) {
    scene::reset();
    scene::pollOneGroup();
    QByteArray out;
    const QString label = QLatin1String("Block[0]");
    for (auto _ : state)
        GetRegisterData(label, 0, QString(), 0, &out, scene::GroupBytes);
}

void readPlain(benchmark::State& state) {
    straightforward::Image image;
    for (auto _ : state)
        benchmark::DoNotOptimize(straightforward::read(image, GroupAddress, scene::GroupBytes));
}

void readAlone(benchmark::State& state) {
    straightforward::Image image;
    QByteArray out(scene::GroupBytes, '\0');
    for (auto _ : state) {
        straightforward::readAlone(image, GroupAddress, out.data(), scene::GroupBytes);
        benchmark::ClobberMemory();
    }
}

BENCHMARK(readDriver)->Name("read_999/driver");
BENCHMARK(readPlain)->Name("read_999/two_lookups");
BENCHMARK(readAlone)->Name("read_999/hash_alone");

// One whole exchange of a full group, without a socket.
void exchangeDriver(benchmark::State& state) {
    scene::reset();
    scene::pollOneGroup();
    QByteArray reply = scene::replyTo(*ComCommunication());
    for (auto _ : state)
        scene::exchange(reply, 1);
}

// What an exchange would cost with a 256-entry table and two lookups for each byte, and nothing else.
void exchangePlain(benchmark::State& state) {
    straightforward::Image image;
    std::vector<unsigned char> reply = countingBytes(scene::GroupBytes + 8);
    for (auto _ : state) {
        benchmark::DoNotOptimize(straightforward::crc(reply.data(), 10));
        benchmark::DoNotOptimize(straightforward::crc(reply.data(), static_cast<unsigned short>(reply.size() - 2)));
        straightforward::store(image, GroupAddress, reply.data() + 6, scene::GroupBytes);
    }
}

BENCHMARK(exchangeDriver)->Name("exchange_999/driver");
BENCHMARK(exchangePlain)->Name("exchange_999/two_lookups_and_256_entries");

}  // namespace
