// vornex-label write
#include <algorithm>
#include <memory>

#include "host/Variable_Value.h"
#include "label/Online.h"
#include "label/Progress.h"
#include "label/Write_Plan.h"
#include "label/verbs/Verb_Table.h"
#include "text/Hex.h"

namespace vornex {

namespace {

struct Write_Options {
    std::vector<std::string> assignments;
    std::string file;
    Plan_Options plan;
    bool verify = false;
    bool dryRun = false;
    bool keepGoing = false;
};

void show(Output& out, const Write_Plan& plan, const std::string& result) {
    const Value value = plan.value();
    Row row;
    row.add(key::label, plan.variable.text).add(key::value, value).add(key::raw, rawValue(plan.variable, plan.bytes));
    row.add(key::unit, plan.variable.unit);
    row.add(key::address, plan.variable.address).add(key::data, hexBytes(plan.bytes)).add(key::result, result);
    const std::string text =
        isLong(plan.bytes) ? plan.variable.text + " = " + shortHex(plan.bytes) : assignmentText(plan.variable, value);
    out.row(row, text + "  " + result);
}

// Reads back what was written; the label texts of the values that differ are told one by one.
bool verify(Session& session, Output& out, const std::vector<const Write_Plan*>& written) {
    const std::vector<std::string> found = readBack(session, out, written, "was acknowledged, but not read back");
    bool same = true;
    for (std::size_t i = 0; i < written.size(); ++i) {
        const Write_Plan& plan = *written[i];
        const bool isBit = plan.variable.bit.has_value();
        const bool isSame = isBit ? rawValue(plan.variable, found[i]) == plan.value() : found[i] == plan.bytes;
        show(out, plan, isSame ? "verified" : "acknowledged, but reads back different");
        if (isSame) continue;
        same = false;
        out.error("'" + plan.variable.text + "' holds " + shortHex(found[i]) + ", written was " + shortHex(plan.bytes));
    }
    return same;
}

// Shows what would be sent: the driver builds the frames, each answered by an acknowledgement of zeros, whose check
// value is right.
void dryRun(Session& session, Output& out, const Write_Plan& plan) {
    if (plan.variable.bit) {
        return out.note(plan.variable.text + ": a bit; its " + std::to_string(plan.variable.bytes) + " bytes at " +
                        std::to_string(plan.variable.address) + " are read, changed and written");
    }
    for (std::size_t offset = 0; offset < plan.bytes.size(); offset += LongestPiece) {
        startPiece(session, plan, offset, std::min(LongestPiece, plan.bytes.size() - offset));
    }
    int nulls = 0;
    while (nulls < 2) {
        const Protocol* const frame = session.driver().ComCommunication();
        nulls = frame ? 0 : nulls + 1;
        if (!frame) continue;
        const std::string bytes(frame->frame.constData(), static_cast<std::size_t>(frame->frameLength));
        Row row;
        row.add(key::label, plan.variable.text).add(key::address, frame->request.address);
        row.add(key::bytes, frame->request.length)
            .add(key::data, hexBytes(plan.bytes))
            .add(key::frame, hexBytes(bytes));
        out.row(row, plan.variable.text + " at " + std::to_string(frame->request.address) + ", " +
                         std::to_string(frame->request.length) + " bytes, frame " + hexBytes(bytes));
        QByteArray acknowledgement(6, '\0');
        session.driver().DataCom(&acknowledgement, acknowledgement.size());
    }
}

std::vector<Assignment> assignmentsOf(const Write_Options& options) {
    std::vector<Assignment> assignments;
    if (!options.file.empty()) assignments = readRecipe(options.file);
    for (const std::string& text : options.assignments) {
        try {
            assignments.push_back(parseAssignment(text));
        } catch (const std::invalid_argument& mistake) {
            throw Tool_Error(Exit_Code::Usage, mistake.what());
        }
    }
    if (assignments.empty()) throw Tool_Error(Exit_Code::Usage, "nothing to write: LABEL=VALUE, or -f FILE");
    return assignments;
}

// In their order; a failure ends it unless it is to go on.
void writeAll(Session& session, Output& out, const Write_Options& options, std::vector<Write_Plan>& plans) {
    Progress progress(out, "written", plans.size());
    for (Write_Plan& plan : plans) {
        writePlan(session, out, plan);
        progress.step();
        if (plan.completion.state == Completion::State::Good) {
            if (!options.verify) show(out, plan, "acknowledged");
            continue;
        }
        out.error("'" + plan.variable.text + "' may not be written: " + completionText(plan.completion));
        if (session.interrupted() || !options.keepGoing) return;
    }
}

// What became of each, when it is not the same of all.
void tellRest(Output& out, const Write_Options& options, const std::vector<Write_Plan>& plans,
              const std::vector<const Write_Plan*>& written, bool isVerified) {
    std::size_t untried = 0;
    for (const Write_Plan& plan : plans) {
        const bool isGood = plan.completion.state == Completion::State::Good;
        const bool isUntried = plan.completion.state == Completion::State::Pending;
        untried += isUntried ? 1 : 0;
        if (isGood && options.verify && !isVerified) show(out, plan, "acknowledged");
        if (!isGood) show(out, plan, isUntried ? "not tried" : "may not be written");
    }
    if (plans.size() == 1) return;
    const std::size_t failed = plans.size() - written.size() - untried;
    out.error("of " + std::to_string(plans.size()) + " values " + std::to_string(written.size()) +
              " were acknowledged, " + std::to_string(failed) + " may not be written, " + std::to_string(untried) +
              " were not tried");
}

Exit_Code write(Tool& tool, Write_Options options) {
    const std::vector<Assignment> assignments = withRawLabels(tool, assignmentsOf(options));
    Online online(tool);
    Session& session = online.session;
    // all are checked before anything is written
    std::vector<Write_Plan> plans = plansOf(session, tool.labels(), options.plan, assignments);
    for (const Write_Plan& plan : plans) {
        if (!plan.remark.empty()) tool.out.note(plan.variable.text + ": " + plan.remark);
    }
    if (options.dryRun) {
        for (const Write_Plan& plan : plans)
            dryRun(session, tool.out, plan);
        return Exit_Code::Ok;
    }
    if (std::any_of(plans.begin(), plans.end(), [](const Write_Plan& plan) { return plan.variable.bit.has_value(); })) {
        options.verify = true;
        tool.out.note(
            "a bit is written with its element: what the controller changes in the other bits between the "
            "read and the write is lost");
    }
    online.connect();
    writeAll(session, tool.out, options, plans);
    std::vector<const Write_Plan*> written;
    for (const Write_Plan& plan : plans) {
        if (plan.completion.state == Completion::State::Good) written.push_back(&plan);
    }
    const bool areAll = written.size() == plans.size();
    const bool isVerified = options.verify && (areAll || (options.keepGoing && !session.interrupted()));
    if (!areAll) tellRest(tool.out, options, plans, written, isVerified);
    const bool same = !isVerified || written.empty() || verify(session, tool.out, written);
    if (session.interrupted() && !areAll) return Exit_Code::Interrupted;
    if (!areAll) return Exit_Code::GaveUp;
    return same ? Exit_Code::Ok : Exit_Code::VerifyMismatch;
}

}  // namespace

void addWriteVerb(Verbs& verbs) {
    const auto own = std::make_shared<Write_Options>();
    const Page page = {
        "Write labels and wait until the controller has acknowledged",
        "Writes values in the order given, those of a file first. All are checked before: a label that does not "
        "resolve, a value out of the range of its view or a list longer than its array stops the tool before anything "
        "is sent. After a write that fails the tool stops, or goes on with --keep-going, and tells of each value what "
        "became of it; exit 4.\n\n"
        "\"acknowledged\" says that a reply came: any four bytes with their check value are one, six zeros too. "
        "\"verified\" says that the controller holds the value: --verify has read it back.\n\n"
        "A VALUE is a number (decimal, 0x, float), true or false, a list [1, 2, 3] of elements, \"text\" in quotes "
        "over one-byte elements, or @FILE with raw bytes. Types 10 and 11 cannot be written.\n\n"
        "Over a whole array a text takes the place of the old one: what it leaves of the array becomes 0. A list or "
        "raw "
        "bytes write as many elements as they have, and the others stay. Both are told, and so is a number that a "
        "float "
        "does not hold: the nearest one is written.\n\n"
        "A file has LABEL=VALUE lines (# begins a comment), or what read -o json, read -o csv and snapshot write.",
        {{"write -l plant.json Speed=1500 --verify", "One value, read back."},
         {"write -l plant.json 'Grid[0,0]=[1,2,3,4]' Motors[2].Speed=12.5", "A row of an array and a member."},
         {"write -l plant.json 'Buf=\"hello\"' --dry-run", "What would be sent for a text."},
         {"write -l plant.json -f recipe.csv --verify", "The values of a file."}}};
    CLI::App& verb = verbs.add("write", page, UsesLink, [own](Tool& tool) { return write(tool, *own); });
    addArgument(verb, "ASSIGNMENT", own->assignments, "LABEL=VALUE: what to write.", Need::May);
    addText(verb, "-f,--file", "FILE", own->file, "Write the values of this file; - is standard input.");
    addFlag(verb, "--verify", own->verify, "Read everything back and compare; exit 5 when it differs.");
    addFlag(verb, "--dry-run", own->dryRun, "Show address, bytes and frame; send nothing.");
    addFlag(verb, "--keep-going", own->keepGoing, "Go on with the others after a write that fails.");
    addViewOption(verb, own->plan.view);
    addRawOption(verb, own->plan.isRaw);
    addIndexOptions(verb, own->plan.index);
}

}  // namespace vornex
