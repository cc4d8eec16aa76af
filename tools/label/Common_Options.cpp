#include "label/Common_Options.h"

#include <limits>

#include "cli/Options.h"
#include "host/Variables.h"
#include "labels/Label_Type.h"
#include "link_options/Link_Options.h"

namespace vornex {

namespace {

void addLinkGroup(CLI::App& app, Common_Options& values, unsigned uses) {
    startGroup(app, "Link options");
    addLinkOptions(app, values.host, uses & UsesSeveral ? Controllers::Several : Controllers::One);
    addTexts(app, "--trace", "FILE", values.traces,
             "Record every frame and reply: .txt to be read, .jsonl for replay, .hex for text2pcap, - for stderr.");
    addFlag(app, "--append", values.append, "Continue output files that exist already.");
    addFlag(app, "--force", values.force, "Replace output files that exist already.");
}

}  // namespace

void addCommonOptions(CLI::App& app, Common_Options& values, unsigned uses) {
    if ((uses & UsesLink) == UsesLink) addLinkGroup(app, values, uses);
    startGroup(app, "Common options");
    if (uses & UsesLabels) addLabelFile(app, values.labelFile, values.strict);
    if (uses & UsesDriver) addLibraryOption(app, values.library);
    std::vector<std::string> formats = {"text", "json", "csv"};
    if (uses & UsesInflux) formats.push_back("influx");
    addChoice(app, "-o,--output", formats, values.format, "How data is written; json: an object a line.");
    addChoice(app, "--time", {"absolute", "relative"}, values.times,
              "How times are told: with date and zone, or in seconds since the start.");
    addFlag(app, "-q,--quiet", values.quiet, "Errors only.");
    addFlag(app, "-v,--verbose", values.verbose, "Tell more about what is done.");
    startGroup(app, "Options");
}

void addLabelArguments(CLI::App& app, std::vector<std::string>& labels) {
    addArgument(app, "LABEL", labels,
                "A label, an array or structure, a glob such as 'Motors[*].Speed', or a bare address: @100:INT.",
                Need::Must);
}

void addIndexOptions(CLI::App& app, Template_Index& index) {
    addNumber(app, "--index", "N", index.number, -std::numeric_limits<int>::max(), std::numeric_limits<int>::max(),
              "The index that takes the place of %% in a template; without it 0.");
    addFlag(app, "--wrap", index.mayWrap, "Let an index past the end of its array go on in other elements.");
}

void addViewOption(CLI::App& app, std::string& word) {
    addWord(app, "--as", "TYPE", viewWords(), word,
            "The view, in place of the label file's: u16, f32, hex, text, ... or a type's name: INT, REAL, ...");
}

void addRawOption(CLI::App& app, bool& isRaw) {
    addFlag(app, "--raw", isRaw, "Values as the bytes have them: no scale, no names of states.");
}

void addRoundsOption(CLI::App& app, int& rounds) {
    addNumber(app, "-n,--rounds", "N", rounds, 0, 1000000000, "End after N rounds; 0: go on.");
}

void addIntervalOption(CLI::App& app, int& milliseconds) {
    addNumber(app, "-i,--interval", "MS", milliseconds, 0, 86400000, "Least time from round to round.");
}

void addNoWaitOption(CLI::App& app, bool& noWait) {
    addFlag(app, "--no-wait", noWait, "End at once when there is no controller at the start.");
}

}  // namespace vornex
