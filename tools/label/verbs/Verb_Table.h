// Every verb of the tool, and how it joins the command line.
#ifndef VORNEX_LABEL_VERBS_VERB_TABLE_H
#define VORNEX_LABEL_VERBS_VERB_TABLE_H

#include <functional>
#include <memory>
#include <string>

#include "cli/Options.h"
#include "cli/Program.h"
#include "label/Tool.h"

namespace vornex {

// The verbs of the tool, and what the user chose among them.
class Verbs {
public:
    using Run = std::function<Exit_Code(Tool&)>;

    Verbs();
    // `uses`: which of the common options it takes. What `run` holds on to lives as long as this record.
    CLI::App& add(const std::string& name, const Page& page, unsigned uses, Run run) {
        return addTo(*program, name, page, uses, std::move(run));
    }
    // The same in a group: "lint" of "labels".
    CLI::App& addTo(CLI::App& group, const std::string& name, const Page& page, unsigned uses, Run run);

    const std::shared_ptr<CLI::App> program;
    Common_Options options;
    Run chosen;
    unsigned chosenUses = 0;
};

// In the order of the help. To add a verb: a file in this folder with a function that adds it, and its line here. Help,
// manual page and completion follow.
#define VORNEX_VERBS(ADD) \
    ADD(addReadVerb)      \
    ADD(addWriteVerb)     \
    ADD(addSnapshotVerb)  \
    ADD(addCompareVerb)   \
    ADD(addWatchVerb)     \
    ADD(addLsVerb)        \
    ADD(addCheckVerb)     \
    ADD(addDecodeVerb)    \
    ADD(addInfoVerb)      \
    ADD(addConfigVerb)    \
    ADD(addLabelsVerbs)   \
    ADD(addDumpVerb)      \
    ADD(addStatsVerb)     \
    ADD(addBenchVerb)     \
    ADD(addReplayVerb)

#define VORNEX_DECLARE_VERB(add) void add(Verbs& verbs);
VORNEX_VERBS(VORNEX_DECLARE_VERB)
#undef VORNEX_DECLARE_VERB

}  // namespace vornex

#endif
