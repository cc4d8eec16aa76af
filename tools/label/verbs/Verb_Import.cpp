// labels import: a symbol table of another program as a label file.
#include <algorithm>
#include <memory>

#include "import/Import_Table.h"
#include "label/Tool.h"
#include "label/verbs/Labels_Verbs.h"
#include "labels/Label_Csv.h"
#include "text/Text.h"
#include "text/Text_Input.h"

namespace vornex {

namespace {

constexpr std::size_t ShownLabels = 10;  // of --dry-run

struct Import_Options {
    std::string input;
    std::string output;
    std::vector<std::string> maps;
    std::optional<std::uint64_t> base;
    std::string count = "bytes";
    bool isDryRun = false;
};

std::string formatted(const Label_File& file, const std::string& format) {
    return format == "csv" ? formatLabelCsv(file, ',') : formatLabelJson(file);
}

Imported readImport(const Import_Options& options) {
    Import_Choice choice;
    choice.map = options.maps.empty() ? Column_Map() : parseColumnMap(options.maps);
    choice.base = static_cast<std::uint32_t>(options.base.value_or(0));
    if (options.count == "words") choice.count = Address_Count::Words;
    return importTable(wholeUtf8(options.input), options.input, choice);
}

void showBeginning(Tool& tool, Label_File file, const std::string& format) {
    const std::size_t all = file.labels.size();
    file.labels.resize(std::min(all, ShownLabels));
    tool.out.block(formatted(file, format));
    if (all > ShownLabels) tool.out.note("... and " + counted(all - ShownLabels, "label") + " more");
}

void writeImport(Tool& tool, const Import_Options& options, const Label_File& file, const std::string& format) {
    if (options.output.empty()) return tool.out.block(formatted(file, format));
    Output_Policy policy = tool.outputPolicy();
    policy.filesRead.push_back(options.input);
    writeWholeFile(options.output, formatted(file, format), policy);
}

Exit_Code runImport(Tool& tool, const Import_Options& options) {
    const std::string format = options.output.empty() ? "json" : labelFormatOf(options.output);
    if (format.empty()) throw Tool_Error(Exit_Code::Usage, options.output + ": a label file ends in .json or .csv");
    const Imported imported = readImport(options);
    for (const std::string& note : imported.notes)
        tool.out.note(note);
    for (const std::string& refusal : imported.notTaken)
        tool.out.error(refusal);
    const std::size_t taken = imported.file.labels.size();
    const bool mayWrite = taken > 0 && (imported.notTaken.empty() || !tool.options.strict);
    if (options.isDryRun) {
        showBeginning(tool, imported.file, format);
    } else if (mayWrite) {
        writeImport(tool, options, imported.file, format);
    }
    tool.out.note(options.input + ": " + counted(taken, "label") + ", " + std::to_string(imported.notTaken.size()) +
                  " not taken" + (options.isDryRun || !mayWrite ? "; nothing written" : ""));
    return taken > 0 && imported.notTaken.empty() ? Exit_Code::Ok : Exit_Code::Label;
}

const Page& importPage() {
    static const Page page = {
        "Make a label file of another program's symbol table",
        "Reads a CSV table that a spreadsheet or a programming tool has exported. Separator (comma, semicolon, tab), "
        "decimal comma, byte-order mark and the row of headings are found out. Columns with headings such as Symbol, "
        "Address, Data type, Comment and the keys of labels are known; --map names others.\n\n"
        "Addresses are 100, 0x64, 16#64, %MW100, MW100; those with a bit, 100.3 or %MX10.3, make a BOOL a named bit of "
        "the label that holds its byte, or of a label made for it.\n\n"
        "What cannot be taken is told with its line and the reason, and the exit code is then 2; all else is written.",
        {{"labels import symbols.csv plant.json --dry-run", "What would be written."},
         {"labels import symbols.csv plant.json --map name=Symbol,address=Offset,type=DataType,description=Comment",
          "The columns by their headings."},
         {"labels import symbols.csv plant.csv --count words --base 0x1000",
          "Addresses count words, from 0x1000 on."}}};
    return page;
}

}  // namespace

void addImport(Verbs& verbs, CLI::App& group) {
    const auto given = std::make_shared<Import_Options>();
    CLI::App& verb =
        verbs.addTo(group, "import", importPage(), UsesOutput, [given](Tool& tool) { return runImport(tool, *given); });
    addArgument(verb, "FILE", given->input, "The table.", Need::Must);
    addArgument(verb, "OUTPUT", given->output, "The label file to write, .json or .csv; without it standard output.",
                Need::May);
    addTexts(verb, "--map", "KEY=HEADING,...", given->maps, "Which column is which key of a label; address is at.");
    addNumber(verb, "--base", "ADDRESS", given->base, 0, 0xFFFFFFFF, "Bytes added to every address, decimal or 0x.");
    addChoice(verb, "--count", {"bytes", "words"}, given->count, "What addresses count; %MB counts bytes in any case.");
    addFlag(verb, "--dry-run", given->isDryRun, "Show the first labels and what cannot be taken; write nothing.");
    addFlag(verb, "--strict", verbs.options.strict, "Write nothing when something cannot be taken.");
    addFlag(verb, "--force", verbs.options.force, "Replace OUTPUT if it exists.");
}

}  // namespace vornex
