#include "trace/Record_Reader.h"

#include <cstring>
#include <fstream>
#include <stdexcept>

#include "text/Hex.h"
#include "text/Number.h"
#include "text/Text.h"
#include "text/Text_Input.h"
#include "trace/Record_Json.h"
#include "values/Record_Line.h"
#include "wire/Frame_Reader.h"

namespace vornex {

namespace {

using Json = nlohmann::json;

std::string textOf(const Json& event, const Key& key) { return event.at(key.name).get<std::string>(); }

// Controller bytes of so many of the host's units; the other way round is hostCount().
std::uint32_t bytesOfCount(int code, std::int64_t count) {
    return static_cast<std::uint32_t>(code >= 3 && code <= 9 ? 2 * count : count);
}

Label_Range rangeOf(const std::string& label, const std::string& index, int code, std::int64_t count) {
    return {label, wholeNumber<int>(index), code, bytesOfCount(code, count)};
}

// Fault() puts these before the reason.
struct Fault_Words {
    const char* words;
    Transfer_State state;
};
const Fault_Words WordedFaults[] = {{"no complete reply: ", Transfer_State::TimedOut},
                                    {"no connection: ", Transfer_State::NoLink}};

// A complete reply is worded anew from what is wrong with it.
void setOutcome(Exchange& exchange, const std::string& fault) {
    Transfer& transfer = exchange.transfer;
    const auto expected = static_cast<std::size_t>(exchange.replyLength);
    transfer.reason = fault;
    for (const Fault_Words& worded : WordedFaults) {
        if (fault.rfind(worded.words, 0) != 0) continue;
        transfer.state = worded.state;
        transfer.reason = fault.substr(std::strlen(worded.words));
        return;
    }
    if (exchange.good() || transfer.reply.size() == expected)
        transfer.state = Transfer_State::Complete;
    else
        transfer.state = transfer.reply.size() > expected ? Transfer_State::Surplus : Transfer_State::Closed;
}
}  // namespace

void Record_Reader::begin(const Json& event) {
    beginning = {textOf(event, key::labelFile), textOf(event, key::labelText),
                 intOf(event, key::maxBytes, 1, LongestRequest), intOf(event, key::retries, 0, 1000)};
    started = true;
}

void Record_Reader::poll(const Json& event) {
    std::vector<Label_Range> ranges;
    for (const Json& entry : event.at(key::definitions.name)) {
        const int code = static_cast<int>(numberIn(entry.at(2), key::definitions.name, 0, 255));
        ranges.push_back(
            rangeOf(entry.at(0), entry.at(1), code, numberIn(entry.at(3), key::definitions.name, 0, MostUnits)));
    }
    listener.pollSet(ranges);
}

void Record_Reader::read(const Json& event) {
    Label_Range range = rangeOf(textOf(event, key::label), textOf(event, key::index), intOf(event, key::typeCode), 0);
    range.bytes = static_cast<std::uint32_t>(intOf(event, key::bytes, 0, 2 * MostUnits));
    listener.readQueued(range, intOf(event, key::id));
}

void Record_Reader::write(const Json& event) {
    listener.writeQueued(rangeOf(textOf(event, key::label), textOf(event, key::index), intOf(event, key::typeCode),
                                 intOf(event, key::count, 0, MostUnits)),
                         bytesOfHex(textOf(event, key::data)), intOf(event, key::id));
}

void Record_Reader::frame(const Json& event) {
    Exchange next;
    next.sentAt = timeOfText(textOf(event, key::time));
    next.attempt = intOf(event, key::attempt, 1);
    next.frame = bytesOfHex(textOf(event, key::frame));
    next.request = readRequest(next.frame).value_or(Request());
    next.replyLength = intOf(event, key::replyBytes);
    pending = std::move(next);
    given = true;
    listener.frameGiven(pending);
}

void Record_Reader::reply(const Json& event) {
    if (!given) throw std::invalid_argument("a reply without its frame");
    Exchange done = pending;
    done.repliedAt = timeOfText(textOf(event, key::time));
    done.latency = std::chrono::microseconds(
        numberIn(event.at(key::latencyUs.name), key::latencyUs.name, 0, std::numeric_limits<std::int64_t>::max()));
    done.transfer.reply = bytesOfHex(textOf(event, key::reply));
    done.countsDiffer = event.at(key::countsDiffer.name);
    done.status = intOf(event, key::status);
    setOutcome(done, textOf(event, key::fault));
    given = false;
    listener.exchangeDone(done);
}

void Record_Reader::link(const Json& event) {
    const std::string word = textOf(event, key::link);
    Link_Change change;
    std::size_t state = 0;
    while (state < LinkWords.size() && word != LinkWords[state])
        ++state;
    if (state == LinkWords.size()) throw std::invalid_argument("unknown state of the link '" + word + "'");
    change.state = static_cast<Link_Change::State>(state);
    change.reason = textOf(event, key::reason);
    change.at = timeOfText(textOf(event, key::time));
    listener.linkChanged(change);
}

void Record_Reader::takeEvent(const Json& event) {
    const std::string kind = textOf(event, key::event);
    if (kind == "start") return begin(event);
    if (!started) throw std::invalid_argument("the record does not begin with its start");
    if (kind == "frame") return frame(event);
    if (kind == "reply") return reply(event);
    if (kind == "idle") return listener.nothingToSend();
    if (kind == "link") return link(event);
    if (kind == "poll") return poll(event);
    if (kind == "read") return read(event);
    if (kind == "write") return write(event);
    if (kind == "memory") return listener.memoryLabelSet(addressOf(event), intOf(event, key::typeCode, 0, 65535));
    throw std::invalid_argument("unknown event '" + kind + "'");
}

void Record_Reader::take(const std::string& line) {
    if (trimmed(line).empty()) return;
    try {
        takeEvent(parseRecordLine(line));
    } catch (const Json::exception& mistake) {
        throw std::invalid_argument(mistake.what());
    }
}

Record_Head readRecord(const std::string& path, Exchange_Observer& listener, const std::function<bool()>& goesOn) {
    const int LinesBetween = 256;
    std::ifstream file(path);
    if (!file) throw File_Error(path + ": cannot be read");
    Record_Reader reader(listener);
    int number = 0;
    try {
        for (std::string line; nextLine(file, line);) {
            if (++number % LinesBetween == 0 && goesOn && !goesOn()) break;
            reader.take(line);
        }
    } catch (const std::invalid_argument& mistake) {
        throw File_Error(path + ":" + std::to_string(number) + ": " + mistake.what());
    }
    if (!reader.begun()) throw File_Error(path + ": is empty");
    return reader.head();
}

}  // namespace vornex
