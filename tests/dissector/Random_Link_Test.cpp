// Random links, cut into random segments: every reply has to be tied to its request and every value to its address.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

void put16(Bytes& bytes, unsigned value) {
    bytes.push_back(static_cast<std::uint8_t>(value));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
}

void seal(Bytes& bytes) {
    unsigned crc = 0;
    for (const std::uint8_t byte : bytes) {
        for (int bit = 7; bit >= 0; --bit) {
            const unsigned top = (crc >> 15 ^ byte >> bit) & 1u;
            crc = (crc << 1 & 0xFFFFu) ^ (top ? 0x1021u : 0u);
        }
    }
    put16(bytes, crc);
}

std::string hex(const Bytes& bytes) {
    std::string text;
    char digits[3];
    for (const std::uint8_t byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02x", byte);
        text += digits;
    }
    return text;
}

// Writes the trace and, line for line, what tshark has to find in it.
class Link {
public:
    explicit Link(unsigned seed) : random(seed) {}

    void exchange() {
        const bool isWrite = below(4) == 0;
        const unsigned count = isWrite ? 1 : 1 + below(4);
        Bytes body, items, data;
        std::string addresses, found;
        for (unsigned i = 0; i < count; ++i) {
            const unsigned address = below(50000), length = 1 + below(60);
            Bytes bytes;
            for (unsigned b = 0; b < length; ++b)
                bytes.push_back(static_cast<std::uint8_t>(below(256)));
            put16(body, address);
            put16(body, 0);
            put16(body, length);
            put16(items, length);
            items.insert(items.end(), bytes.begin(), bytes.end());
            data = bytes;
            addresses += (i ? "," : "") + std::to_string(address);
            found += (i ? "," : "") + hex(bytes);
        }
        if (isWrite) body.insert(body.end(), data.begin(), data.end());
        Bytes request = {0x02, static_cast<std::uint8_t>(body.size()), static_cast<std::uint8_t>(body.size() >> 8),
                         static_cast<std::uint8_t>(isWrite ? 0x40 : 0x41)};
        request.insert(request.end(), body.begin(), body.end());
        Bytes reply;
        for (int b = 0; b < 4; ++b)
            reply.push_back(static_cast<std::uint8_t>(below(256)));
        if (!isWrite) reply.insert(reply.end(), items.begin(), items.end());
        send('>', request);
        const int requestFrame = frame;
        expected += std::to_string(frame) + "||" + addresses + "|" + (isWrite ? found : "") + "|1\n";
        send('<', reply);
        expected += std::to_string(frame) + "|" + std::to_string(requestFrame) + "|" + (isWrite ? "" : addresses) +
                    "|" + (isWrite ? "" : found) + "|1\n";
    }

    std::string trace, expected;

private:
    unsigned below(unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(random); }

    void send(char direction, Bytes bytes) {
        seal(bytes);
        const std::string text = hex(bytes);
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t size = below(3) == 0 ? 2 * (1 + below(20)) : text.size();
            char head[32];
            std::snprintf(head, sizeof head, "%c 10:%02d:%02d.000000 ", direction, frame / 60 % 60, frame % 60);
            trace += head + text.substr(at, size) + "\n";
            at += size;
            ++frame;
        }
    }

    std::mt19937 random;
    int frame = 0;
};

std::string outputOf(const std::string& command) {
    std::string text;
    FILE* const pipe = popen(command.c_str(), "r");
    if (!pipe) return text;
    char part[4096];
    for (std::size_t got = 0; (got = fread(part, 1, sizeof part, pipe)) > 0;)
        text.append(part, got);
    pclose(pipe);
    return text;
}

class Random_Link : public ::testing::TestWithParam<unsigned> {};

TEST_P(Random_Link, everyReplyFindsItsRequest) {
    Link link(GetParam());
    for (int i = 0; i < 150; ++i)
        link.exchange();
    std::ofstream("random.trace") << link.trace;
    outputOf(
        "text2pcap -q -F pcap -r '^(?<dir>[<>]) (?<time>\\d+:\\d\\d:\\d\\d\\.\\d+) (?<data>[0-9a-f]+)$' "
        "-t '%H:%M:%S.%f' -4 10.0.0.2,10.0.0.1 -T 2000,40000 random.trace random.pcap 2>&1");
    const std::string found = outputOf(
        "tshark -X lua_script:" SCRIPT
        " -r random.pcap -Y vornex -T fields -E separator='|' -e frame.number "
        "-e vornex.request_in -e vornex.item.address -e vornex.item.data -e vornex.check.status 2>random.errors");
    EXPECT_EQ(found, link.expected);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Random_Link, ::testing::Values(1u, 2u, 3u, 4u));

}  // namespace
