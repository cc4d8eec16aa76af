// The options that every verb takes.
#ifndef VORNEX_LABEL_COMMON_OPTIONS_H
#define VORNEX_LABEL_COMMON_OPTIONS_H

#include <string>
#include <vector>

#include "Verb.h"

namespace vornex {

// A read item carries 16 bits of length, and the reply's check value covers at most 65,535 bytes.
constexpr int LongestRequest = 65000;

struct Common_Options {
    std::string target;  // "host:port"; empty: the label file's
    std::string labelFile;
    std::string library;  // empty: searched
    int timeoutMs = 1000;
    int retries = 2;
    int maxBytes = 240;
    std::vector<std::string> traces;
    std::string format = "text";
    bool quiet = false;
    bool verbose = false;
};

// The table of these options, for the command line, the man page and the completion.
std::vector<Option> commonOptions(Common_Options& values);

}  // namespace vornex

#endif
