// driver-bench [GROUP...]: measures the driver's operations, each beside other ways of doing the same, and prints the
// nanoseconds that each way took in each round. "rebuild_warm" is all groups of that name, "rebuild_warm/1000" one;
// none: all.
#include <algorithm>
#include <cstdio>
#include <exception>

#include "Bench.h"

namespace {

enum { Rounds = 15, WarmUpRounds = 2, FewestSlices = 3, MostSlices = 25 };

const double RoundNanoseconds = 20e6;

struct Measured {
    const char* way;
    std::vector<double> rounds;  // medians of the round's slices
};

int slicesInRound(const std::vector<Way>& ways) {
    const double start = nanoseconds(CLOCK_MONOTONIC);
    for (const Way& way : ways)
        way.slice();
    const double all = nanoseconds(CLOCK_MONOTONIC) - start;
    return std::clamp(static_cast<int>(RoundNanoseconds / all), static_cast<int>(FewestSlices),
                      static_cast<int>(MostSlices));
}

std::vector<double> oneRound(const std::vector<Way>& ways, int slices) {
    pin(0, idlestCores().front());
    std::vector<std::vector<double>> samples(ways.size());
    for (int i = 0; i < slices; ++i)
        for (size_t way = 0; way < ways.size(); ++way)
            samples[way].push_back(ways[way].slice());
    std::vector<double> medians;
    for (const std::vector<double>& sample : samples)
        medians.push_back(median(sample));
    return medians;
}

std::vector<Measured> measure(const std::vector<Way>& ways) {
    std::vector<Measured> measured;
    for (const Way& way : ways)
        measured.push_back({way.name, {}});
    const int slices = slicesInRound(ways);
    for (int round = 0; round < WarmUpRounds + Rounds; ++round) {
        const std::vector<double> medians = oneRound(ways, slices);
        for (size_t way = 0; way < ways.size() && round >= WarmUpRounds; ++way)
            measured[way].rounds.push_back(medians[way]);
    }
    return measured;
}

void print(const std::vector<Measured>& measured) {
    for (size_t way = 0; way < measured.size(); ++way) {
        std::printf("%s\"%s\": [", way == 0 ? "" : ", ", measured[way].way);
        for (size_t i = 0; i < measured[way].rounds.size(); ++i)
            std::printf("%s%.2f", i == 0 ? "" : ", ", measured[way].rounds[i]);
        std::printf("]");
    }
}

bool isWanted(const std::string& name, int argc, char** argv) {
    const auto names = [&](const std::string& wanted) { return name == wanted || name.rfind(wanted + "/", 0) == 0; };
    return argc < 2 || std::any_of(argv + 1, argv + argc, names);
}

}  // namespace

int main(int argc, char** argv) try {
    Groups groups;
    addImageGroups(groups);
    addLabelGroups(groups);
    addListGroups(groups);
    const char* separator = "{";
    for (const Group& group : groups) {
        if (!isWanted(group.name, argc, argv)) continue;
        std::printf("%s\n \"%s\": {", separator, group.name.c_str());
        print(measure(group.make()));
        std::printf("}");
        std::fflush(stdout);
        separator = ",";
    }
    std::printf("%s\n}\n", *separator == '{' ? "{" : "");
    return 0;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "driver-bench: %s\n", failure.what());
    return 1;
}
