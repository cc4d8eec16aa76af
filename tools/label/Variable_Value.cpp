#include "Variable_Value.h"

#include <stdexcept>

#include "../common/Text_Input.h"
#include "Value_View.h"

namespace vornex {

namespace {

std::string readFile(const std::string& path) {
    try {
        return wholeText(path);
    } catch (const File_Error& mistake) {
        throw std::invalid_argument(mistake.what());
    }
}

// Ends the run with the array; says by how much it would not fit.
std::string fitting(const Variable& variable, const std::string& bytes, const std::string& what) {
    const std::uint64_t room = std::uint64_t(variable.elements) * variable.bytes;
    if (bytes.size() % variable.bytes != 0) {
        throw std::invalid_argument(what + ": " + std::to_string(bytes.size()) + " bytes are not whole elements of " +
                                    std::to_string(variable.bytes) + " bytes");
    }
    if (bytes.size() > room) {
        throw std::invalid_argument(what + ": " + std::to_string(bytes.size()) + " bytes do not fit, '" +
                                    variable.text + "' has " + std::to_string(room) + " from here on");
    }
    if (bytes.empty()) throw std::invalid_argument(what + ": no bytes to write");
    return bytes;
}

std::string listBytes(const Variable& variable, View view, const std::string& text) {
    if (text.back() != ']') throw std::invalid_argument("the list has no closing ]");
    const std::string inner = text.substr(1, text.size() - 2);
    std::string bytes;
    for (std::size_t at = 0; at <= inner.size();) {
        const std::size_t comma = std::min(inner.find(',', at), inner.size());
        bytes += parseValue(view, variable.bytes, trimmed(inner.substr(at, comma - at)));
        at = comma + 1;
    }
    return fitting(variable, bytes, "the list");
}

// Text in quotes over one-byte elements. In a whole array it takes the place of the old text: the rest becomes zero.
std::string textBytes(const Variable& variable, bool wholeArray, const std::string& text) {
    if (variable.bytes != 1) {
        throw std::invalid_argument("text needs elements of one byte, '" + variable.text + "' has " +
                                    std::to_string(variable.bytes));
    }
    std::string bytes = text.substr(1, text.size() - 2);
    if (wholeArray && bytes.size() < variable.elements) bytes.resize(variable.elements, '\0');
    return fitting(variable, bytes, "the text");
}

}  // namespace

Value valueOfRun(const Variable& variable, View view, const std::string& bytes) {
    std::size_t width = viewBytes(view);
    if (width == 0) width = variable.bytes;
    if ((view == View::Text || view == View::Bytes) && variable.bytes == 1) width = bytes.size();
    if (width == 0 || bytes.size() % width != 0) {
        throw Tool_Error(Exit_Code::Usage, "view " + viewName(view) + " takes " + std::to_string(width) + " bytes, '" +
                                               variable.text + "' gives " + std::to_string(bytes.size()) +
                                               ": choose -c or another view");
    }
    if (bytes.size() == width) return viewValue(view, bytes);
    std::vector<Value> values;
    for (std::size_t at = 0; at < bytes.size(); at += width)
        values.push_back(viewValue(view, bytes.substr(at, width)));
    return values;
}

std::string bytesOfValue(const Variable& variable, View view, bool wholeArray, const std::string& text) {
    const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    if (quoted) return textBytes(variable, wholeArray, text);
    if (!text.empty() && text.front() == '@') return fitting(variable, readFile(text.substr(1)), text.substr(1));
    if (!text.empty() && text.front() == '[') return listBytes(variable, view, text);
    if (wholeArray) {
        throw std::invalid_argument("'" + variable.text + "' begins an array of " + std::to_string(variable.elements) +
                                    " elements: write a list [...], or name one element");
    }
    const std::size_t width = viewBytes(view);
    if (width != 0 && width != variable.bytes) {
        throw std::invalid_argument("view " + viewName(view) + " has " + std::to_string(width) + " bytes, '" +
                                    variable.text + "' has " + std::to_string(variable.bytes));
    }
    return parseValue(view, variable.bytes, text);
}

std::string assignmentText(const Variable& variable, const Value& value) {
    const bool isKnown = value.kind != Value::Kind::Null;
    const std::string shown = value.kind == Value::Kind::Text && variable.view == View::Text && isKnown
                                  ? "\"" + value.text + "\""
                                  : value.shown();
    return variable.text + " = " + shown + (isKnown && !variable.unit.empty() ? " " + variable.unit : "");
}

}  // namespace vornex
