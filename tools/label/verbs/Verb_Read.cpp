// vornex-label read
#include <memory>

#include "host/Span_Read.h"
#include "host/Variable_Value.h"
#include "label/Online.h"
#include "label/verbs/Verb_Table.h"
#include "text/Hex.h"

namespace vornex {

namespace {

struct Read_Options {
    std::vector<std::string> labels;
    int count = 1;
    Template_Index index;
    std::string view;
    bool hex = false;
    bool raw = false;
};

void chooseView(const Read_Options& options, Variable& variable) {
    if (options.raw) seeAs(variable, variable.view);
    if (!options.view.empty()) seeAs(variable, parseViewWord(options.view).value());
    if (options.hex) seeAs(variable, View::Hex);
}

void checkCount(const Variable& variable, std::uint32_t count) {
    if (count <= variable.elements) return;
    throw Tool_Error(Exit_Code::Label, "'" + variable.text + "' has " + std::to_string(variable.elements) +
                                           " elements from here on, not " + std::to_string(count));
}

// A view that was asked for shows values, or nothing is read at all.
void checkView(const Variable& variable, std::uint32_t bytes) {
    const std::uint32_t width = viewEntry(variable.view).width;
    if (width == 0 || bytes % width == 0) return;
    throw Tool_Error(Exit_Code::Usage, "view " + viewName(variable.view) + " takes " + std::to_string(width) +
                                           " bytes, '" + variable.text + "' gives " + std::to_string(bytes) +
                                           ": choose -c or another view");
}

// Prints the variable; false when the controller did not deliver it.
bool show(Session& session, Output& out, const Read_Options& options, const Variable& variable) {
    Label_Range run = variable.range;
    run.bytes *= static_cast<std::uint32_t>(options.count);
    // A connection lost later in the run takes nothing from what it delivered before.
    const bool known = session.freshness(variable.address, run.bytes) != Freshness::Unknown;
    const std::string bytes = known ? session.bytes(run) : std::string();
    const Value raw = known ? rawValue(variable, bytes) : Value();
    const Value value = shownValue(formOf(variable), raw);
    const std::string band = bandOf(formOf(variable), raw);
    Row row;
    row.add(key::time, out.time(std::chrono::system_clock::now()))
        .add(key::label, variable.text)
        .add(key::value, value)
        .add(key::raw, raw)
        .add(key::unit, variable.unit)
        .add(key::band, band)
        .add(key::view, options.raw && formOf(variable).meaning ? "raw" : viewName(variable.view));
    row.add(key::address, variable.address)
        .add(key::data, hexBytes(bytes))
        .add(key::state, known ? "fresh" : "unknown");
    out.row(row, assignmentText(variable, value, band));
    return known;
}

Exit_Code read(Tool& tool, const Read_Options& options) {
    requireTemplate(options.labels, options.index);
    const std::vector<std::string> labels = tool.takeRawLabels(options.labels);
    Online online(tool);
    Session& session = online.session;
    std::vector<Variable> variables = findVariables(session, tool.labels(), labels, options.index);
    const auto count = static_cast<std::uint32_t>(options.count);
    for (Variable& variable : variables) {
        checkCount(variable, count);
        if (!variable.bit) chooseView(options, variable);
        if (!options.view.empty()) checkView(variable, count * variable.bytes);
    }
    online.connect();
    std::vector<Span> spans = spansOf(variables, count, session.maxBytes());
    readSpans(session, spans, readProgress(tool.out));
    std::size_t missing = 0;
    for (const Variable& variable : variables)
        missing += show(session, tool.out, options, variable) ? 0 : 1;
    const Span* const failed = firstFailure(spans);
    if (!failed) return Exit_Code::Ok;
    throwFailed(*failed, "'" + failed->range.label + "': " + completionText(failed->completion) + "; " +
                             std::to_string(missing) + " of " + std::to_string(variables.size()) +
                             " values are unknown");
}

}  // namespace

void addReadVerb(Verbs& verbs) {
    const auto own = std::make_shared<Read_Options>();
    const Page page = {
        "Read labels once",
        "Reads labels from the controller, each by one-shot reads of the driver, and prints their values. A label that "
        "no reply has filled is shown as ?, never as 0.\n\n"
        "An array or structure stands for all its elements; * and ? match any text and any character of label texts.",
        {{"read -l plant.json Speed 'Motors[2].Temp'", "Two values, one a line."},
         {"read -l plant.json -c 4 'Buf[0]' --as f32", "Four bytes seen as one float."},
         {"read -l plant.json 'Motors[%%].Speed' --index 3 -o json", "A template for index 3, as a JSON object."}}};
    CLI::App& verb = verbs.add("read", page, UsesLink, [own](Tool& tool) { return read(tool, *own); });
    addLabelArguments(verb, own->labels);
    addNumber(verb, "-c,--count", "N", own->count, 1, 1000000, "Elements to read from each label on, shown as a list.");
    addIndexOptions(verb, own->index);
    addViewOption(verb, own->view);
    addFlag(verb, "--hex", own->hex, "The same as --as hex.");
    addRawOption(verb, own->raw);
}

}  // namespace vornex
