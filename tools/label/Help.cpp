#include "Help.h"

namespace vornex {

std::string versionText() { return "vornex-label " VORNEX_VERSION; }

std::string exampleText(const Verb& verb) {
    if (verb.examples.empty()) return "";
    std::string text = "Examples:";
    for (const Example& example : verb.examples) {
        text += "\n  vornex-label " + example.command + "\n      " + example.meaning;
    }
    return text;
}

}  // namespace vornex
