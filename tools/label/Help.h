// What the tool says about itself, made from the verb table: help texts, man pages and the shell completion.
#ifndef VORNEX_LABEL_HELP_H
#define VORNEX_LABEL_HELP_H

#include <string>
#include <vector>

#include "Verb.h"

namespace vornex {

std::string versionText();
// "Examples:" and the verb's examples, for the end of its help.
std::string exampleText(const Verb& verb);

// The manual page of the whole tool in man(7) format.
std::string manPage(const std::vector<Verb>& verbs);
// The manual page of one verb, and the page's name without its section.
std::string pageName(const Verb& verb);
std::string verbManPage(const Verb& verb);
// A bash script that completes verbs, options and their values.
std::string bashCompletion(const std::vector<Verb>& verbs);

}  // namespace vornex

#endif
