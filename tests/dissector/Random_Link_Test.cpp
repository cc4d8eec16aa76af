// Random links, cut into random segments: every reply has to be tied to its request and every value to its address.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "Process.h"
#include "Test_Bytes.h"

namespace {

using vornex::test::checkOf;
using vornex::test::Process;

void put16(std::string& bytes, unsigned value) {
    bytes += static_cast<char>(value);
    bytes += static_cast<char>(value >> 8);
}

std::string hex(const std::string& bytes) {
    std::string text;
    char digits[3];
    for (const char byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(byte));
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
        std::string body, items, addresses, found;
        for (unsigned i = 0; i < count; ++i) {
            const unsigned address = below(50000);
            const std::string data = randomBytes(1 + below(60));
            put16(body, address);
            put16(body, 0);
            put16(body, static_cast<unsigned>(data.size()));
            if (isWrite) body += data;
            put16(items, static_cast<unsigned>(data.size()));
            items += data;
            addresses += (i ? "," : "") + std::to_string(address);
            found += (i ? "," : "") + hex(data);
        }
        std::string request(1, 0x02);
        put16(request, static_cast<unsigned>(body.size()));
        send('>', request + (isWrite ? '\x40' : '\x41') + body);
        const int requestFrame = frame;
        expected += std::to_string(frame) + "||" + addresses + "|" + (isWrite ? found : "") + "|1\n";
        send('<', randomBytes(4) + (isWrite ? "" : items));
        expected += std::to_string(frame) + "|" + std::to_string(requestFrame) + "|" + (isWrite ? "" : addresses) +
                    "|" + (isWrite ? "" : found) + "|1\n";
    }

    std::string trace, expected;

private:
    unsigned below(unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(random); }

    std::string randomBytes(unsigned count) {
        std::string bytes;
        while (bytes.size() < count)
            bytes += static_cast<char>(below(256));
        return bytes;
    }

    void send(char direction, std::string bytes) {
        put16(bytes, checkOf(bytes));
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

// What the program says on standard output.
std::string outputOf(std::vector<std::string> command) {
    command.insert(command.begin(), "/usr/bin/env");
    Process process(command);
    EXPECT_EQ(process.finish(false, 60000), 0) << process.log();
    return process.output();
}

class Random_Link : public ::testing::TestWithParam<unsigned> {};

TEST_P(Random_Link, everyReplyFindsItsRequest) {
    Link link(GetParam());
    for (int i = 0; i < 150; ++i)
        link.exchange();
    std::ofstream("random.trace") << link.trace;
    outputOf({"text2pcap", "-q", "-F", "pcap", "-r",
              "^(?<dir>[<>]) (?<time>\\d+:\\d\\d:\\d\\d\\.\\d+) (?<data>[0-9a-f]+)$", "-t", "%H:%M:%S.%f", "-4",
              "10.0.0.2,10.0.0.1", "-T", "2000,40000", "random.trace", "random.pcap"});
    const std::string found = outputOf({"tshark",
                                        "-X",
                                        "lua_script:" SCRIPT,
                                        "-r",
                                        "random.pcap",
                                        "-Y",
                                        "vornex",
                                        "-T",
                                        "fields",
                                        "-E",
                                        "separator=|",
                                        "-e",
                                        "frame.number",
                                        "-e",
                                        "vornex.request_in",
                                        "-e",
                                        "vornex.item.address",
                                        "-e",
                                        "vornex.item.data",
                                        "-e",
                                        "vornex.check.status"});
    EXPECT_EQ(found, link.expected);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Random_Link, ::testing::Values(1u, 2u, 3u, 4u));

}  // namespace
