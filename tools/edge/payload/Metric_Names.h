// Names of metrics, made of label texts.
#ifndef VORNEX_EDGE_PAYLOAD_METRIC_NAMES_H
#define VORNEX_EDGE_PAYLOAD_METRIC_NAMES_H

#include <string>
#include <vector>

namespace vornex::edge {

// "Motors/2/Speed" of "Motors[2].Speed", "Grid/1/3" of "Grid[1,3]": readers show the parts between slashes as a tree.
std::string metricName(const std::string& label);

// The names of all labels, in their order. Throws std::invalid_argument that says which two labels have one name: the
// same, or one that differs in upper and lower case alone, which readers of metrics need not tell apart.
std::vector<std::string> metricNames(const std::vector<std::string>& labels);

}  // namespace vornex::edge

#endif
