// The hidden verbs by which the build writes the manual pages and the completion.
#include <fstream>
#include <memory>

#include "Help.h"
#include "Tool.h"
#include "Verb_Table.h"

namespace vornex {

namespace {

Exit_Code printManPage(Tool& tool, const std::string& name) {
    const std::vector<Verb> verbs = allVerbs();
    if (name.empty()) {
        tool.out.text(manPage(verbs));
        return Exit_Code::Ok;
    }
    for (const Verb& verb : verbs) {
        if (verb.name != name) continue;
        tool.out.text(verbManPage(verb));
        return Exit_Code::Ok;
    }
    throw Tool_Error(Exit_Code::Usage, "no verb '" + name + "'");
}

void writePage(const std::string& folder, const std::string& name, const std::string& page) {
    std::ofstream file(folder + "/" + name + ".1", std::ios::binary);
    file << page << std::flush;
    if (!file) throw Tool_Error(Exit_Code::Usage, "'" + folder + "/" + name + ".1' cannot be written");
}

Exit_Code writeAllPages(const std::string& folder) {
    const std::vector<Verb> verbs = allVerbs();
    writePage(folder, "vornex-label", manPage(verbs));
    for (const Verb& verb : verbs) {
        if (!verb.hidden) writePage(folder, pageName(verb), verbManPage(verb));
    }
    return Exit_Code::Ok;
}

}  // namespace

Verb manVerb() {
    const auto name = std::make_shared<std::string>();
    const auto folder = std::make_shared<std::string>();
    Verb verb;
    verb.name = "man";
    verb.summary = "Print the manual page of the tool or of a verb";
    verb.options = {Option("VERB", "", "The verb; without it the page of the tool.", name.get()),
                    Option("--all", "DIR", "Write every page into this folder.", folder.get())};
    verb.run = [name, folder](Tool& tool) {
        return folder->empty() ? printManPage(tool, *name) : writeAllPages(*folder);
    };
    verb.hidden = true;
    return verb;
}

Verb completionVerb() {
    Verb verb;
    verb.name = "completion";
    verb.summary = "Print the bash completion";
    verb.run = [](Tool& tool) {
        tool.out.text(bashCompletion(allVerbs()));
        return Exit_Code::Ok;
    };
    verb.hidden = true;
    return verb;
}

}  // namespace vornex
