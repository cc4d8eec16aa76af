#include "label/Workload.h"

#include <algorithm>

namespace vornex {

namespace {

std::uint64_t bytesCovered(std::vector<Variable> variables) {
    std::sort(variables.begin(), variables.end(),
              [](const Variable& a, const Variable& b) { return a.address < b.address; });
    std::uint64_t covered = 0, end = 0;
    for (const Variable& variable : variables) {
        const std::uint64_t last = std::uint64_t(variable.address) + variable.bytes;
        const std::uint64_t first = std::max<std::uint64_t>(variable.address, end);
        covered += last > first ? last - first : 0;
        end = std::max(end, last);
    }
    return covered;
}

}  // namespace

Workload startPolling(Tool& tool, Session& session, const Polled_Labels& polled) {
    const std::vector<Variable> variables = findVariables(session, tool.labels(), polled.labels, polled.index);
    std::vector<Label_Range> ranges;
    ranges.reserve(variables.size());
    for (const Variable& variable : variables)
        ranges.push_back(variable.range);
    Workload work;
    work.variables = variables.size();
    work.bytesWanted = bytesCovered(variables);
    session.connect(polled.noWait ? First_Connection::Needed : First_Connection::MayFollow);
    work.requests = session.poll(ranges, {Milliseconds(polled.interval), polled.rounds, false});
    if (work.requests == 0) throw Tool_Error(Exit_Code::Label, "the driver made no request of these labels");
    return work;
}

}  // namespace vornex
