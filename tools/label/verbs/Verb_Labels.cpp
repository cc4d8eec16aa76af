// labels convert, labels lint, labels names: work on label files, without controller and driver.
#include <algorithm>
#include <memory>

#include "label/Tool.h"
#include "label/verbs/Labels_Verbs.h"
#include "label/verbs/Verb_Table.h"
#include "labels/Label_Csv.h"
#include "labels/Label_Lint.h"
#include "labels/Label_Names.h"
#include "text/Text.h"
#include "text/Text_Input.h"
#include "values/Motion_Lint.h"

namespace vornex {

namespace {

// The file that an argument names, or that of -l.
Label_File fileOf(Tool& tool, const std::string& argument) {
    return argument.empty() ? tool.labels() : tool.readLabels(argument);
}

// Comments have no place in a table; whoever wrote some shall know.
bool hasComments(const std::string& path) {
    const std::string all = wholeText(path);
    bool inText = false;
    for (std::size_t i = 0; i + 1 < all.size(); ++i) {
        if (inText && all[i] == '\\')
            ++i;
        else if (all[i] == '"')
            inText = !inText;
        else if (!inText && all[i] == '/' && (all[i + 1] == '/' || all[i + 1] == '*'))
            return true;
    }
    return false;
}

struct Convert_Options {
    std::string input;
    std::string output;
    std::string to;
    std::string separator = ",";
    bool byteOrderMark = false;
};

Exit_Code runConvert(Tool& tool, const Convert_Options& options) {
    const Label_File file = fileOf(tool, options.input);
    std::string to = options.to;
    if (to.empty() && !options.output.empty()) to = labelFormatOf(options.output);
    if (to.empty() && !options.output.empty())
        throw Tool_Error(Exit_Code::Usage,
                         options.output + ": a label file ends in .json or .csv; --to takes another name");
    if (to.empty()) to = isCsvName(file.path) ? "json" : "csv";
    std::string text = to == "csv" ? formatLabelCsv(file, options.separator[0]) : formatLabelJson(file);
    if (to == "csv" && options.byteOrderMark) text.insert(0, "\xEF\xBB\xBF");
    if (!isCsvName(file.path) && hasComments(file.path))
        tool.out.warn("the comments of " + file.path + " are left behind");
    if (options.output.empty()) {
        tool.out.block(text);
        return Exit_Code::Ok;
    }
    if (tool.options.append) throw Tool_Error(Exit_Code::Usage, "--append: a label file cannot be continued");
    Output_Policy policy = tool.outputPolicy();
    policy.filesRead.push_back(file.path);
    writeWholeFile(options.output, text, policy);
    tool.out.note(options.output + ": " + std::to_string(file.labels.size()) + " labels, " +
                  std::to_string(file.structs.size()) + " structures");
    return Exit_Code::Ok;
}

Exit_Code runLint(Tool& tool, const std::string& argument, std::uint64_t memoryEnd) {
    const Label_File file = fileOf(tool, argument);
    std::size_t errors = 0;
    std::vector<Lint_Finding> findings = lintLabels(file, memoryEnd);
    const std::vector<Lint_Finding> motions = lintMotions(file);
    findings.insert(findings.end(), motions.begin(), motions.end());
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Lint_Finding& a, const Lint_Finding& b) { return a.line < b.line; });
    for (const Lint_Finding& finding : findings) {
        const std::string severity = severityName(finding.severity);
        if (tool.options.strict || finding.severity == Lint_Finding::Severity::Error) ++errors;
        Row row;
        row.add(key::file, file.path)
            .add(key::line, finding.line)
            .add(key::severity, severity)
            .add(key::rule, finding.rule);
        row.add(key::subject, finding.subject).add(key::text, finding.text);
        tool.out.row(row, file.path + ":" + std::to_string(finding.line) + ": " + severity + ": " + finding.subject +
                              ": " + finding.text + " [" + finding.rule + "]");
    }
    tool.out.note(file.path + ": " + std::to_string(file.labels.size()) + " labels, " +
                  (findings.empty() ? "nothing found" : std::to_string(findings.size()) + " found"));
    return errors == 0 ? Exit_Code::Ok : Exit_Code::Label;
}

Exit_Code runNames(Tool& tool, const std::string& argument) {
    const Label_File file = fileOf(tool, argument);
    const Label_Names names(file);
    if (names.tooMany()) refuseSoMany(file);
    tool.out.text("# vornex names 2: address, bytes, kind, width, label; for the Wireshark dissector");
    for (const Label_Names::Entry& element : names.all()) {
        Row row;
        row.add(key::address, element.address).add(key::bytes, element.bytes).add(key::view, viewName(element.view));
        row.add(key::label, element.text);
        const View_Entry& view = viewEntry(element.view);
        tool.out.row(row, joined({std::to_string(element.address), std::to_string(element.bytes), kindName(view.kind),
                                  std::to_string(view.width), element.text},
                                 "\t"));
    }
    return Exit_Code::Ok;
}

