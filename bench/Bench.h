// Measuring several ways of doing the same beside each other: short slices of each in turn, so that whatever else the
// machine does meanwhile hits them all alike.
#ifndef VORNEX_BENCH_BENCH_H
#define VORNEX_BENCH_BENCH_H

#include <functional>
#include <string>
#include <vector>

#include "Processor.h"

// Does some operations and returns the nanoseconds that one took.
typedef std::function<double()> Slice;

struct Way {
    const char* name;
    Slice slice;
};

struct Group {
    std::string name;
    // Sets up what the slices need, which lives as long as they do. One group at a time: the driver is one for all.
    std::function<std::vector<Way>()> make;
};
typedef std::vector<Group> Groups;

void addImageGroups(Groups& groups);
void addLabelGroups(Groups& groups);
void addListGroups(Groups& groups);

// Keeps the compiler from dropping what gives this value.
template <class Value>
void keep(const Value& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}

// Nanoseconds of this thread's processor time for one of `times` steps.
template <class Step>
double perStep(int times, Step step) {
    const double start = nanoseconds(CLOCK_THREAD_CPUTIME_ID);
    for (int i = 0; i < times; ++i)
        step();
    return (nanoseconds(CLOCK_THREAD_CPUTIME_ID) - start) / times;
}

#endif
