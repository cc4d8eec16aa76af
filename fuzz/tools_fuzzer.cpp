// What people and peers give to the tools: label files, tables, type texts, fault rules, frames, control lines, records
// and what is typed.
#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>

#include "Control.h"
#include "Driver_Records.h"
#include "Fuzz_Input.h"
#include "Label_Csv.h"
#include "Label_Explain.h"
#include "Label_Lint.h"
#include "Trace_Player.h"
#include "Value_View.h"
#include "Watch_Condition.h"

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

// What the controller of the simulator serves.
const sim::Plant& plant() {
    static const sim::Plant plant(parseLabelFile(R"json({"format": 1, "structs": {"S": {"size": 4, "members": [
            {"name": "A", "type": "3", "at": 0, "sim": "count(10)"}, {"name": "B", "type": "1[0..1]", "at": 2}]}},
            "labels": [{"name": "V", "type": "5", "at": 0, "view": "s32", "sim": "ramp(0,9,100)"},
                       {"name": "T", "type": "10", "at": 16}, {"name": "M", "type": "S[1..3]", "at": 512}]})json",
                                                 "plant.json"),
                                  sim::Pattern(), 1);
    return plant;
}

// The lines of the text, one after the other.
template <class Take>
void eachLine(const std::string& text, Take take) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        take(text.substr(at, end - at));
        at = end + 1;
    }
}

// Every line has an answer of its own form, and none of them ends the simulator.
void checkControl(const std::string& text) {
    sim::Controller controller(plant(), sim::Fault_Rules(1), [](const std::string&) {});
    double now = 0;
    const sim::Control_Hooks hooks = {[&now] { return now += 7; }, [] { return "{}"; }, [] {}};
    eachLine(text, [&](const std::string& line) {
        const std::string answer = sim::runControlLine(line, controller, hooks);
        const std::string last = answer.substr(answer.rfind('\n') + 1);
        const std::size_t begin = line.find_first_not_of(" \t\r");
        REQUIRE(answer.empty() == (begin == std::string::npos || line[begin] == '#'));
        REQUIRE(answer.empty() || last == "ok" || last.compare(0, 3, "ok ") == 0 || last.compare(0, 7, "error: ") == 0);
    });
}

// A record is refused or played; the driver below has the sanitizers too.
void checkRecord(const std::string& text) {
    static const std::string start =
        R"({"event":"start","version":1,"maxBytes":240,"retries":1,"labels":"f","text":)"
        R"("{\"format\":1,\"labels\":[{\"name\":\"V\",\"type\":\"3[0..9]\",\"at\":16}]}"})";
    static const Driver_Entry_Points driver = [] {
        Driver_Entry_Points points;
        points.SetComInfo = SetComInfo;
        points.PassVarName_2 = PassVarName_2;
        points.AddListOnceReadVar = AddListOnceReadVar;
        points.ReCreatReadVarList = ReCreatReadVarList;
        points.ComCommunication = ComCommunication;
        points.DataCom = DataCom;
        points.SetRegisterData = SetRegisterData;
        return points;
    }();
    Trace_Player player(driver);
    try {
        player.play(start);
        eachLine(text, [&player](const std::string& line) { player.play(line); });
    } catch (const std::invalid_argument&) {
    } catch (const File_Error&) {
    } catch (const Trace_Difference&) {
    }
    forgetEverything();
}

// What is typed: a value that parses has its element's bytes and reads the same when it is shown and typed again.
void checkTyped(const std::string& text) {
    static const Label_File file = parseLabelFile(R"json({"format": 1, "structs": {"S": {"size": 16, "members": [
        {"name": "A", "type": "3[0..1,-1..2]/16", "at": 0}]}},
        "labels": [{"name": "V", "type": "S[1..3]", "at": 0}]})json",
                                                  "typed.json");
    const View views[] = {View::U8, View::S16, View::U64, View::F32, View::Bool, View::Hex, View::Text, View::Bytes};
    const std::size_t sizes[] = {1, 2, 8, 4, 1, 4, 255, 8};
    for (std::size_t i = 0; i < std::size(views); ++i) {
        try {
            const std::string bytes = parseValue(views[i], sizes[i], text);
            REQUIRE(bytes.size() == sizes[i]);
            const Value shown = viewValue(views[i], bytes);
            if (views[i] != View::Text) REQUIRE(parseValue(views[i], sizes[i], shown.shown()) == bytes);
        } catch (const std::invalid_argument&) {
        }
    }
    try {
        parseCondition(text).metBy(Value(7));
    } catch (const std::invalid_argument&) {
    }
    const std::optional<Label_Problem> problem = explainLabel(file, text);
    REQUIRE(!problem || problem->at <= text.size());
    ignoredTail(file, text);
}

// A peer's bytes: a frame never claims more bytes than came, and the answer to a good one is as long as announced.
void checkFrames(const std::string& received) {
    const auto* at = reinterpret_cast<const std::uint8_t*>(received.data());
    std::size_t left = received.size();
    sim::Controller controller(plant(), sim::Fault_Rules(1), [](const std::string&) {});
    sim::Bytes previous;
    while (left > 0) {
        const sim::Parsed_Frame frame = sim::parseFrame(at, left, 4096);
        if (frame.kind != sim::Parsed_Frame::Kind::Good && frame.kind != sim::Parsed_Frame::Kind::Ignored) return;
        REQUIRE(frame.bytes > 0 && frame.bytes <= left);
        if (frame.kind == sim::Parsed_Frame::Kind::Good) {
            sim::requestText(frame.request);
            const sim::Delivery delivery = controller.answer(frame.request, previous, 5);
            REQUIRE(delivery.bytes.size() == sim::replyBytes(frame.request));
        }
        at += frame.bytes;
        left -= frame.bytes;
    }
}

using Check = void (*)(const std::string&);
const Check Checks[] = {checkJson,   checkCsv,     checkTypeText, checkFault,
                        checkFrames, checkControl, checkRecord,   checkTyped};

}  // namespace

// The first byte chooses the parser.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    Checks[data[0] % std::size(Checks)](std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    return 0;
}
