#include "Verb_Table.h"

namespace vornex {

std::vector<Verb> allVerbs() {
    return {
        readVerb(),
        writeVerb(),
        watchVerb(),
        manVerb(),
        completionVerb(),
    };
}

}  // namespace vornex
