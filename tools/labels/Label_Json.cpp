// The label file in its own notation: a line per structure head, member and label.
#include "labels/Label_Csv.h"
#include "text/Json_Tree.h"

namespace vornex {
namespace {

std::string labelLine(const Label& label) {
    std::string line = "{\"name\": " + jsonString(label.name) + ", \"type\": " + jsonString(formatType(label.type)) +
                       ", \"at\": " + std::to_string(label.at);
    if (label.view != View::Default) line += ", \"view\": " + jsonString(viewName(label.view));
    if (!label.unit.empty()) line += ", \"unit\": " + jsonString(label.unit);
    if (!label.sim.empty()) line += ", \"sim\": " + jsonString(label.sim);
    return line + "}";
}

std::string labelLines(const std::vector<Label>& labels, const std::string& indent) {
    std::string lines;
    for (const Label& label : labels)
        lines += (lines.empty() ? "\n" : ",\n") + indent + labelLine(label);
    return "[" + lines + (lines.empty() ? "]" : "\n" + indent.substr(2) + "]");
}

std::string structLines(const Label_File& file) {
    std::string lines;
    for (const auto& [name, type] : file.structs) {
        lines += (lines.empty() ? "\n    " : ",\n    ") + jsonString(name) +
                 ": {\"size\": " + std::to_string(type.size) + ", \"members\": " + labelLines(type.members, "      ") +
                 "}";
    }
    return "{" + lines + "\n  }";
}

}  // namespace

std::string formatLabelJson(const Label_File& file) {
    std::string text = "{\n  \"format\": 1,\n";
    if (!file.target.empty()) text += "  \"target\": " + jsonString(file.target) + ",\n";
    if (!file.structs.empty()) text += "  \"structs\": " + structLines(file) + ",\n";
    return text + "  \"labels\": " + labelLines(file.labels, "    ") + "\n}\n";
}

}  // namespace vornex
