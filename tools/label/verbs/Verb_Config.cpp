// vornex-label config
#include "label/Tool.h"
#include "label/verbs/Verb_Table.h"
#include "text/Text.h"

namespace vornex {

namespace {

void show(Output& out, const std::string& name, const Setting& setting) {
    const Value value = setting.value.empty() ? Value() : Value(setting.value);
    Row row;
    row.add(key::setting, name).add(key::value, value).add(key::origin, setting.origin);
    out.row(row, padded(name, 20) + " " + padded(value.shown(), 24) + "  " + setting.origin);
}

Exit_Code config(Tool& tool) {
    const Common_Options& options = tool.options;
    const auto settled = [&](const std::string& name, const std::string& builtIn) {
        const auto found = options.settings.find(name);
        return found == options.settings.end() ? Setting{builtIn, builtIn.empty() ? "nowhere" : "built in"}
                                               : found->second;
    };
    show(tool.out, "labels", settled("labels", ""));
    show(tool.out, "timeout", settled("timeout", std::to_string(options.host.timeoutMs)));
    show(tool.out, "settle", settled("settle", std::to_string(options.host.settleMs)));
    show(tool.out, "retries", settled("retries", std::to_string(options.host.retries)));
    show(tool.out, "max-bytes", settled("max-bytes", std::to_string(options.host.maxBytes)));
    const Defaults defaults;
    for (const auto& [name, settings] : defaults.controllers())
        show(tool.out, "controllers." + name, settings.at("target"));
    Setting target = settled("target", "");  // the last, because it may take the label file
    if (target.value.empty() && !tool.labelsIfAny().target.empty()) {
        target = {tool.labels().target, options.labelFile};
    }
    show(tool.out, "target", target);
    return Exit_Code::Ok;
}

}  // namespace

void addConfigVerb(Verbs& verbs) {
    const Page page = {
        "Tell the defaults that count, and where each comes from",
        "What the command line leaves out is taken from the environment, then from vornex.toml. This shows the value "
        "of each setting in the present folder with its place, and the controllers that -t takes by name. No "
        "controller is asked.",
        {{"config", "What counts here."},
         {"config -t press3", "What counts for this controller."},
         {"config -o json | jq -r 'select(.setting==\"target\").value'", "One value for a script."}}};
    verbs.add("config", page, UsesLink | UsesSeveral, config);
}

}  // namespace vornex