void addConvert(Verbs& verbs, CLI::App& group) {
    const auto given = std::make_shared<Convert_Options>();
    const Page page = {
        "Turn a label file into CSV for a spreadsheet, or back",
        "Reads a label file or a CSV table and writes the other, or what OUTPUT's ending (.json or .csv) or --to says. "
        "Nothing "
        "but comments is lost either way. A table has one row per label, structure and member, with the "
        "columns kind, size and the keys of labels; cells are separated by , or ; and mistakes "
        "are told with line and column.\n\n"
        "Every verb takes a CSV table for -l as well.",
        {{"labels convert plant.json plant.csv --separator ';' --bom",
          "For a spreadsheet that expects ; and a byte-order mark."},
         {"labels convert plant.csv plant.json --force", "Back again, in place of the old file."},
         {"labels convert plant.json | head", "The table on standard output."}}};
    CLI::App& verb =
        verbs.addTo(group, "convert", page, UsesLabels, [given](Tool& tool) { return runConvert(tool, *given); });
    addArgument(verb, "INPUT", given->input, "A label file, .json or .csv; without it that of -l.", Need::May);
    addArgument(verb, "OUTPUT", given->output, "The file to write; without it standard output.", Need::May);
    addChoice(verb, "--to", {"csv", "json"}, given->to, "What to write, instead of what the name says.");
    addChoice(verb, "--separator", {",", ";"}, given->separator, "Between the cells of a table.");
    addFlag(verb, "--bom", given->byteOrderMark, "Begin the table with a byte-order mark.");
    addFlag(verb, "--force", verbs.options.force, "Replace OUTPUT if it exists.");
}

void addLint(Verbs& verbs, CLI::App& group) {
    struct Options {
        std::string file;
        std::optional<std::uint64_t> end;
    };
    const auto given = std::make_shared<Options>();
    const Page page = {
        "Find what a label file has wrong though it reads well",
        "Labels or members that share bytes, structures whose members no label reaches, labels past the end "
        "of the controller's memory, names that differ in upper and lower case alone, views of another width "
        "than their element, labels too large for one read, and motions that the simulator refuses. Exit code 2 when "
        "an error is found; warnings "
        "alone end with 0, with --strict they fail as errors do.",
        {{"labels lint plant.json", "What is doubtful in a file."},
         {"labels lint plant.json --end 0x10000", "The controller has 64 KiB."},
         {"labels lint plant.csv --strict -q", "For a build: any finding fails."}}};
    CLI::App& verb = verbs.addTo(group, "lint", page, UsesLabels,
                                 [given](Tool& tool) { return runLint(tool, given->file, given->end.value_or(0)); });
    addArgument(verb, "FILE", given->file, "A label file; without it that of -l.", Need::May);
    addNumber(verb, "--end", "ADDRESS", given->end, 1, std::uint64_t(1) << 32,
              "One past the controller's last byte, decimal or 0x.");
}

void addNames(Verbs& verbs, CLI::App& group) {
    const auto file = std::make_shared<std::string>();
    const Page page = {
        "Write the names file of the Wireshark dissector",
        "One line per elementary element: address, bytes, kind and width of its values, and label text, with tabs "
        "between. The "
        "dissector takes it from its preference vornex.names, or as vornex_label_tcp.names beside Wireshark's "
        "preferences.",
        {{"labels names plant.json > plant.names", "The names of a label file."},
         {"labels names plant.json -o json | jq -r .label", "Every label text."},
         {"labels names plant.csv > vornex_label_tcp.names",
          "For the folder of Wireshark's preferences, where it looks by itself."}}};
    CLI::App& verb =
        verbs.addTo(group, "names", page, UsesLabels, [file](Tool& tool) { return runNames(tool, *file); });
    addArgument(verb, "FILE", *file, "A label file; without it that of -l.", Need::May);
}

}  // namespace

std::string labelFormatOf(const std::string& path) {
    if (isCsvName(path)) return "csv";
    return endsIn(lowered(path), ".json") ? "json" : "";
}

void addLabelsVerbs(Verbs& verbs) {
    CLI::App& group = addVerb(*verbs.program, "labels", {"Work on label files"});
    addConvert(verbs, group);
    addImport(verbs, group);
    addLint(verbs, group);
    addNames(verbs, group);
}

}  // namespace vornex
