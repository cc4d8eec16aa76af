#include "label/Online.h"

#include <optional>

#include "label/Progress.h"

namespace vornex {

void Online::linkChanged(const Link_Change& change) {
    if (change.state == Link_Change::State::Down && told == Loss_Told::ByVerb) return;
    if (change.unasked) return tool.out.warn(linkText(change));
    tool.out.detail(linkText(change));
}

Online::Online(Tool& userTool, Loss_Told lossTold)
    : session(userTool.driver(), userTool.options.host, userTool.labelsIfAny()),
      tool(userTool),
      told(lossTold),
      signals([this] { session.interrupt(); }) {
    session.addObserver(statistics);
    session.addObserver(*this);
    if (tool.options.settings.count("served") && !tool.options.traces.empty())
        throw Tool_Error(Exit_Code::Usage, "--trace is for one controller");
    for (const std::string& file : tool.options.traces) {
        const Trace_Place place = {file, tool.outputPolicy(),
                                   [this](const Output_Error& error) { tool.outputFailed(error); }};
        traces.push_back(openTrace(place, tool.options.host, tool.labelsIfAny()));
        session.addObserver(*traces.back());
    }
}

void Online::connect(First_Connection first) {
    tool.out.detail("connecting to " + session.target());
    session.connect(first);
}

Read_Progress readProgress(Output& out) {
    const auto progress = std::make_shared<std::optional<Progress>>();
    return [&out, progress](std::size_t done, std::size_t all) {
        if (!*progress) progress->emplace(out, "read", all);
        (*progress)->at(done);
    };
}

void throwFailed(const Span& failed, const std::string& words) {
    if (failed.completion.state == Completion::State::Interrupted) {
        throw Tool_Error(Exit_Code::Interrupted, words);
    }
    throw Tool_Error(Exit_Code::GaveUp, words);
}

// The traces must be whole before they are closed.
Online::~Online() { session.stop(); }

}  // namespace vornex
