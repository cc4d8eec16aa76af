// vornex-label replay
#include <fstream>
#include <memory>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "Driver_Labels.h"
#include "Session.h"
#include "Value_View.h"
#include "Verb_Table.h"

namespace vornex {

namespace {

using Json = nlohmann::json;

// What the driver did otherwise than the record says.
struct Difference {
    std::string recorded;
    std::string now;
};

// Repeats a record's calls on a driver that has not been used yet.
class Replayer {
public:
    explicit Replayer(Tool& userTool) : tool(userTool), driver(userTool.driver()) {}

    // One line. Throws std::invalid_argument for a line that is no part of a record, Difference for another outcome.
    void play(const Json& event);

    int frames = 0;
    int calls = 0;

private:
    void start(const Json& event);
    void passLabels(QList<Label_Type_Info> labels) { driver.PassVarName_2(&labels); }
    void memory(const Json& event);
    void poll(const Json& event);
    void read(const Json& event);
    void write(const Json& event);
    void frame(const Json& event);
    void reply(const Json& event);
    void idle();

    Tool& tool;
    const Driver_Library& driver;
    ComInfo comInfo;
    bool started = false;
};

std::string frameHex(const Protocol* protocol) {
    if (!protocol) return "nothing to send";
    return hexBytes(std::string(protocol->frame.constData(), static_cast<std::size_t>(protocol->frameLength)));
}

QString textOf(const Json& event, const char* key) { return driverText(event.at(key).get<std::string>()); }

void Replayer::start(const Json& event) {
    if (event.at("version") != 1) throw std::invalid_argument("this version of the record is not known");
    Common_Options options = tool.options;
    options.maxBytes = event.at("maxBytes");
    options.retries = event.at("retries");
    setUpComInfo(comInfo, options);
    driver.SetComInfo(&comInfo);
    const std::string text = event.at("text");
    if (!text.empty()) passLabels(driverLabels(parseLabelFile(text, event.at("labels"))));
    started = true;
}

void Replayer::memory(const Json& event) {
    Label_Type_Info info;
    info.name = Session::MemoryLabel;
    info.typeFlags = event.at("type");
    info.address = event.at("address");
    QList<Label_Type_Info> labels;
    labels.append(info);
    passLabels(labels);
}

void Replayer::poll(const Json& event) {
    QList<HOST_VAR> definitions;
    for (const Json& label : event.at("labels")) {
        HOST_VAR variable;
        variable.label = driverText(label.at(0).get<std::string>());
        variable.labelIndex = driverText(label.at(1).get<std::string>());
        variable.dataType = label.at(2);
        variable.count = label.at(3);
        definitions.append(variable);
    }
    driver.ReCreatReadVarList(&definitions);
}

void Replayer::read(const Json& event) {
    RW_VAR request;
    request.label = textOf(event, "label");
    request.labelIndex = textOf(event, "index");
    request.varType = request.dataType = event.at("type");
    request.varId = event.at("id");
    request.length = event.at("length");
    driver.AddListOnceReadVar(&request);
}

void Replayer::write(const Json& event) {
    const std::string bytes = bytesOfHex(event.at("data"));
    QByteArray data(bytes.data(), static_cast<int>(bytes.size()));
    const int type = event.at("type");
    driver.SetRegisterData(textOf(event, "label"), type, textOf(event, "index"), 0, &data, event.at("count"), type,
                           event.at("id"));
}

void Replayer::frame(const Json& event) {
    const std::string recorded = hexBytes(bytesOfHex(event.at("frame")));
    const std::string now = frameHex(driver.ComCommunication());
    if (recorded != now) throw Difference{"frame " + recorded, now};
    ++frames;
}

void Replayer::idle() {
    const Protocol* const protocol = driver.ComCommunication();
    if (protocol) throw Difference{"nothing to send", "frame " + frameHex(protocol)};
}

void Replayer::reply(const Json& event) {
    Exchange exchange;
    exchange.transfer.reply = bytesOfHex(event.at("reply"));
    exchange.countsDiffer = event.at("shifted");
    QByteArray bytes;
    int length = 0;
    handOver(exchange, bytes, length);
    const int recorded = event.at("status");
    const int now = driver.DataCom(&bytes, length)->status;
    if (recorded != now) throw Difference{"result " + std::to_string(recorded), "result " + std::to_string(now)};
}

void Replayer::play(const Json& event) {
    const std::string kind = event.at("event");
    if (kind == "start") return start(event);
    if (!started) throw std::invalid_argument("the record does not begin with its start");
    if (kind == "frame") return frame(event);
    if (kind == "reply") return reply(event);
    if (kind == "idle") return idle();
    if (kind == "link") return;
    ++calls;
    if (kind == "poll") return poll(event);
    if (kind == "read") return read(event);
    if (kind == "write") return write(event);
    if (kind == "memory") return memory(event);
    throw std::invalid_argument("unknown event '" + kind + "'");
}

void show(Output& out, const Replayer& replayer, int line, const Difference& difference) {
    const bool equal = difference.recorded.empty();
    Row row;
    row.add("frames", replayer.frames).add("calls", replayer.calls).add("equal", equal);
    row.add("line", equal ? Value() : Value(line)).add("recorded", difference.recorded).add("now", difference.now);
    const std::string counts = std::to_string(replayer.frames) + " frames, " + std::to_string(replayer.calls) + " calls";
    out.row(row, equal ? "equal: " + counts
                       : "differs at line " + std::to_string(line) + " after " + counts + "\n  recorded: " +
                             difference.recorded + "\n  now:      " + difference.now);
}

Exit_Code replay(Tool& tool, const std::string& path) {
    std::ifstream file(path);
    if (!file) throw Tool_Error(Exit_Code::Usage, "record '" + path + "' cannot be read");
    Replayer replayer(tool);
    int line = 0;
    try {
        for (std::string text; std::getline(file, text);) {
            ++line;
            if (!trimmed(text).empty()) replayer.play(Json::parse(text));
            if (line % 1000 == 0) tool.out.progress("line " + std::to_string(line));
        }
    } catch (const Difference& difference) {
        show(tool.out, replayer, line, difference);
        return Exit_Code::VerifyMismatch;
    } catch (const std::exception& mistake) {
        throw Tool_Error(Exit_Code::Usage, path + ":" + std::to_string(line) + ": " + mistake.what());
    }
    if (line == 0) throw Tool_Error(Exit_Code::Usage, "record '" + path + "' is empty");
    show(tool.out, replayer, line, {});
    return Exit_Code::Ok;
}

}  // namespace

Verb replayVerb() {
    const auto path = std::make_shared<std::string>();
    Verb verb;
    verb.name = "replay";
    verb.summary = "Feed a recorded link through the driver, without a controller";
    verb.description =
        "Takes a record made with --trace FILE.jsonl, repeats the host's calls on the driver and hands it the recorded "
        "replies. Every frame and result is compared with the record; the first difference is shown and ends the tool "
        "with exit status 5. The record holds its label file, so that no other file is needed.";
    verb.options = {Option("FILE", "", "The record.", path.get()).must()};
    verb.examples = {
        {"replay link.jsonl", "Does this driver still do what it did?"},
        {"replay link.jsonl --library ./libvornex_label_tcp.so.1", "The same for another build of the driver."},
        {"replay link.jsonl -o json", "The outcome as a JSON object."},
    };
    verb.run = [path](Tool& tool) { return replay(tool, *path); };
    return verb;
}

}  // namespace vornex
