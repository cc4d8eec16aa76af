// vornex-label snapshot and compare
#include <memory>

#include "host/Variable_Value.h"
#include "label/Online.h"
#include "label/Write_Plan.h"
#include "label/verbs/Verb_Table.h"
#include "text/Hex.h"
#include "text/Text.h"
#include "values/Value_Codec.h"

namespace vornex {

namespace {

struct Snapshot_Options {
    std::string file;
    std::vector<std::string> labels;
};

struct Compare_Options {
    std::string file;
    Plan_Options plan;
};

// How the file is written: as its name says, or else as -o says.
Output::Format formatOf(const Tool& tool, const std::string& file) {
    const std::string name = lowered(file);
    if (endsIn(name, ".csv")) return Output::Format::Csv;
    if (endsIn(name, ".json") || endsIn(name, ".jsonl")) return Output::Format::Json;
    return tool.out.format;
}

// The lines of a file that `write -f` and `compare` take.
std::string recipeText(const Session& session, const std::vector<Variable>& variables, Output::Format format,
                       const std::string& time) {
    std::string text;
    for (const Variable& variable : variables) {
        const std::string bytes = session.bytes(variable.range);
        const Value value = shownValue(variable, bytes);
        Row row;
        row.add(key::time, time).add(key::label, variable.text).add(key::value, value).add(key::unit, variable.unit);
        row.add(key::view, viewName(variable.view)).add(key::address, variable.address);
        row.add(key::data, hexBytes(bytes));
        if (text.empty() && format == Output::Format::Csv) text = csvHeading(row) + "\n";
        if (format == Output::Format::Csv) text += csvLine(row) + "\n";
        if (format == Output::Format::Json) text += jsonObject(row) + "\n";
        if (format == Output::Format::Text) text += variable.text + "=" + typedText(variable.view, value) + "\n";
    }
    return text;
}

// The file takes its name when all of it is there: a snapshot is whole or is not.
Exit_Code snapshot(Tool& tool, const Snapshot_Options& options) {
    if (tool.options.append) throw Tool_Error(Exit_Code::Usage, "a snapshot is a whole file: --force replaces one");
    const std::vector<std::string> labels = tool.takeRawLabels(options.labels);
    Online online(tool);
    Session& session = online.session;
    const bool toOutput = options.file == "-";
    std::unique_ptr<Output_File> file;
    if (!toOutput) {
        file = std::make_unique<Output_File>(options.file, tool.outputPolicy());
        file->takeNameAtEnd();
    }
    const std::vector<Variable> variables = findVariables(session, tool.labels(), labels, {});
    online.connect();
    std::vector<Span> spans = spansOf(variables, 1, session.maxBytes());
    readSpans(session, spans, readProgress(tool.out));
    if (const Span* failed = firstFailure(spans)) {
        throwFailed(*failed,
                    "'" + failed->range.label + "': " + completionText(failed->completion) + "; nothing is written");
    }
    const std::string text =
        recipeText(session, variables, formatOf(tool, options.file), timeText(std::chrono::system_clock::now()));
    if (toOutput) {
        tool.out.block(text);
        return Exit_Code::Ok;
    }
    file->write(text);
    file->close();
    tool.out.note(std::to_string(variables.size()) + " values in " + options.file);
    return Exit_Code::Ok;
}

// Differences alone. What is shown alike is alike, whichever of its 255 values makes a bool true.
Exit_Code compare(Tool& tool, const Compare_Options& options) {
    const std::vector<Assignment> recipe = withRawLabels(tool, readRecipe(options.file));
    Online online(tool);
    Plan_Options planOptions = options.plan;
    planOptions.toBeWritten = false;
    const std::vector<Write_Plan> plans = plansOf(online.session, tool.labels(), planOptions, recipe);
    std::vector<const Write_Plan*> all;
    all.reserve(plans.size());
    for (const Write_Plan& plan : plans)
        all.push_back(&plan);
    online.connect();
    const std::vector<std::string> found = readBack(online.session, tool.out, all, "is not read");
    std::size_t different = 0;
    for (std::size_t i = 0; i < plans.size(); ++i) {
        const Write_Plan& plan = plans[i];
        const Value expected = plan.value(), value = shownValue(plan.variable, found[i]);
        if (value == expected) continue;
        if (different++ == 0) tool.out.text(padded("LABEL", 32) + " " + padded("FILE", 20) + " CONTROLLER");
        Row row;
        row.add(key::label, plan.variable.text).add(key::expected, expected).add(key::value, value);
        row.add(key::unit, plan.variable.unit).add(key::address, plan.variable.address);
        tool.out.row(row, padded(plan.variable.text, 32) + " " + padded(typedText(plan.variable.view, expected), 20) +
                              " " + typedText(plan.variable.view, value));
    }
    tool.out.note(std::to_string(different) + " of " + std::to_string(plans.size()) + " values differ");
    return different == 0 ? Exit_Code::Ok : Exit_Code::VerifyMismatch;
}

}  // namespace

void addSnapshotVerb(Verbs& verbs) {
    const auto own = std::make_shared<Snapshot_Options>();
    const Page page = {
        "Keep the values of labels in a file",
        "Reads labels once and writes their values into a file that write -f and compare take: .csv, .json or .jsonl "
        "(an object a line) by its name, LABEL=VALUE lines or as -o says for others and for -, standard output. The "
        "file holds all values or is not written.",
        {{"snapshot -l plant.json before.csv 'Recipe*' Setpoint", "A recipe from what runs now."},
         {"snapshot -l plant.json line3.json '*' --force", "Everything, in place of the snapshot before."}}};
    CLI::App& verb = verbs.add("snapshot", page, UsesLink, [own](Tool& tool) { return snapshot(tool, *own); });
    addArgument(verb, "FILE", own->file, "The file to write; - is standard output.", Need::Must);
    addLabelArguments(verb, own->labels);
}

void addCompareVerb(Verbs& verbs) {
    const auto own = std::make_shared<Compare_Options>();
    const Page page = {
        "Compare the controller with the values in a file",
        "Reads the labels of the file, as write -f takes it, and lists the values that differ. Exit status 5 tells "
        "that some do.",
        {{"compare -l plant.json before.csv", "What has changed since the snapshot."},
         {"compare -l plant.json recipe.txt -o json | jq -r .label", "The labels alone."}}};
    CLI::App& verb = verbs.add("compare", page, UsesLink, [own](Tool& tool) { return compare(tool, *own); });
    addArgument(verb, "FILE", own->file, "The file with the values; - is standard input.", Need::Must);
    addViewOption(verb, own->plan.view);
    addIndexOptions(verb, own->plan.index);
}

}  // namespace vornex
