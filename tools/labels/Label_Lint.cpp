#include "labels/Label_Lint.h"

#include <algorithm>
#include <map>
#include <set>

#include "text/Text.h"

namespace vornex {
namespace {

using Severity = Lint_Finding::Severity;

constexpr std::size_t OverlapsTold = 100;  // a shifted file overlaps everywhere; a hundred make the point

std::uint64_t endOf(const Label_File& file, const Label& label) {
    return label.at + elementCount(label.type) * elementBytes(file, label.type);
}

std::string range(std::uint64_t begin, std::uint64_t end) {
    return std::to_string(begin) + " to " + std::to_string(end - 1);
}

class Linter {
public:
    Linter(const Label_File& labelFile, std::uint64_t end) : file(labelFile), memoryEnd(end) {}

    std::vector<Lint_Finding> run() {
        for (const auto& [name, type] : file.structs)
            checkStruct(name, type);
        checkList(file.labels, "");
        for (const Label& label : file.labels)
            checkExtent(label);
        checkUnused();
        std::stable_sort(findings.begin(), findings.end(),
                         [](const Lint_Finding& a, const Lint_Finding& b) { return a.line < b.line; });
        return std::move(findings);
    }

private:
    void add(Severity severity, const char* rule, int line, const std::string& subject, const std::string& text) {
        findings.push_back({severity, rule, line, subject, text});
    }

    void checkStruct(const std::string& name, const Struct_Type& type) {
        checkList(type.members, name + ".");
        if (type.members.empty()) {
            add(Severity::Warning, "empty", type.line, name, "the structure has no members, nothing in it can be read");
        }
    }

    // What holds for labels beside each other and for the members of one structure alike.
    void checkList(const std::vector<Label>& labels, const std::string& owner) {
        std::map<std::string, const Label*> byName;
        for (const Label& label : labels) {
            const auto [before, isNew] = byName.emplace(lowered(label.name), &label);
            if (!isNew) {
                add(Severity::Warning, "case", label.line, owner + label.name,
                    "differs from '" + before->second->name + "' in upper and lower case alone");
            }
            checkView(label, owner);
        }
        checkOverlaps(labels, owner);
    }

    void checkView(const Label& label, const std::string& owner) {
        const View_Entry& view = viewEntry(label.view);
        const std::uint32_t bytes = elementBytes(file, label.type);
        if (view.width == 0 || view.width == bytes || label.type.code == 12) return;
        const std::string how =
            bytes % view.width != 0 ? "bytes in hex" : "a list of " + std::to_string(bytes / view.width) + " values";
        add(Severity::Warning, "view", label.line, owner + label.name,
            "view " + std::string(view.name) + " has " + std::to_string(view.width) + " bytes, an element " +
                std::to_string(bytes) + "; it is shown as " + how);
    }

    // In order of address; a label is compared with the one that reaches farthest among those before it.
    void checkOverlaps(const std::vector<Label>& labels, const std::string& owner) {
        std::vector<const Label*> sorted;
        sorted.reserve(labels.size());
        for (const Label& label : labels)
            sorted.push_back(&label);
        std::stable_sort(sorted.begin(), sorted.end(), [](const Label* a, const Label* b) { return a->at < b->at; });
        const Label* farthest = nullptr;
        for (const Label* label : sorted) {
            const std::uint64_t end = endOf(file, *label);
            if (farthest && label->at < endOf(file, *farthest)) tellOverlap(*farthest, *label, owner);
            if (!farthest || end > endOf(file, *farthest)) farthest = label;
        }
    }

    void tellOverlap(const Label& first, const Label& second, const std::string& owner) {
        if (++overlaps > OverlapsTold) return;
        const std::uint64_t end = std::min(endOf(file, first), endOf(file, second));
        add(Severity::Warning, "overlap", second.line, owner + second.name,
            "shares bytes " + range(second.at, end) + " with '" + owner + first.name + "' (line " +
                std::to_string(first.line) + ")");
    }

    void checkExtent(const Label& label) {
        const std::uint64_t end = endOf(file, label);
        if (memoryEnd > 0 && end > memoryEnd) {
            add(Severity::Error, "end", label.line, label.name,
                "bytes " + range(label.at, end) + " go past the end of the memory at " + std::to_string(memoryEnd));
        }
        if (end - label.at > LongestValue) {
            add(Severity::Warning, "size", label.line, label.name,
                "more than 16 MiB, the most that one read hands out");
        }
    }

    void reach(const std::vector<Label>& labels, std::set<std::string>& reached) const {
        for (const Label& label : labels) {
            if (label.type.code != 12 || !reached.insert(label.type.structName).second) continue;
            reach(file.structs.at(label.type.structName).members, reached);
        }
    }

    void checkUnused() {
        std::set<std::string> reached;
        reach(file.labels, reached);
        for (const auto& [name, type] : file.structs) {
            if (reached.count(name)) continue;
            add(Severity::Warning, "unused", type.line, name,
                "no label has this structure, its members cannot be reached");
        }
    }

    const Label_File& file;
    const std::uint64_t memoryEnd;
    std::size_t overlaps = 0;
    std::vector<Lint_Finding> findings;
};

}  // namespace

std::vector<Lint_Finding> lintLabels(const Label_File& file, std::uint64_t memoryEnd) {
    return Linter(file, memoryEnd).run();
}

const char* severityName(Severity severity) { return severity == Severity::Error ? "error" : "warning"; }

}  // namespace vornex
