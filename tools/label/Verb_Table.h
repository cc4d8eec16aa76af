// Every verb of the tool.
#ifndef VORNEX_LABEL_VERB_TABLE_H
#define VORNEX_LABEL_VERB_TABLE_H

#include <vector>

#include "Verb.h"

namespace vornex {

// In the order of the help.
std::vector<Verb> allVerbs();

Verb readVerb();
Verb writeVerb();
Verb watchVerb();
Verb lsVerb();
Verb checkVerb();
Verb decodeVerb();
Verb infoVerb();
Verb labelsConvertVerb();
Verb labelsLintVerb();
Verb labelsNamesVerb();
Verb dumpVerb();
Verb statsVerb();
Verb benchVerb();
Verb replayVerb();
Verb manVerb();
Verb completionVerb();

}  // namespace vornex

#endif
