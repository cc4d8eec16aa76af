#include "Verb_Table.h"

namespace vornex {

std::vector<Verb> allVerbs() {
    return {
        readVerb(),  writeVerb(),         watchVerb(),      lsVerb(),          checkVerb(), decodeVerb(),
        infoVerb(),  labelsConvertVerb(), labelsLintVerb(), labelsNamesVerb(), dumpVerb(),  statsVerb(),
        benchVerb(), replayVerb(),        manVerb(),        completionVerb(),
    };
}

}  // namespace vornex
