// The labels that are published: as variables of the controller, and as metrics.
#ifndef VORNEX_EDGE_PUBLISHED_LABELS_H
#define VORNEX_EDGE_PUBLISHED_LABELS_H

#include <string>
#include <vector>

#include "edge/Poll_Group.h"
#include "edge/node/Edge_Node.h"
#include "watch/Watched.h"

namespace vornex::edge {

// In the order of the groups and then of the label file; a metric's index is its place here. What two groups name
// belongs to the first. Values are scaled as the label file says, dead bands too; states stay numbers, named by a
// property.
class Published_Labels {
public:
    // `writable`: patterns of what commands may write. Throws Host_Error Label or std::invalid_argument: patterns that
    // name nothing, two labels with one metric name, a writable label that is not published or that cannot be written.
    Published_Labels(Session& session, const Label_File& file, std::vector<Poll_Group> pollGroups,
                     const std::vector<std::string>& writable);

    std::vector<Watched>& watched() { return variables; }
    const std::vector<Metric_Entry>& metrics() const { return entries; }
    // Least of all groups.
    std::uint64_t intervalMs() const;
    // What is due now and counts as changed, or all values, as samples of this time.
    std::vector<Sample> changes(std::uint64_t steadyMs, std::uint64_t wallMs);
    std::vector<Sample> all(std::uint64_t steadyMs, std::uint64_t wallMs);
    // The metric's value, whatever it was before.
    Sample sampleOf(std::size_t metric, std::uint64_t steadyMs, std::uint64_t wallMs);
    bool areFresh() const;

private:
    void addGroup(Session& session, const Label_File& file, const Poll_Group& group);
    void allowWriting(Session& session, const Label_File& file, const std::vector<std::string>& writable);

    const std::vector<Poll_Group> groups;
    std::vector<Watched> variables;
    std::vector<Metric_Entry> entries;
    std::vector<Change_Filter> filters;
};

// Writes what a command asks for and reads it back. Throws std::invalid_argument with the reason why that is not what
// the controller holds now.
void writeVerified(Session& session, const Variable& variable, const std::string& typed);

}  // namespace vornex::edge

#endif
