#include "trace/Record_Lines.h"

#include "host/Driver_Labels.h"
#include "text/Hex.h"
#include "text/Text_Input.h"
#include "trace/Record_Json.h"
#include "values/Record_Line.h"
#include "values/Row.h"
#include "wire/Frame_Reader.h"

namespace vornex {

Record_Head recordHead(const Host_Settings& settings, const Label_File& labels) {
    return {labels.path, labels.path.empty() ? "" : wholeText(labels.path), settings.maxBytes, settings.retries};
}

void Record_Lines::put(const Row& row) { take(jsonObject(row) + "\n"); }

void Record_Lines::begin(const Record_Head& head) {
    put(Row()
            .add(key::event, "start")
            .add(key::version, RecordVersion)
            .add(key::labelFile, head.labelFile)
            .add(key::labelText, head.labelText)
            .add(key::maxBytes, head.maxBytes)
            .add(key::retries, head.retries));
}

void Record_Lines::readQueued(const Label_Range& range, int id) {
    put(Row()
            .add(key::event, "read")
            .add(key::label, range.label)
            .add(key::index, std::to_string(range.index))
            .add(key::typeCode, range.code)
            .add(key::id, id)
            .add(key::bytes, range.bytes));
}

void Record_Lines::writeQueued(const Label_Range& range, const std::string& data, int id) {
    put(Row()
            .add(key::event, "write")
            .add(key::label, range.label)
            .add(key::index, std::to_string(range.index))
            .add(key::typeCode, range.code)
            .add(key::id, id)
            .add(key::count, hostCount(range))
            .add(key::data, hexBytes(data, "")));
}

void Record_Lines::pollSet(const std::vector<Label_Range>& ranges) {
    std::vector<Value> list;
    list.reserve(ranges.size());
    for (const Label_Range& range : ranges)
        list.push_back(std::vector<Value>{range.label, std::to_string(range.index), range.code, hostCount(range)});
    put(Row().add(key::event, "poll").add(key::definitions, list));
}

void Record_Lines::memoryLabelSet(std::uint32_t address, int code) {
    put(Row().add(key::event, "memory").add(key::address, address).add(key::typeCode, code));
}

void Record_Lines::frameGiven(const Exchange& exchange) {
    put(Row()
            .add(key::event, "frame")
            .add(key::time, timeText(exchange.sentAt, Fraction::Micro))
            .add(key::attempt, exchange.attempt)
            .add(key::frame, hexBytes(exchange.frame, ""))
            .add(key::replyBytes, exchange.replyLength));
}

void Record_Lines::exchangeDone(const Exchange& exchange) {
    const std::string& reply = exchange.transfer.reply;
    Row row;
    row.add(key::event, "reply")
        .add(key::time, timeText(exchange.repliedAt, Fraction::Micro))
        .add(key::reply, hexBytes(reply, ""));
    if (hasHeader(reply)) row.add(key::header, hexBytes(headerOf(reply), ""));
    row.add(key::countsDiffer, exchange.countsDiffer).add(key::status, exchange.status);
    put(row.add(key::fault, exchange.fault()).add(key::latencyUs, exchange.latency.count()));
}

void Record_Lines::nothingToSend() { put(Row().add(key::event, "idle")); }

void Record_Lines::linkChanged(const Link_Change& change) {
    put(Row()
            .add(key::event, "link")
            .add(key::time, timeText(change.at, Fraction::Micro))
            .add(key::link, LinkWords[static_cast<std::size_t>(change.state)])
            .add(key::reason, change.reason));
}

}  // namespace vornex
