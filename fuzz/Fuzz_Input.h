// What the fuzzers share: bytes taken one after another from the input, and properties that end the run when broken.
#ifndef VORNEX_FUZZ_FUZZ_INPUT_H
#define VORNEX_FUZZ_FUZZ_INPUT_H

#include <QtCore/QByteArray>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

// A property of the code under test: broken, it is a finding like a crash.
#define REQUIRE(condition)                                                                        \
    do {                                                                                          \
        if (!(condition)) {                                                                       \
            std::fprintf(stderr, "%s:%d: broken property: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                         \
        }                                                                                         \
    } while (false)

// Cannot pass the end of the input: 0 and nothing come from there.
class Fuzz_Input {
public:
    Fuzz_Input(const std::uint8_t* data, std::size_t size) : at(data), end(data + size) {}

    bool isEmpty() const { return at == end; }
    unsigned take8() { return at == end ? 0 : *at++; }
    unsigned take16() {
        const unsigned low = take8();
        return low | take8() << 8;
    }
    unsigned take32() {
        const unsigned low = take16();
        return low | take16() << 16;
    }
    // 0 to below `limit`, which is at most 256.
    int below(int limit) { return static_cast<int>(take8()) % limit; }
    bool chance() { return take8() & 1; }
    QByteArray takeBytes(int most) {
        const int count = static_cast<int>(qMin<std::ptrdiff_t>(most, end - at));
        const QByteArray bytes(reinterpret_cast<const char*>(at), count);
        at += count;
        return bytes;
    }

private:
    const std::uint8_t* at;
    const std::uint8_t* const end;
};

#endif
