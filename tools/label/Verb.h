// How a verb joins the command line.
#ifndef VORNEX_LABEL_VERB_H
#define VORNEX_LABEL_VERB_H

#include <functional>
#include <memory>
#include <string>

#include "cli/Options.h"
#include "cli/Program.h"
#include "label/Common_Options.h"
#include "label/Exit_Code.h"

namespace vornex {

class Tool;

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
};

}  // namespace vornex

#endif
