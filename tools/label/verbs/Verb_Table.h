// Every verb of the tool.
#ifndef VORNEX_LABEL_VERBS_VERB_TABLE_H
#define VORNEX_LABEL_VERBS_VERB_TABLE_H

#include "label/Verb.h"

namespace vornex {

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
