// The label file in its own notation: a line per structure head, member and label.
#include <cstdio>

#include "Label_Csv.h"

namespace vornex {
namespace {

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char letter : text) {
        if (letter == '"' || letter == '\\') result += '\\';
        if (static_cast<unsigned char>(letter) >= 0x20) {
            result += letter;
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(letter));
            result += escape;
        }
    }
    return result + "\"";
}

std::string labelLine(const Label& label) {
    std::string line = "{\"name\": " + quoted(label.name) + ", \"type\": " + quoted(formatType(label.type)) +
                       ", \"at\": " + std::to_string(label.at);
    if (label.view != View::Default) line += ", \"view\": " + quoted(viewName(label.view));
    if (!label.unit.empty()) line += ", \"unit\": " + quoted(label.unit);
    if (!label.sim.empty()) line += ", \"sim\": " + quoted(label.sim);
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
        lines += (lines.empty() ? "\n    " : ",\n    ") + quoted(name) + ": {\"size\": " + std::to_string(type.size) +
                 ", \"members\": " + labelLines(type.members, "      ") + "}";
    }
    return "{" + lines + "\n  }";
}

}  // namespace

std::string formatLabelJson(const Label_File& file) {
    std::string text = "{\n  \"format\": 1,\n";
    if (!file.target.empty()) text += "  \"target\": " + quoted(file.target) + ",\n";
    if (!file.structs.empty()) text += "  \"structs\": " + structLines(file) + ",\n";
    return text + "  \"labels\": " + labelLines(file.labels, "    ") + "\n}\n";
}

}  // namespace vornex
