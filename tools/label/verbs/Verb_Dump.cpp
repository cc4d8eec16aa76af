// vornex-label dump
#include <algorithm>
#include <memory>

#include "host/Span_Read.h"
#include "label/Online.h"
#include "label/verbs/Verb_Table.h"
#include "text/Hex.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex {

namespace {

struct Dump_Options {
    std::string address;
    std::string length;
};

const std::uint32_t BytesOfLine = 16;
const std::uint64_t MostBytes = 16u << 20;  // what the driver hands out at once, and an hour of reading

bool isNumber(const std::string& text) { return !text.empty() && text[0] >= '0' && text[0] <= '9'; }

std::uint32_t findAddress(Tool& tool, Session& session, const std::string& text) {
    Extent extent = Extent::Element;
    if (!isNumber(text)) return firstVariable(session, tool.labels(), text, Template_Index(), extent).address;
    return static_cast<std::uint32_t>(unsignedNumber(text, 0, 0xFFFFFFFF, "address"));
}

std::string printable(const std::string& bytes) {
    std::string text;
    for (char byte : bytes)
        text += byte >= 0x20 && byte < 0x7F ? byte : '.';
    return text;
}

std::string offsetText(std::uint32_t address) { return hexDigits(address, 8); }

void showLine(Output& out, std::uint32_t address, std::uint32_t length, bool known, const std::string& bytes) {
    std::string hex = known ? hexBytes(bytes) : std::string("??");
    for (std::uint32_t i = 1; !known && i < length; ++i)
        hex += " ??";
    Row row;
    row.add(key::address, address).add(key::data, known ? Value(hex) : Value());
    row.add(key::text, known ? Value(printable(bytes)) : Value());
    const std::string text = offsetText(address) + "  " + hex;
    out.row(row,
            padded(text, 10 + 3 * BytesOfLine) + " |" + (known ? printable(bytes) : std::string(length, '?')) + "|");
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
    const std::uint64_t length = unsignedNumber(options.length, 1, MostBytes, "length");
    Online online(tool);
    const std::uint32_t address = findAddress(tool, online.session, options.address);
    if (address + length > std::uint64_t(1) << 32) {
        throw Tool_Error(Exit_Code::Usage, "length '" + options.length + "' goes past the last address");
    }
    std::vector<Span> spans;
    addMemorySpans(spans, address, length, online.session.maxBytes());
    online.connect();
    readSpans(online.session, spans, readProgress(tool.out));
    for (const Span& span : spans)
        showSpan(online.session, tool.out, span);
    const Span* const failed = firstFailure(spans);
    if (!failed) return Exit_Code::Ok;
    throwFailed(*failed, "at " + offsetText(failed->address) + ": " + completionText(failed->completion));
}

}  // namespace

void addDumpVerb(Verbs& verbs) {
    const auto own = std::make_shared<Dump_Options>();
    const Page page = {
        "Show controller memory in hex",
        "Reads a run of controller bytes by address, whatever labels lie there; a label file is needed only for an "
        "address given as a label. Bytes that the controller did not deliver are shown as ??.",
        {{"dump -t 192.168.0.10:2000 0x64 64", "64 bytes from address 100 on."},
         {"dump -l plant.json 'Motors[2].Speed' 4", "The bytes behind a label."},
         {"dump -l plant.json 0 4096 -o json", "An object for every 16 bytes."}}};
    CLI::App& verb = verbs.add("dump", page, UsesLink, [own](Tool& tool) { return dump(tool, *own); });
    addArgument(verb, "ADDRESS", own->address, "Byte address, decimal or 0x, or a label.", Need::Must);
    addArgument(verb, "LENGTH", own->length, "Bytes, decimal or 0x.", Need::Must);
}

}  // namespace vornex
