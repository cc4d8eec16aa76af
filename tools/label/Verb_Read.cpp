// vornex-label read
#include <memory>

#include "Online.h"
#include "Span_Read.h"
#include "Value_View.h"
#include "Variable_Value.h"
#include "Verb_Table.h"

namespace vornex {

namespace {

struct Read_Options {
    std::vector<std::string> labels;
    int count = 1;
    int index = 0;
    std::string view;
    bool hex = false;
};

View chosenView(const Read_Options& options, const Variable& variable) {
    if (options.hex) return View::Hex;
    return options.view.empty() ? variable.view : parseView(options.view).value();
}

void checkCount(const Variable& variable, std::uint32_t count) {
    if (count <= variable.elements) return;
    throw Tool_Error(Exit_Code::Label, "'" + variable.text + "' has " + std::to_string(variable.elements) +
                                           " elements from here on, not " + std::to_string(count));
}

// Prints the variable; false when the controller did not deliver it.
bool show(Session& session, Output& out, const Read_Options& options, const Variable& variable) {
    Label_Range run = variable.range;
    run.bytes *= static_cast<std::uint32_t>(options.count);
    // A connection lost later in the run takes nothing from what it delivered before.
    const bool known = session.freshness(variable.address, run.bytes) != Freshness::Unknown;
    const View view = chosenView(options, variable);
    const std::string bytes = known ? session.bytes(run) : std::string();
    const Value value = known ? valueOfRun(variable, view, bytes) : Value();
    Row row;
    row.add("label", variable.text).add("value", value).add("unit", variable.unit).add("view", viewName(view));
    row.add("address", variable.address).add("bytes", hexBytes(bytes)).add("state", known ? "fresh" : "unknown");
    Variable shown = variable;
    shown.view = view;
    out.row(row, assignmentText(shown, value));
    return known;
}

Exit_Code read(Tool& tool, const Read_Options& options) {
    Online online(tool);
    Session& session = online.session;
    const std::vector<Variable> variables = findVariables(session, tool.labels(), options.labels, options.index);
    for (const Variable& variable : variables)
        checkCount(variable, static_cast<std::uint32_t>(options.count));
    online.connect();
    std::vector<Span> spans = spansOf(variables, static_cast<std::uint32_t>(options.count), session.maxBytes());
    readSpans(session, tool.out, spans);
    std::size_t missing = 0;
    for (const Variable& variable : variables)
        missing += show(session, tool.out, options, variable) ? 0 : 1;
    const Span* const failed = firstFailure(spans);
    if (!failed) return Exit_Code::Ok;
    throw Tool_Error(Exit_Code::GaveUp, "'" + failed->range.label + "': " + completionText(failed->completion) + "; " +
                                            std::to_string(missing) + " of " + std::to_string(variables.size()) +
                                            " values are unknown");
}

}  // namespace

Verb readVerb() {
    const auto own = std::make_shared<Read_Options>();
    Verb verb;
    verb.name = "read";
    verb.summary = "Read labels once";
    verb.description =
        "Reads labels from the controller, each by one-shot reads of the driver, and prints their values. A label that "
        "no reply has filled is shown as ?, never as 0.\n\n"
        "An array or structure stands for all its elements; * and ? match any text and any character of label texts.";
    verb.options = {
        Option("LABEL", "", "A label, an array or structure, or a glob such as 'Motors[*].Speed'.", &own->labels)
            .must(),
        Option("-c,--count", "N", "Elements to read from each label on, shown as a list (1).", &own->count)
            .between(1, 1000000),
        Option("--index", "N", "The index that takes the place of %% in a template (0).", &own->index)
            .between(-2147483647, 2147483647),
        Option("--as", "VIEW", "How to see the bytes, instead of the label file's view.", &own->view)
            .oneOf(viewNames()),
        Option("--hex", "", "The same as --as hex.", &own->hex),
    };
    verb.examples = {
        {"read -l plant.json Speed 'Motors[2].Temp'", "Two values, one a line."},
        {"read -l plant.json -c 4 'Buf[0]' --as f32", "Four bytes seen as one float."},
        {"read -l plant.json 'Motors[%%].Speed' --index 3 -o json", "A template for index 3, as a JSON object."},
    };
    verb.run = [own](Tool& tool) { return read(tool, *own); };
    return verb;
}

}  // namespace vornex
