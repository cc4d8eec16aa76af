#include "values/Motion_Lint.h"

#include <stdexcept>

#include "values/Value_Motion.h"

namespace vornex {
namespace {

using Severity = Lint_Finding::Severity;

void lintList(const Label_File& file, const std::vector<Label>& labels, const std::string& owner,
              std::vector<Lint_Finding>& findings) {
    for (const Label& label : labels) {
        if (label.sim.empty()) continue;
        const auto add = [&](Severity severity, const std::string& text) {
            findings.push_back({severity, "sim", label.line, owner + label.name, text});
        };
        try {
            const Motion motion =
                parseMotion(label.sim, {viewOf(label), elementBytes(file, label.type), label.meaning});
            if (!motion.remark.empty()) add(Severity::Warning, motion.remark);
        } catch (const std::invalid_argument& refusal) {
            add(Severity::Error, refusal.what());
        }
    }
}

}  // namespace

std::vector<Lint_Finding> lintMotions(const Label_File& file) {
    std::vector<Lint_Finding> findings;
    for (const auto& [name, type] : file.structs)
        lintList(file, type.members, name + ".", findings);
    lintList(file, file.labels, "", findings);
    if (const std::optional<Leaf> beyond = forEachMotion(file, [](const Leaf&) {})) {
        findings.push_back({Severity::Error, "sim", beyond->definition->line, beyond->text, TooManyMotions});
    }
    return findings;
}

}  // namespace vornex
