// Where measured work runs, and how long it takes.
#ifndef VORNEX_BENCH_PROCESSOR_H
#define VORNEX_BENCH_PROCESSOR_H

#include <ctime>
#include <vector>

double nanoseconds(clockid_t clock);

double median(std::vector<double> values);

// The cores that this process may use, in the order of how idle they were in the last twentieth of a second.
std::vector<int> idlestCores();

// Keeps a process with all its threads on one core; 0 is this process.
void pin(int process, int core);

// Lets this thread use every core again that the process could use when it started.
void unpin();

#endif
