// What people and peers give to the tools: label files, tables, type texts, control lines, fault rules, frames.
#include <stdexcept>
#include <string>

#include "Control.h"
#include "Fault_Rules.h"
#include "Frame_Codec.h"
#include "Fuzz_Input.h"
#include "Label_Csv.h"
#include "Label_File.h"
#include "Label_Lint.h"

namespace {

using namespace vornex;

// A file that reads well can be walked, linted, and written so that it reads the same again.
void checkFile(const Label_File& file) {
    int left = 300;
    forEachLeaf(file, [&left](const Leaf& leaf) {
        REQUIRE(leaf.code >= 1 && leaf.code <= 11 && leaf.view != View::Default);
        return --left > 0;
    });
    lintLabels(file, 0x10000);
    const std::string json = formatLabelJson(file);
    REQUIRE(formatLabelJson(parseLabelFile(json, "again")) == json);
    const std::string csv = formatLabelCsv(file, ',');
    REQUIRE(formatLabelJson(parseLabelCsv(csv, "again.csv")) == json);
}

void checkJson(const std::string& text) {
    Label_File file;
    try {
        file = parseLabelFile(text, "labels.json");
    } catch (const File_Error&) {
        return;
    }
    checkFile(file);
}

void checkCsv(const std::string& text) {
    Label_File file;
    try {
        file = parseLabelCsv(text, "labels.csv");
    } catch (const File_Error&) {
        return;
    }
    checkFile(file);
}

void checkTypeText(const std::string& text) {
    try {
        const std::string written = formatType(parseType(text));
        REQUIRE(formatType(parseType(written)) == written);
    } catch (const std::invalid_argument&) {
    }
}

void checkFault(const std::string& text) {
    try {
        sim::parseFault(text);
    } catch (const std::invalid_argument&) {
    }
}

// A peer's bytes: a frame never claims more bytes than came, and a good one is answered in bounds.
void checkFrames(const std::string& received) {
    const auto* at = reinterpret_cast<const std::uint8_t*>(received.data());
    std::size_t left = received.size();
    while (left > 0) {
        const sim::Parsed_Frame frame = sim::parseFrame(at, left, 4096);
        if (frame.kind != sim::Parsed_Frame::Kind::Good && frame.kind != sim::Parsed_Frame::Kind::Ignored) return;
        REQUIRE(frame.bytes > 0 && frame.bytes <= left);
        if (frame.kind == sim::Parsed_Frame::Kind::Good) {
            sim::requestText(frame.request);
            sim::replyBytes(frame.request);
        }
        at += frame.bytes;
        left -= frame.bytes;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 6) {
        case 0:
            checkJson(text);
            break;
        case 1:
            checkCsv(text);
            break;
        case 2:
            checkTypeText(text);
            break;
        case 3:
            checkFault(text);
            break;
        default:
            checkFrames(text);
            break;
    }
    return 0;
}
