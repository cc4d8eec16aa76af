#include "Processor.h"

#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

namespace {

enum { WatchMicroseconds = 50000 };

cpu_set_t allowedCores() {
    cpu_set_t cores;
    CPU_ZERO(&cores);
    sched_getaffinity(0, sizeof cores, &cores);
    return cores;
}
const cpu_set_t allowed = allowedCores();

// Ticks that each core has been idle since the machine started.
std::map<int, long long> idleTicks() {
    std::map<int, long long> idle;
    std::ifstream file("/proc/stat");
    std::string name;
    for (std::string line; std::getline(file, line);) {
        int core = 0;
        long long user = 0;
        long long nice = 0;
        long long system = 0;
        long long ticks = 0;
        if (std::sscanf(line.c_str(), "cpu%d %lld %lld %lld %lld", &core, &user, &nice, &system, &ticks) == 5)
            idle[core] = ticks;
    }
    return idle;
}

}  // namespace

double nanoseconds(clockid_t clock) {
    timespec time;
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

double median(std::vector<double> values) {
    const size_t middle = values.size() / 2;
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(middle), values.end());
    return values[middle];
}

std::vector<int> idlestCores() {
    std::map<int, long long> before = idleTicks();
    usleep(WatchMicroseconds);
    std::map<int, long long> after = idleTicks();
    std::vector<int> cores;
    for (int core = 0; core < CPU_SETSIZE; ++core)
        if (CPU_ISSET(core, &allowed)) cores.push_back(core);
    std::stable_sort(cores.begin(), cores.end(),
                     [&](int a, int b) { return after[a] - before[a] > after[b] - before[b]; });
    return cores;
}

void pin(int process, int core) {
    cpu_set_t only;
    CPU_ZERO(&only);
    CPU_SET(core, &only);
    const std::string tasks = "/proc/" + (process == 0 ? "self" : std::to_string(process)) + "/task";
    std::error_code ended;
    for (const auto& task : std::filesystem::directory_iterator(tasks, ended))
        sched_setaffinity(std::atoi(task.path().filename().c_str()), sizeof only, &only);
}

void unpin() { sched_setaffinity(0, sizeof allowed, &allowed); }
