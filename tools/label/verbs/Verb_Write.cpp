// vornex-label write
#include <algorithm>
#include <deque>
#include <memory>
#include <stdexcept>

#include "host/Span_Read.h"
#include "host/Variable_Value.h"
#include "label/Online.h"
#include "label/verbs/Verb_Table.h"
#include "text/Hex.h"

namespace vornex {

namespace {

struct Write_Options {
    std::vector<std::string> assignments;
    Template_Index index;
    std::string view;
    bool verify = false;
    bool dryRun = false;
};

// One assignment, checked, as controller bytes.
struct Write_Plan {
    Variable variable;
    View view = View::U8;
    std::string bytes;
    Completion completion;
};

// The driver cuts a value into requests of 1000 bytes and drops what its queue of 2048 does not hold: with 64 requests
// a piece and few pieces under way that cannot happen.
const std::size_t LongestPiece = 64000;
const std::size_t PiecesInFlight = 4;
const std::size_t ShownBytes = 32;

Write_Plan planOf(Session& session, const Label_File& file, const Write_Options& options, const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        throw Tool_Error(Exit_Code::Usage, "'" + text + "' is not LABEL=VALUE");
    }
    Write_Plan plan;
    bool wholeArray = false;
    plan.variable = findVariable(session, file, text.substr(0, equals), options.index, wholeArray);
    if (plan.variable.range.code >= 10) {
        throw Tool_Error(Exit_Code::Label, "'" + plan.variable.text + "' has type " +
                                               std::to_string(plan.variable.range.code) +
                                               ", which the driver can read but not write");
    }
    plan.view = options.view.empty() ? plan.variable.view : parseViewWord(options.view).value();
    try {
        plan.bytes = bytesOfValue(plan.variable, plan.view, wholeArray, text.substr(equals + 1));
    } catch (const std::invalid_argument& mistake) {
        throw Tool_Error(Exit_Code::Label, plan.variable.text + ": " + mistake.what());
    }
    return plan;
}

// The driver takes the value of a type 2 element from a 16-bit word.
std::string hostLayout(int code, const std::string& bytes) {
    if (code != 2) return bytes;
    std::string words;
    for (char byte : bytes)
        words += {byte, '\0'};
    return words;
}

int startPiece(Session& session, const Write_Plan& plan, std::size_t offset, std::size_t length) {
    Label_Range range = plan.variable.range;
    range.bytes = static_cast<std::uint32_t>(length);
    if (offset > 0) {
        range.label = MemoryLabel;
        session.setMemoryLabel(static_cast<std::uint32_t>(plan.variable.address + offset), range.code);
    }
    return session.startWrite(range, hostLayout(range.code, plan.bytes.substr(offset, length)));
}

void writePlan(Session& session, Output& out, Write_Plan& plan) {
    std::deque<int> tickets;
    std::size_t offset = 0;
    const std::size_t size = plan.bytes.size();
    plan.completion.state = Completion::State::Good;
    while (offset < size || !tickets.empty()) {
        if (offset < size && tickets.size() < PiecesInFlight) {
            const std::size_t length = std::min(LongestPiece, size - offset);
            tickets.push_back(startPiece(session, plan, offset, length));
            offset += length;
            continue;
        }
        const Completion completion = session.wait(tickets.front());
        tickets.pop_front();
        if (completion.state == Completion::State::Interrupted) throw Tool_Error(Exit_Code::Interrupted, "interrupted");
        if (size > LongestPiece)
            out.progress("sent " + std::to_string(offset) + " of " + std::to_string(size) + " bytes");
        if (completion.state == Completion::State::Good) continue;
        plan.completion = completion;
        offset = size;  // what is under way still ends, nothing more is started
    }
}

std::string shortHex(const std::string& bytes) {
    const std::string text = firstHexBytes(bytes, ShownBytes);
    return bytes.size() > ShownBytes ? text + " (" + std::to_string(bytes.size()) + " bytes)" : text;
}

void show(Output& out, const Write_Plan& plan, const std::string& result) {
    Variable shown = plan.variable;
    shown.view = plan.view;
    const Value value = valueOfRun(plan.variable, plan.view, plan.bytes);
    Row row;
    row.add(key::label, plan.variable.text).add(key::value, value).add(key::unit, plan.variable.unit);
    row.add(key::address, plan.variable.address).add(key::data, hexBytes(plan.bytes)).add(key::result, result);
    const bool isLong = plan.bytes.size() > ShownBytes;
    out.row(row, (isLong ? plan.variable.text + " = " + shortHex(plan.bytes) : assignmentText(shown, value)) + "  " +
                     result);
}

// Reads everything back; the label texts of the values that differ are told one by one.
bool verify(Session& session, Output& out, const std::vector<Write_Plan>& plans) {
    bool same = true;
    for (const Write_Plan& plan : plans) {
        Variable variable = plan.variable;
        const std::uint32_t elements = static_cast<std::uint32_t>(plan.bytes.size() / variable.bytes);
        std::vector<Span> spans = spansOf({variable}, elements, session.maxBytes());
        readSpans(session, spans, readProgress(out));
        if (const Span* failed = firstFailure(spans)) {
            throwFailed(*failed, "'" + variable.text +
                                     "' was acknowledged, but not read back: " + completionText(failed->completion));
        }
        variable.range.bytes = static_cast<std::uint32_t>(plan.bytes.size());
        const std::string found = session.bytes(variable.range);
        show(out, plan, found == plan.bytes ? "verified" : "acknowledged, but reads back different");
        if (found == plan.bytes) continue;
        same = false;
        out.error("'" + variable.text + "' holds " + shortHex(found) + ", written was " + shortHex(plan.bytes));
    }
    return same;
}

// Shows what would be sent: the driver builds the frames, each answered by an acknowledgement of zeros, whose check
// value is right.
void dryRun(Session& session, Output& out, const Write_Plan& plan) {
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

Exit_Code write(Tool& tool, const Write_Options& options) {
    Online online(tool);
    Session& session = online.session;
    requireTemplate(options.assignments, options.index);
    std::vector<Write_Plan> plans;  // all are checked before anything is written
    for (const std::string& text : options.assignments)
        plans.push_back(planOf(session, tool.labels(), options, text));
    if (options.dryRun) {
        for (const Write_Plan& plan : plans)
            dryRun(session, tool.out, plan);
        return Exit_Code::Ok;
    }
    online.connect();
    for (Write_Plan& plan : plans) {
        writePlan(session, tool.out, plan);
        if (plan.completion.state != Completion::State::Good) {
            throw Tool_Error(Exit_Code::GaveUp,
                             "'" + plan.variable.text + "' may not be written: " + completionText(plan.completion));
        }
        if (!options.verify) show(tool.out, plan, "acknowledged");
    }
    if (!options.verify) return Exit_Code::Ok;
    return verify(session, tool.out, plans) ? Exit_Code::Ok : Exit_Code::VerifyMismatch;
}

}  // namespace

void addWriteVerb(Verbs& verbs) {
    const auto own = std::make_shared<Write_Options>();
    const Page page = {
        "Write labels and wait until the controller has acknowledged",
        "Writes values in the order given. All are checked first: a label that does not resolve, a value out of the "
        "range of its view or a list longer than its array stops the tool before anything is sent.\n\n"
        "\"acknowledged\" says that a reply came: any four bytes with their check value are one, six zeros too. "
        "\"verified\" says that the controller holds the value: --verify has read it back.\n\n"
        "A VALUE is a number (decimal, 0x, float), true or false, a list [1, 2, 3] of elements, \"text\" in quotes "
        "over one-byte elements, or @FILE with raw bytes. Types 10 and 11 cannot be written.",
        {{"write -l plant.json Speed=1500 --verify", "One value, read back."},
         {"write -l plant.json 'Grid[0,0]=[1,2,3,4]' Motors[2].Speed=12.5", "A row of an array and a member."},
         {"write -l plant.json 'Buf=\"hello\"' --dry-run", "What would be sent for a text."}}};
    CLI::App& verb = verbs.add("write", page, UsesLink, [own](Tool& tool) { return write(tool, *own); });
    addArgument(verb, "ASSIGNMENT", own->assignments, "LABEL=VALUE: what to write.", Need::Must);
    addFlag(verb, "--verify", own->verify, "Read everything back and compare; exit 5 when it differs.");
    addFlag(verb, "--dry-run", own->dryRun, "Show address, bytes and frame; send nothing.");
    addViewOption(verb, own->view);
    addIndexOptions(verb, own->index);
}

}  // namespace vornex
