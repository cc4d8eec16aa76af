// vornex-label dump
#include <algorithm>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "Online.h"
#include "Span_Read.h"
#include "Value_View.h"
#include "Verb_Table.h"

namespace vornex {

namespace {

struct Dump_Options {
    std::string address;
    std::string length;
};

const std::uint32_t BytesOfLine = 16;
const std::uint64_t MostBytes = 16u << 20;  // what the driver hands out at once, and an hour of reading

std::uint64_t parseNumber(const std::string& text, const char* what) {
    std::uint64_t number = 0;
    try {
        const std::string bytes = parseValue(View::U64, 8, text);
        for (std::size_t i = 8; i-- > 0;)
            number = number << 8 | static_cast<unsigned char>(bytes[i]);
    } catch (const std::invalid_argument& mistake) {
        throw Tool_Error(Exit_Code::Usage, std::string(what) + " " + mistake.what());
    }
    return number;
}

bool isNumber(const std::string& text) { return !text.empty() && text[0] >= '0' && text[0] <= '9'; }

std::uint32_t findAddress(Tool& tool, Session& session, const std::string& text) {
    Extent extent = Extent::Element;
    if (!isNumber(text)) return firstVariable(session, tool.labels(), text, 0, extent).address;
    const std::uint64_t address = parseNumber(text, "address");
    if (address > 0xFFFFFFFF) throw Tool_Error(Exit_Code::Usage, "address '" + text + "' is beyond 32 bits");
    return static_cast<std::uint32_t>(address);
}

std::string printable(const std::string& bytes) {
    std::string text;
    for (char byte : bytes)
        text += byte >= 0x20 && byte < 0x7F ? byte : '.';
    return text;
}

std::string offsetText(std::uint32_t address) {
    char text[16];
    std::snprintf(text, sizeof text, "%08X", address);
    return text;
}

void showLine(Output& out, std::uint32_t address, std::uint32_t length, bool known, const std::string& bytes) {
    std::string hex = known ? hexBytes(bytes) : std::string("??");
    for (std::uint32_t i = 1; !known && i < length; ++i)
        hex += " ??";
    Row row;
    row.add("address", address).add("bytes", known ? Value(hex) : Value());
    row.add("text", known ? Value(printable(bytes)) : Value());
    std::string text = offsetText(address) + "  " + hex;
    text.resize(std::max<std::size_t>(text.size(), 10 + 3 * BytesOfLine), ' ');
    out.row(row, text + " |" + (known ? printable(bytes) : std::string(length, '?')) + "|");
}

// One span was read: its bytes come out of the driver's image through the label that points at it.
void showSpan(Session& session, Output& out, const Span& span) {
    session.setMemoryLabel(span.address, span.range.code);
    const std::string bytes = session.bytes(span.range);
    for (std::uint32_t done = 0; done < span.range.bytes; done += BytesOfLine) {
        const std::uint32_t length = std::min(BytesOfLine, span.range.bytes - done);
        const bool known = session.freshness(span.address + done, length) != Freshness::Unknown;
        showLine(out, span.address + done, length, known, bytes.substr(done, length));
    }
}

Exit_Code dump(Tool& tool, const Dump_Options& options) {
    const std::uint64_t length = parseNumber(options.length, "length");
    Online online(tool);
    const std::uint32_t address = findAddress(tool, online.session, options.address);
    if (length == 0 || length > MostBytes || address + length > 0x100000000) {
        throw Tool_Error(Exit_Code::Usage, "length '" + options.length + "' is not 1 to " + std::to_string(MostBytes) +
                                               " bytes within 32 bits of address");
    }
    std::vector<Span> spans;
    addMemorySpans(spans, address, length, online.session.maxBytes());
    online.connect();
    readSpans(online.session, tool.out, spans);
    for (const Span& span : spans)
        showSpan(online.session, tool.out, span);
    const Span* const failed = firstFailure(spans);
    if (!failed) return Exit_Code::Ok;
    throw Tool_Error(Exit_Code::GaveUp,
                     "at " + offsetText(failed->address) + ": " + completionText(failed->completion));
}

}  // namespace

Verb dumpVerb() {
    const auto own = std::make_shared<Dump_Options>();
    Verb verb;
    verb.name = "dump";
    verb.summary = "Show controller memory in hex";
    verb.description =
        "Reads a run of controller bytes by address, whatever labels lie there; a label file is needed only for an "
        "address given as a label. Bytes that the controller did not deliver are shown as ??.";
    verb.options = {
        Option("ADDRESS", "", "Byte address, decimal or 0x, or a label.", &own->address).must(),
        Option("LENGTH", "", "Bytes, decimal or 0x.", &own->length).must(),
    };
    verb.examples = {
        {"dump -t 192.168.0.10:2000 0x64 64", "64 bytes from address 100 on."},
        {"dump -l plant.json 'Motors[2].Speed' 4", "The bytes behind a label."},
        {"dump -l plant.json 0 4096 -o json", "An object for every 16 bytes."},
    };
    verb.run = [own](Tool& tool) { return dump(tool, *own); };
    return verb;
}

}  // namespace vornex
