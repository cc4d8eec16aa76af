// check: what the driver makes of label texts, without a controller.
#include <algorithm>
#include <memory>
#include <set>

#include "host/Driver_Labels.h"
#include "host/Variables.h"
#include "label/Progress.h"
#include "label/Tool.h"
#include "label/verbs/Verb_Table.h"
#include "labels/Label_Explain.h"
#include "labels/Template_Text.h"
#include "text/Text.h"

namespace vornex {

namespace {

// The driver's own label operations, which it exports beside the entry points. An old or foreign library may lack them.
const char ResolveSymbol[] = "_Z17get_label_address7QStringR19ControlInformationM";
const char RewriteSymbol[] = "_Z17get_label_addressR7QStringi";
using Resolve = int (*)(QString, ControlInformationM&);
using Rewrite = int (*)(QString&, int);

const std::size_t TextWidth = 28;
const std::size_t KeptTexts = 100000;

struct Outcome {
    bool good = false;
    std::optional<int> code;  // nothing: the library does not tell it
    std::string resolved;     // the text after the template was rewritten
    int type = 0;
    std::optional<std::uint32_t> address;
};

class Label_Checker {
public:
    Label_Checker(Tool& userTool, const Template_Index& templateIndex)
        : tool(userTool),
          library(userTool.driver()),
          index(templateIndex),
          resolve(reinterpret_cast<Resolve>(library.symbol(ResolveSymbol))),
          rewrite(reinterpret_cast<Rewrite>(library.symbol(RewriteSymbol))) {
        settings.maxBytesPerRequest = 1;
        library.SetComInfo(&settings);
        passLabels();
        if (!resolve || !rewrite)
            tool.out.warn("the library does not tell result codes, only whether a label resolves");
    }

    // `leaf` is what the file says the text is, null when the user wrote it.
    bool check(const std::string& text, const Leaf* leaf) {
        // The driver keeps every text it has resolved until it gets definitions.
        if (++checked % KeptTexts == 0) passLabels();
        Outcome outcome = ask(leaf ? driverLabel(*leaf) : driverSpelling(tool.labels(), text));
        std::string reason;
        std::optional<Label_Problem> problem;
        if (!outcome.good) {
            problem = explainLabel(tool.labels(), outcome.resolved);
            reason = words(outcome, problem);
        } else if (leaf && outcome.address && *outcome.address != leaf->address) {
            reason = "the driver resolves it to address " + std::to_string(*outcome.address) + ", the file has " +
                     std::to_string(leaf->address);
            outcome.good = false;
        }
        if (outcome.good && !index.mayWrap && isTemplate(text)) refuseCarry(text, outcome, reason);
        tell(text, outcome, problem, reason, leaf != nullptr);
        return outcome.good;
    }

private:
    void passLabels() {
        QList<Label_Type_Info> labels = driverLabels(tool.labels());
        library.PassVarName_2(&labels);
    }

    // The driver carries an index that passes an array's end into other elements: what people hardly ever mean.
    void refuseCarry(const std::string& text, Outcome& outcome, std::string& reason) {
        const int number = index.number.value_or(0);
        const auto plain = templateText(tool.labels(), text, number);
        if (plain && ask(driverSpelling(tool.labels(), *plain)).address == outcome.address) return;
        outcome.good = false;
        reason = "index " + std::to_string(number) + " leaves the array and would become " + outcome.resolved;
    }

    Outcome ask(const std::string& text) {
        Outcome outcome;
        QString label = QString::fromUtf8(text.c_str());
        outcome.resolved = text;
        if (!resolve || !rewrite) {
            QByteArray bytes;
            outcome.good =
                library.GetRegisterData(label, 0, QString::number(index.number.value_or(0)), 0, &bytes, 0) == 1;
            return outcome;
        }
        ControlInformationM info;
        int code = 0;
        if (label.contains(QString::fromLatin1("%%"))) code = rewrite(label, index.number.value_or(0));
        outcome.resolved = label.toUtf8().constData();
        if (code == 0) code = resolve(label, info);
        outcome.code = code;
        outcome.good = code == 0;
        if (!outcome.good) return outcome;  // what `info` holds then is of no use
        outcome.type = info.typeCode;
        outcome.address = info.address;
        return outcome;
    }

    // The tool's own explanation counts only when it leads to the code that the driver gave.
    static std::string words(const Outcome& outcome, std::optional<Label_Problem>& problem) {
        if (problem && outcome.code && problem->code != *outcome.code) problem.reset();
        if (problem) return problem->reason;
        const std::size_t mark = outcome.resolved.find("%%");
        if (mark != std::string::npos) {
            problem =
                Label_Problem{outcome.code.value_or(0), mark, 2, "%% stands in no index group of the first array"};
            return problem->reason;
        }
        return outcome.code ? labelCodeText(*outcome.code) : "does not resolve";
    }

