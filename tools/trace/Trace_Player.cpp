#include "trace/Trace_Player.h"

#include <stdexcept>

#include "host/Driver_Labels.h"
#include "host/Host_Settings.h"
#include "host/link/Exchange.h"
#include "text/Hex.h"
#include "text/Text.h"
#include "trace/Record_Json.h"
#include "values/Record_Line.h"

namespace vornex {

namespace {

using Json = nlohmann::json;

const std::int64_t MostRequests = 200000;  // that the elements of a poll list are too long for

QString textOf(const Json& event, const Key& key) { return driverText(event.at(key.name).get<std::string>()); }

std::string frameHex(const Protocol* protocol) {
    if (!protocol) return "nothing to send";
    return hexBytes(std::string(protocol->frame.constData(), static_cast<std::size_t>(protocol->frameLength)));
}

}  // namespace

void Trace_Player::start(const Json& event) {
    setUpComInfo(comInfo, intOf(event, key::maxBytes, 1, LongestRequest), intOf(event, key::retries, 0, 1000));
    driver.SetComInfo(&comInfo);
    const std::string text = event.at(key::labelText.name);
    if (!text.empty()) passLabels(driverLabels(parseLabels(text, event.at(key::labelFile.name))));
    started = true;
}

void Trace_Player::memory(const Json& event) {
    passLabels(memoryLabel(addressOf(event), intOf(event, key::typeCode, 0, 65535)));
}

void Trace_Player::poll(const Json& event) {
    QList<HOST_VAR> definitions;
    std::int64_t requests = 0;
    for (const Json& label : event.at(key::definitions.name)) {
        HOST_VAR variable;
        variable.label = driverText(label.at(0).get<std::string>());
        variable.labelIndex = driverText(label.at(1).get<std::string>());
        variable.dataType = static_cast<quint8>(numberIn(label.at(2), key::definitions.name, 0, 255));
        variable.count = static_cast<int>(numberIn(label.at(3), key::definitions.name, 0, MostUnits));
        requests += std::int64_t(2) * variable.count / comInfo.maxBytesPerRequest;
        if (requests > MostRequests) throw std::invalid_argument("\"definitions\" need more than 200000 requests");
        definitions.append(variable);
    }
    driver.ReCreatReadVarList(&definitions);
}

void Trace_Player::read(const Json& event) {
    RW_VAR request;
    request.label = textOf(event, key::label);
    request.labelIndex = textOf(event, key::index);
    request.varType = request.dataType = intOf(event, key::typeCode);
    request.varId = intOf(event, key::id);
    request.length = intOf(event, key::bytes, 0, 2 * MostUnits);
    driver.AddListOnceReadVar(&request);
}

void Trace_Player::write(const Json& event) {
    const std::string bytes = bytesOfHex(event.at(key::data.name));
    QByteArray data(bytes.data(), static_cast<int>(bytes.size()));
    const int type = intOf(event, key::typeCode);
    driver.SetRegisterData(textOf(event, key::label), type, textOf(event, key::index), 0, &data,
                           intOf(event, key::count, 0, MostUnits), type, intOf(event, key::id));
}

void Trace_Player::frame(const Json& event) {
    const std::string recorded = hexBytes(bytesOfHex(event.at(key::frame.name)));
    const std::string now = frameHex(driver.ComCommunication());
    if (recorded != now) throw Trace_Difference{"frame " + recorded, now};
    ++frames;
}

void Trace_Player::idle() {
    const Protocol* const protocol = driver.ComCommunication();
    if (protocol) throw Trace_Difference{"nothing to send", "frame " + frameHex(protocol)};
}

void Trace_Player::reply(const Json& event) {
    Exchange exchange;
    exchange.transfer.reply = bytesOfHex(event.at(key::reply.name));
    exchange.countsDiffer = event.at(key::countsDiffer.name);
    QByteArray bytes;
    int length = 0;
    handOver(exchange, bytes, length);
    const int recorded = intOf(event, key::status);
    const int now = driver.DataCom(&bytes, length)->status;
    if (recorded != now) throw Trace_Difference{"result " + std::to_string(recorded), "result " + std::to_string(now)};
}

void Trace_Player::playEvent(const Json& event) {
    const std::string kind = event.at(key::event.name);
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

void Trace_Player::play(const std::string& line) {
    if (trimmed(line).empty()) return;
    try {
        playEvent(parseRecordLine(line));
    } catch (const Json::exception& mistake) {
        throw std::invalid_argument(mistake.what());
    }
}

}  // namespace vornex
