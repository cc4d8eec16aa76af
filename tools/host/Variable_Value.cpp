#include "host/Variable_Value.h"

#include <stdexcept>

#include "text/Text_Input.h"
#include "values/Value_Codec.h"

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

// Text in quotes over one-byte elements. In a whole array it takes the place of the old text: the rest becomes zero.
std::string textBytes(const Variable& variable, bool wholeArray, const std::string& text) {
    std::string bytes = bytesOfText(text);
    if (wholeArray && bytes.size() < variable.elements) bytes.resize(variable.elements, '\0');
    return fitting(variable, bytes, "the text");
}

bool isTextOver(const Variable& variable, const std::string& text) {
    return variable.bytes == 1 && text.size() >= 2 && text.front() == '"' && text.back() == '"';
}

std::string typedBytes(const Variable& variable, bool wholeArray, const std::string& text) {
    if (variable.bit) {
        std::string element(variable.bytes, '\0');
        if (bytesOf(View::Bool, 1, text)[0] != 0)
            element[*variable.bit / 8] = static_cast<char>(1u << *variable.bit % 8);
        return element;
    }
    if (isTextOver(variable, text)) return textBytes(variable, wholeArray, text);
    if (!text.empty() && text.front() == '@') return fitting(variable, readFile(text.substr(1)), text.substr(1));
    if (!text.empty() && text.front() == '[')
        return fitting(variable, bytesOfShownList(formOf(variable), text), "the list");
    if (wholeArray) {
        throw std::invalid_argument("'" + variable.text + "' begins an array of " + std::to_string(variable.elements) +
                                    " elements: write a list [...], or name one element");
    }
    return bytesOfShown(formOf(variable), text);
}

}  // namespace

Value_Form formOf(const Variable& variable) {
    Value_Form form(variable.view, variable.bytes, variable.meaning);
    form.isRaw = variable.isRaw;
    if (variable.bit || variable.view != variable.ownView) form.meaning = nullptr;
    return form;
}

Value rawValue(const Variable& variable, const std::string& bytes) {
    if (variable.bit) {
        const std::uint32_t place = *variable.bit / 8;
        return place < bytes.size() && (static_cast<unsigned char>(bytes[place]) >> *variable.bit % 8 & 1) != 0;
    }
    const bool isOne = (variable.view == View::Text || variable.view == View::Bytes) && variable.bytes == 1;
    return valueOf(variable.view, bytes, isOne ? bytes.size() : variable.bytes);
}

Value shownValue(const Variable& variable, const std::string& bytes) {
    return shownValue(formOf(variable), rawValue(variable, bytes));
}

std::string bytesOfValue(const Variable& variable, bool wholeArray, const std::string& text) {
    std::string bytes = typedBytes(variable, wholeArray, text);
    // under another view and for a bit as well: the limits are the label's
    if (!variable.bit) checkLimits({variable.ownView, variable.bytes, variable.meaning}, bytes);
    return bytes;
}

std::string writeRemark(const Variable& variable, bool wholeArray, const std::string& text, std::size_t bytesWritten) {
    if (isTextOver(variable, text)) {
        const std::size_t length = bytesOfText(text).size();
        if (length == bytesWritten) return "";
        return "the text has " + std::to_string(length) + " bytes, the other " + std::to_string(bytesWritten - length) +
               " of the array become 0";
    }
    const bool isFile = !text.empty() && text.front() == '@';
    std::string inexact = isFile || variable.bit ? "" : inexactRemark(formOf(variable), text);
    const std::size_t elements = bytesWritten / variable.bytes;
    if (!wholeArray || elements >= variable.elements) return inexact;
    return std::to_string(elements) + " of " + std::to_string(variable.elements) +
           " elements are written, the others stay as they are" + (inexact.empty() ? "" : "; " + inexact);
}

std::string assignmentText(const Variable& variable, const Value& value, const std::string& band) {
    const bool isKnown = value.kind != Value::Kind::Null;
    return variable.text + " = " + typedText(variable.view, value) +
           (isKnown && !variable.unit.empty() ? " " + variable.unit : "") + (band.empty() ? "" : " (" + band + ")");
}

}  // namespace vornex
