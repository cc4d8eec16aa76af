// labels convert, labels lint, labels names: work on label files, without controller and driver.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>

#include <unistd.h>

#include "../common/Label_Csv.h"
#include "../common/Label_Lint.h"
#include "Label_Names.h"
#include "Tool.h"
#include "Verb_Table.h"

namespace vornex {

namespace {

// The file that an argument names, or that of -l.
Label_File fileOf(Tool& tool, const std::string& argument) {
    return argument.empty() ? tool.labels() : readLabelFile(argument);
}

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool isCsvName(const std::string& path) { return endsWith(path, ".csv") || endsWith(path, ".CSV"); }

// Comments have no place in a table; whoever wrote some shall know.
bool hasComments(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    const std::string all = text.str();
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

// All or nothing: the text goes to a file beside `path`, which then takes its place.
void writeWhole(const std::string& path, const std::string& text, bool mayReplace) {
    if (!mayReplace && access(path.c_str(), F_OK) == 0) {
        throw Tool_Error(Exit_Code::Usage, path + " exists; --force replaces it");
    }
    const std::string beside = path + ".new";
    std::ofstream stream(beside, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    if (stream && std::rename(beside.c_str(), path.c_str()) == 0) return;
    const std::string reason = std::strerror(errno);
    std::remove(beside.c_str());
    throw Tool_Error(Exit_Code::Usage, path + ": cannot be written: " + reason);
}

struct Convert_Options {
    std::string input;
    std::string output;
    std::string to;
    std::string separator = ",";
    bool byteOrderMark = false;
    bool force = false;
};

Exit_Code runConvert(Tool& tool, const Convert_Options& options) {
    const Label_File file = fileOf(tool, options.input);
    std::string to = options.to;
    if (to.empty() && !options.output.empty()) to = isCsvName(options.output) ? "csv" : "json";
    if (to.empty()) to = isCsvName(file.path) ? "json" : "csv";
    std::string text = to == "csv" ? formatLabelCsv(file, options.separator[0]) : formatLabelJson(file);
    if (to == "csv" && options.byteOrderMark) text.insert(0, "\xEF\xBB\xBF");
    if (!isCsvName(file.path) && hasComments(file.path))
        tool.out.warn("the comments of " + file.path + " are left behind");
    if (options.output.empty()) {
        std::fwrite(text.data(), 1, text.size(), stdout);
        return Exit_Code::Ok;
    }
    writeWhole(options.output, text, options.force);
    tool.out.note(options.output + ": " + std::to_string(file.labels.size()) + " labels, " +
                  std::to_string(file.structs.size()) + " structures");
    return Exit_Code::Ok;
}

Exit_Code runLint(Tool& tool, const std::string& argument, const std::string& memoryEnd, bool strict) {
    const Label_File file = fileOf(tool, argument);
    char* rest = nullptr;
    const std::uint64_t end = memoryEnd.empty() ? 0 : std::strtoull(memoryEnd.c_str(), &rest, 0);
    if (rest && *rest != '\0') throw Tool_Error(Exit_Code::Usage, "--end '" + memoryEnd + "' is no address");
    std::size_t errors = 0;
    const std::vector<Lint_Finding> findings = lintLabels(file, end);
    for (const Lint_Finding& finding : findings) {
        const std::string severity = severityName(finding.severity);
        if (strict || finding.severity == Lint_Finding::Severity::Error) ++errors;
        Row row;
        row.add("file", file.path).add("line", finding.line).add("severity", severity).add("rule", finding.rule);
        row.add("subject", finding.subject).add("text", finding.text);
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
    tool.out.text("# vornex names 1: address, bytes, view, label; for the Wireshark dissector");
    for (const Label_Names::Entry& element : names.all()) {
        Row row;
        row.add("address", element.address).add("bytes", element.bytes).add("view", viewName(element.view));
        row.add("label", element.text);
        tool.out.row(row, std::to_string(element.address) + "\t" + std::to_string(element.bytes) + "\t" +
                              viewName(element.view) + "\t" + element.text);
    }
    return Exit_Code::Ok;
}

}  // namespace

Verb labelsConvertVerb() {
    const auto given = std::make_shared<Convert_Options>();
    Verb verb;
    verb.name = "labels convert";
    verb.summary = "Turn a label file into CSV for a spreadsheet, or back";
    verb.description =
        "Reads a label file or a CSV table and writes the other, or what OUTPUT's name or --to says. Nothing "
        "but comments is lost either way. A table has one row per label, structure and member, with the "
        "columns kind, name, type, at, size, view, unit and sim; cells are separated by , or ; and mistakes "
        "are told with line and column.\n\n"
        "Every verb takes a CSV table for -l as well.";
    verb.examples = {{"labels convert plant.json plant.csv --separator ';' --bom",
                      "For a spreadsheet that expects ; and a byte-order mark."},
                     {"labels convert plant.csv plant.json --force", "Back again, in place of the old file."},
                     {"labels convert plant.json | head", "The table on standard output."}};
    verb.options = {
        Option("INPUT", "", "A label file, .json or .csv; without it that of -l.", &given->input),
        Option("OUTPUT", "", "The file to write; without it standard output.", &given->output),
        Option("--to", "FORMAT", "csv or json.", &given->to).oneOf({"csv", "json"}),
        Option("--separator", "CHAR", "Between the cells of a table: , or ;", &given->separator).oneOf({",", ";"}),
        Option("--bom", "", "Begin the table with a byte-order mark.", &given->byteOrderMark),
        Option("--force", "", "Replace OUTPUT if it exists.", &given->force)};
    verb.run = [given](Tool& tool) { return runConvert(tool, *given); };
    return verb;
}

Verb labelsLintVerb() {
    struct Options {
        std::string file;
        std::string end;
        bool strict = false;
    };
    const auto given = std::make_shared<Options>();
    Verb verb;
    verb.name = "labels lint";
    verb.summary = "Find what a label file has wrong though it reads well";
    verb.description =
        "Labels or members that share bytes, structures whose members no label reaches, labels past the end "
        "of the controller's memory, names that differ in upper and lower case alone, views of another width "
        "than their element, and labels too large for one read. Exit code 2 when an error is found; warnings "
        "alone end with 0.";
    verb.examples = {{"labels lint plant.json", "What is doubtful in a file."},
                     {"labels lint plant.json --end 0x10000", "The controller has 64 KiB."},
                     {"labels lint plant.csv --strict -q", "For a build: any finding fails."}};
    verb.options = {Option("FILE", "", "A label file; without it that of -l.", &given->file),
                    Option("--end", "ADDRESS", "One past the controller's last byte, decimal or 0x.", &given->end),
                    Option("--strict", "", "Warnings fail as errors do.", &given->strict)};
    verb.run = [given](Tool& tool) { return runLint(tool, given->file, given->end, given->strict); };
    return verb;
}

Verb labelsNamesVerb() {
    const auto file = std::make_shared<std::string>();
    Verb verb;
    verb.name = "labels names";
    verb.summary = "Write the names file of the Wireshark dissector";
    verb.description =
        "One line per elementary element: address, bytes, view and label text, with tabs between. The "
        "dissector takes it from its preference vornex.names, or as vornex_label_tcp.names beside Wireshark's "
        "preferences.";
    verb.examples = {
        {"labels names plant.json > plant.names", "The names of a label file."},
        {"labels names plant.json -o json | jq -r .label", "Every label text."},
        {"labels names -l plant.csv > ~/.config/wireshark/vornex_label_tcp.names", "Where Wireshark looks by itself."}};
    verb.options = {Option("FILE", "", "A label file; without it that of -l.", file.get())};
    verb.run = [file](Tool& tool) { return runNames(tool, *file); };
    return verb;
}

}  // namespace vornex
