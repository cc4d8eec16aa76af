// What people and peers give to the tools: label files, tables, type texts, fault rules, frames, control lines, records
// and what is typed.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <stdexcept>
#include <string>

#include "Driver_Records.h"
#include "Fuzz_Input.h"
#include "labels/Label_Csv.h"
#include "labels/Label_Explain.h"
#include "labels/Label_Lint.h"
#include "sim/Control.h"
#include "trace/Trace_Player.h"
#include "values/Comparison.h"
#include "values/Shown_Value.h"
#include "values/Value_Codec.h"
#include "wire/Check_Value.h"
#include "wire/Frame_Reader.h"

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
sim::Plant plant() {
    static const Label_File labels = parseLabelFile(R"json({"format": 1, "structs": {"S": {"size": 4, "members": [
            {"name": "A", "type": "3", "at": 0, "sim": "count(10)"}, {"name": "B", "type": "1[0..1]", "at": 2}]}},
            "labels": [{"name": "V", "type": "5", "at": 0, "view": "s32", "sim": "ramp(0,9,100)"},
                       {"name": "T", "type": "10", "at": 16}, {"name": "M", "type": "S[1..3]", "at": 512}]})json",
                                                    "plant.json");
    return {labels, sim::Pattern(), 1};
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
        R"({"event":"start","version":2,"maxBytes":240,"retries":1,"labelFile":"f","labelText":)"
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

// What is shown can be typed again and gives the same bytes, but for what the codec says is lost; what is typed has its
// element's bytes.
void checkValues(const std::string& text) {
    for (const std::string& name : viewNames()) {
        const View view = *parseView(name);
        for (const std::size_t size : {1, 2, 4, 8, 255}) {
            try {
                REQUIRE(bytesOf(view, size, text).size() == size);
            } catch (const std::invalid_argument&) {
            }
            if (view == View::Bool || size % std::max(viewEntry(view).width, 1u) != 0) continue;
            std::string bytes = text.substr(0, size);
            if (view == View::Text) bytes = bytes.substr(0, bytes.find('\0'));
            bytes.resize(size, '\0');
            REQUIRE(bytesOf(view, size, typedText(view, valueOf(view, bytes))) == bytes);
        }
    }
}

// The same for shown values, whatever scale, offset, decimals and states are: the text's first bytes.
void checkMeanings(const std::string& text) {
    double numbers[2] = {};
    std::memcpy(numbers, text.data(), std::min(text.size(), sizeof numbers));
    const std::string rest = text.substr(std::min(text.size(), sizeof numbers));
    auto meaning = std::make_shared<Meaning>();
    if (std::isfinite(numbers[0])) meaning->scale = numbers[0];
    if (std::isfinite(numbers[1])) meaning->offset = numbers[1];
    if (!rest.empty() && rest[0] % 2 == 0) meaning->decimals = rest[0] & 15;
    if (rest.size() > 1 && rest[1] % 2 == 0) meaning->states = {{"off", 0}, {rest.substr(2, 3), rest[1]}};
    for (const View view : {View::U8, View::S16, View::U32, View::S64, View::U64, View::F32, View::F64, View::Hex}) {
        const std::uint32_t size = view == View::Hex ? 2 : viewEntry(view).width;
        if (!meaningProblem(*meaning, view, size).empty()) continue;
        const Value_Form form(view, size, meaning);
        std::string bytes = rest.substr(0, size);
        bytes.resize(size, '\0');
        REQUIRE(bytesOfShown(form, shownOf(form, bytes).shown()) == bytes);
        try {
            checkLimits(form, bytesOfShown(form, rest));
        } catch (const std::invalid_argument&) {
        }
    }
}

// Values, conditions and label texts.
void checkTyped(const std::string& text) {
    checkValues(text);
    static const Label_File file = parseLabelFile(R"json({"format": 1, "structs": {"S": {"size": 16, "members": [
        {"name": "A", "type": "3[0..1,-1..2]/16", "at": 0}]}},
        "labels": [{"name": "V", "type": "S[1..3]", "at": 0}]})json",
                                                  "typed.json");
    try {
        parseComparison(text).metBy(Value(7));
    } catch (const std::invalid_argument&) {
    }
    const std::optional<Label_Problem> problem = explainLabel(file, text);
    REQUIRE(!problem || problem->at <= text.size());
    ignoredTail(file, text);
}

// A peer's bytes: a frame never claims more bytes than came, and the answer to a good one is as long as announced.
void checkFrames(const std::string& received) {
    std::string_view rest = received;
    sim::Controller controller(plant(), sim::Fault_Rules(1), [](const std::string&) {});
    std::string previous;
    while (!rest.empty()) {
        const Parsed_Frame frame = parseFrame(rest, 4096);
        if (frame.kind != Parsed_Frame::Kind::Good && frame.kind != Parsed_Frame::Kind::Ignored) break;
        REQUIRE(frame.bytes > 0 && frame.bytes <= rest.size());
        if (frame.kind == Parsed_Frame::Kind::Good) {
            requestText(frame.request);
            const sim::Delivery delivery = controller.answer(frame.request, previous, 5);
            REQUIRE(delivery.bytes.size() == replyBytes(frame.request));
            const std::optional<Reply> reply = readReply(delivery.bytes, frame.request.items.size());
            REQUIRE(checkIsRight(delivery.bytes) && reply && answers(*reply, frame.request));
        }
        rest.remove_prefix(frame.bytes);
    }
    if (const std::optional<Reply> reply = readReply(received)) {
        std::size_t bytes = HeaderBytes + reply->rest.size() + CheckBytes;
        for (const Reply_Item& item : reply->items)
            bytes += CountBytes + item.data.size();
        REQUIRE(bytes == received.size());
    }
}

using Check = void (*)(const std::string&);
const Check Checks[] = {checkJson,    checkCsv,    checkTypeText, checkFault,   checkFrames,
                        checkControl, checkRecord, checkTyped,    checkMeanings};

}  // namespace

// The first byte chooses the parser.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    Checks[data[0] % std::size(Checks)](std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    return 0;
}
