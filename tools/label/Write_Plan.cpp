#include "label/Write_Plan.h"

#include <algorithm>
#include <deque>
#include <stdexcept>

#include "host/Variable_Value.h"
#include "label/Online.h"
#include "text/Hex.h"
#include "text/Text_Input.h"

namespace vornex {

namespace {

// The driver cuts a value into requests of 1000 bytes and drops what its queue of 2048 does not hold: with 64 requests
// a piece and few pieces under way that cannot happen.
const std::size_t PiecesInFlight = 4;
const std::size_t ShownBytes = 32;

void chooseView(const Plan_Options& options, const Assignment& assignment, Variable& variable) {
    if (variable.bit) return;
    if (options.isRaw || assignment.isRaw) seeAs(variable, variable.view);
    // a file that was read names the view that its values have anyway
    if (assignment.view && *assignment.view != variable.view) seeAs(variable, *assignment.view);
    if (!options.view.empty()) seeAs(variable, parseViewWord(options.view).value());
}

// Takes the element's other bits as the controller has them now. False when they could not be read.
bool takeOtherBits(Session& session, Write_Plan& plan) {
    std::vector<Span> spans = spansOf({plan.variable}, 1, session.maxBytes());
    readSpans(session, spans);
    if (const Span* failed = firstFailure(spans)) {
        plan.completion = failed->completion;
        return false;
    }
    const auto mask = static_cast<unsigned char>(1u << *plan.variable.bit % 8);
    const std::size_t place = *plan.variable.bit / 8;
    const bool isSet = (static_cast<unsigned char>(plan.bytes[place]) & mask) != 0;
    plan.bytes = session.bytes(plan.variable.range);
    const auto before = static_cast<unsigned char>(plan.bytes[place]);
    plan.bytes[place] = static_cast<char>(isSet ? before | mask : before & ~mask);
    return true;
}

}  // namespace

const std::size_t LongestPiece = 64000;

Value Write_Plan::value() const { return shownValue(variable, bytes); }

std::vector<Assignment> readRecipe(const std::string& path) {
    return path == "-" ? parseRecipe(wholeUtf8("/dev/stdin"), "standard input") : parseRecipe(wholeUtf8(path), path);
}

std::vector<Assignment> withRawLabels(Tool& tool, std::vector<Assignment> assignments) {
    for (Assignment& assignment : assignments)
        assignment.label = tool.takeRawLabels({assignment.label}).front();
    return assignments;
}

Write_Plan planOf(Session& session, const Label_File& file, const Plan_Options& options, const Assignment& assignment) {
    Write_Plan plan;
    bool wholeArray = false;
    try {
        plan.variable = findVariable(session, file, assignment.label, options.index, wholeArray);
    } catch (const Host_Error& error) {
        throw Host_Error(error.kind, assignment.place + error.what());
    }
    Variable& variable = plan.variable;
    if (options.toBeWritten && variable.range.code >= 10) {
        throw Tool_Error(Exit_Code::Label, assignment.place + "'" + variable.text + "' has type " +
                                               std::to_string(variable.range.code) +
                                               ", which the driver can read but not write");
    }
    chooseView(options, assignment, variable);
    try {
        plan.bytes = bytesOfValue(variable, wholeArray, assignment.value);
        plan.remark = writeRemark(variable, wholeArray, assignment.value, plan.bytes.size());
    } catch (const std::invalid_argument& mistake) {
        throw Tool_Error(Exit_Code::Label, assignment.place + variable.text + ": " + mistake.what());
    }
    return plan;
}

std::vector<Write_Plan> plansOf(Session& session, const Label_File& file, const Plan_Options& options,
                                const std::vector<Assignment>& assignments) {
    std::vector<std::string> labels;
    labels.reserve(assignments.size());
    for (const Assignment& assignment : assignments)
        labels.push_back(assignment.label);
    requireTemplate(labels, options.index);
    std::vector<Write_Plan> plans;
    plans.reserve(assignments.size());
    for (const Assignment& assignment : assignments)
        plans.push_back(planOf(session, file, options, assignment));
    return plans;
}

int startPiece(Session& session, const Write_Plan& plan, std::size_t offset, std::size_t length) {
    Label_Range range = plan.variable.range;
    range.bytes = static_cast<std::uint32_t>(length);
    if (offset > 0) {
        range.label = MemoryLabel;
        session.setMemoryLabel(static_cast<std::uint32_t>(plan.variable.address + offset), range.code);
    }
    return session.startWrite(range, hostLayout(range, plan.bytes.substr(offset, length)));
}

void writePlan(Session& session, Output& out, Write_Plan& plan) {
    std::deque<int> tickets;
    std::size_t offset = 0;
    const std::size_t size = plan.bytes.size();
    if (plan.variable.bit && !takeOtherBits(session, plan)) return;
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
        if (size > LongestPiece)
            out.progress("sent " + std::to_string(offset) + " of " + std::to_string(size) + " bytes");
        if (completion.state == Completion::State::Good) continue;
        plan.completion = completion;
        offset = size;  // what is under way still ends, nothing more is started
    }
}

std::vector<std::string> readBack(Session& session, Output& out, const std::vector<const Write_Plan*>& plans,
                                  const char* notRead) {
    std::vector<Span> spans;
    std::vector<Variable> single;
    for (const Write_Plan* plan : plans) {
        const std::size_t elements = plan->bytes.size() / plan->variable.bytes;
        if (elements == 1) {
            single.push_back(plan->variable);
            continue;
        }
        for (Span& span : spansOf({plan->variable}, static_cast<std::uint32_t>(elements), session.maxBytes()))
            spans.push_back(std::move(span));
    }
    for (Span& span : spansOf(single, 1, session.maxBytes()))
        spans.push_back(std::move(span));
    readSpans(session, spans, readProgress(out));
    if (const Span* failed = firstFailure(spans)) {
        throwFailed(*failed, "'" + failed->range.label + "' " + notRead + ": " + completionText(failed->completion));
    }
    std::vector<std::string> found;
    for (const Write_Plan* plan : plans) {
        Label_Range range = plan->variable.range;
        range.bytes = static_cast<std::uint32_t>(plan->bytes.size());
        found.push_back(session.bytes(range));
    }
    return found;
}

bool isLong(const std::string& bytes) { return bytes.size() > ShownBytes; }

std::string shortHex(const std::string& bytes) {
    const std::string text = firstHexBytes(bytes, ShownBytes);
    return isLong(bytes) ? text + " (" + std::to_string(bytes.size()) + " bytes)" : text;
}

}  // namespace vornex