    void tell(const std::string& text, const Outcome& outcome, const std::optional<Label_Problem>& problem,
              const std::string& reason, bool fromFile) {
        // the file's own texts have none
        const std::string tail = outcome.good && !fromFile ? ignoredTail(tool.labels(), outcome.resolved) : "";
        Row row;
        row.add(key::label, text)
            .add(key::resolves, outcome.good)
            .add(key::code, outcome.code ? Value(*outcome.code) : Value());
        row.add(key::resolved, outcome.resolved).add(key::typeCode, outcome.type > 0 ? Value(outcome.type) : Value());
        row.add(key::address, outcome.address ? Value(*outcome.address) : Value());
        row.add(key::markAt, problem ? Value(problem->at) : Value())
            .add(key::markLength, problem ? Value(problem->length) : Value());
        row.add(key::reason, reason.empty() ? Value() : Value(reason));
        // a list of everything that is well would hide what is not
        const bool quiet = fromFile && outcome.good && !tool.options.verbose;
        if (!quiet || tool.out.format != Output::Format::Text) tool.out.row(row, line(text, outcome, problem, reason));
        if (!tail.empty()) tool.out.warn("'" + tail + "' at the end of '" + text + "' is not looked at");
    }

    static std::string line(const std::string& text, const Outcome& outcome,
                            const std::optional<Label_Problem>& problem, const std::string& reason) {
        std::string words = padded(text + ' ', TextWidth);
        if (outcome.resolved != text) words += "-> " + outcome.resolved + "  ";
        if (outcome.good) {
            if (!outcome.address) return words + "resolves";
            return words + "address " + std::to_string(*outcome.address) + "  type " + std::to_string(outcome.type);
        }
        words += (outcome.code ? std::to_string(*outcome.code) + ": " : "") + reason;
        if (!problem) return words;
        return words + "\n    " + outcome.resolved + "\n    " +
               markLine(outcome.resolved, problem->at, problem->length);
    }

    Tool& tool;
    const Driver_Library& library;
    const Template_Index index;
    const Resolve resolve;
    const Rewrite rewrite;
    ComInfo settings;
    std::size_t checked = 0;
};

struct Tally {
    std::size_t good = 0;
    std::size_t bad = 0;
    void count(bool isGood) { ++(isGood ? good : bad); }
};

void checkFile(const Label_File& file, Label_Checker& checker, const std::vector<std::string>& globs, Tally& tally,
               Output& out) {
    std::set<std::string> matched;
    Progress progress(out, "checked", globs.front() == "*" ? elementsIn(file) : 0);
    forEachLeaf(file, [&](const Leaf& leaf) {
        progress.step();
        const auto glob = std::find_if(globs.begin(), globs.end(),
                                       [&leaf](const std::string& pattern) { return globMatches(pattern, leaf.text); });
        if (glob == globs.end()) return true;
        matched.insert(*glob);
        tally.count(checker.check(leaf.text, &leaf));
        return true;
    });
    for (const std::string& glob : globs) {
        if (!matched.count(glob) && glob != "*") throw Tool_Error(Exit_Code::Label, "no label matches '" + glob + "'");
    }
}

Exit_Code runCheck(Tool& tool, std::vector<std::string> texts, bool all, const Template_Index& index) {
    requireTemplate(texts, index);
    if (all || texts.empty()) texts.push_back("*");
    const Label_File& file = tool.labels();
    Label_Checker checker(tool, index);
    std::vector<std::string> globs;
    Tally tally;
    for (const std::string& text : texts) {
        if (text.find_first_of("*?") != std::string::npos)
            globs.push_back(text);
        else
            tally.count(checker.check(text, nullptr));
    }
    if (!globs.empty()) checkFile(file, checker, globs, tally, tool.out);
    if (!globs.empty() || tally.bad > 0) {
        tool.out.note(std::to_string(tally.good) + " resolve, " + std::to_string(tally.bad) + " do not");
    }
    return tally.bad == 0 ? Exit_Code::Ok : Exit_Code::Label;
}

}  // namespace

void addCheckVerb(Verbs& verbs) {
    struct Options {
        std::vector<std::string> labels;
        bool all = false;
        Template_Index index;
    };
    const auto given = std::make_shared<Options>();
    const Page page = {
        "Resolve labels through the driver, without a controller",
        "Hands the label file to the driver and asks it for each label. A label that does not resolve is told "
        "with the driver's result code, the reason, and the place in the text. A glob stands for every "
        "element it matches, whose address is compared with the label file's; those that resolve are listed "
        "with -v.",
        {{"check -l plant.json 'Motors[9].Speed'", "Why one label fails."},
         {"check -l plant.json --all", "Every element of the file, as before a release."},
         {"check -l plant.json 'Motors[%%].Speed' --index 3", "What a template becomes for index number 3."}}};
    CLI::App& verb = verbs.add("check", page, UsesLabels | UsesDriver,
                               [given](Tool& tool) { return runCheck(tool, given->labels, given->all, given->index); });
    addArgument(verb, "LABEL", given->labels, "Label texts, templates or globs; none: all.", Need::May);
    addFlag(verb, "--all", given->all, "Every element of the file.");
    addIndexOptions(verb, given->index);
}

}  // namespace vornex
