// The options that verbs share, each told once.
#ifndef VORNEX_LABEL_COMMON_OPTIONS_H
#define VORNEX_LABEL_COMMON_OPTIONS_H

#include <string>
#include <vector>

#include "cli/Defaults.h"
#include "host/Host_Settings.h"

namespace vornex {

struct Template_Index;

struct Common_Options {
    Host_Settings host;
    std::string labelFile;
    bool strict = false;  // warnings of the label file are errors
    std::string library;  // empty: searched
    std::vector<std::string> traces;
    bool append = false;  // files that exist are continued
    bool force = false;   // or replaced
    std::string format = "text";
    std::string times = "absolute";
    bool quiet = false;
    bool verbose = false;
    Named_Settings settings;  // of these, what is not built in
};

// What a verb works with, and so which options it takes beside those of the output. A verb with a link needs them all.
enum Uses : unsigned {
    UsesOutput = 0,
    UsesLabels = 1,
    UsesDriver = 2,
    UsesLink = 4 | UsesLabels | UsesDriver,
    UsesSeveral = 16,  // can serve several controllers at a time
    UsesInflux = 8     // has values with times, which -o influx writes
};

void addCommonOptions(CLI::App& app, Common_Options& values, unsigned uses);

// LABEL..., as verbs that read take it.
void addLabelArguments(CLI::App& app, std::vector<std::string>& labels);
// --index and --wrap.
void addIndexOptions(CLI::App& app, Template_Index& index);
// --as: how the bytes are taken instead of the label file's view.
void addViewOption(CLI::App& app, std::string& word);
// --raw: values as the bytes have them.
void addRawOption(CLI::App& app, bool& isRaw);
void addRoundsOption(CLI::App& app, int& rounds);
void addIntervalOption(CLI::App& app, int& milliseconds);
void addNoWaitOption(CLI::App& app, bool& noWait);

}  // namespace vornex

#endif
