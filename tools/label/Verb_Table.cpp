#include "Verb_Table.h"

namespace vornex {

std::vector<Verb> allVerbs() {
    return {
        manVerb(),
        completionVerb(),
    };
}

}  // namespace vornex
