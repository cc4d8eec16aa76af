// The keys of every JSON object and the headings of every CSV column that the programs print: one table, one meaning
// for each key. docs/tools.md lists them; a test holds both against each other.
#ifndef VORNEX_VALUES_KEYS_H
#define VORNEX_VALUES_KEYS_H

namespace vornex {

struct Key {
    const char* name;     // camelCase
    const char* meaning;  // one line
};

namespace key {

// A variable
inline constexpr Key controller{"controller", "which one, when there are several"};
inline constexpr Key label{"label", "label text"};
inline constexpr Key value{"value", "the value under the view: number, true or false, text, or a list of them"};
inline constexpr Key expected{"expected", "the value that a file holds"};
inline constexpr Key raw{"raw", "the same before scale and states, as the bytes have it"};
inline constexpr Key band{"band", "low or high when the value is outside what the label file calls normal"};
inline constexpr Key description{"description", "as in the label file"};
inline constexpr Key unit{"unit", "as in the label file"};
inline constexpr Key view{"view", "how the bytes are seen: u16, f32, ..."};
inline constexpr Key state{"state", "fresh, stale (from before the connection was lost) or unknown (never came)"};
inline constexpr Key address{"address", "controller byte address of the first byte"};
inline constexpr Key bytes{"bytes", "number of bytes from that address on"};
inline constexpr Key data{"data", "the bytes in hex"};
inline constexpr Key type{"type", "type as the label file writes it"};
inline constexpr Key typeCode{"typeCode", "type code, 1 to 12"};
inline constexpr Key elements{"elements", "number of array elements, 1 when it is no array"};
inline constexpr Key elementBytes{"elementBytes", "bytes of one element"};
inline constexpr Key depth{"depth", "levels below the label"};
inline constexpr Key time{"time", "when it was seen"};
inline constexpr Key result{"result", "what became of a write, in words"};
inline constexpr Key text{"text", "for people: a sentence, or bytes as characters"};
inline constexpr Key reason{"reason", "why not, in words"};

// A label text as the driver sees it
inline constexpr Key resolves{"resolves", "true when the driver finds an address"};
inline constexpr Key code{"code", "the driver's result code for the label"};
inline constexpr Key resolved{"resolved", "the label text after a template was filled in"};
inline constexpr Key markAt{"markAt", "where in the text the mistake begins, in bytes from 0"};
inline constexpr Key markLength{"markLength", "how many bytes of the text it covers"};

// Label files
inline constexpr Key file{"file", "path of the file"};
inline constexpr Key line{"line", "line in the file, from 1"};
inline constexpr Key severity{"severity", "error or warning"};
inline constexpr Key rule{"rule", "name of the lint rule, or text of the fault rule"};
inline constexpr Key subject{"subject", "the label, member or structure that is meant"};

// Settings
inline constexpr Key setting{"setting", "name of the option, or controllers.NAME"};
inline constexpr Key origin{"origin", "where the value comes from: command line, variable, FILE:LINE, built in"};

// The library
inline constexpr Key fact{"fact", "what is told about the library"};

// Frames
inline constexpr Key piece{"piece", "number of the frame among the arguments, from 1"};
inline constexpr Key kind{"kind", "request, reply or neither"};
inline constexpr Key command{"command", "read or write"};
inline constexpr Key frameBytes{"frameBytes", "number of bytes of the frame or reply"};
inline constexpr Key checkValue{"checkValue", "the check value it carries"};
inline constexpr Key checkRight{"checkRight", "true when that is the check value of its bytes"};
inline constexpr Key header{"header", "the first four bytes of a reply in hex"};
inline constexpr Key item{"item", "number of the byte range in the frame, from 0"};
inline constexpr Key labels{"labels", "labels in that range, with their values where known"};
inline constexpr Key frame{"frame", "a request frame in hex"};
inline constexpr Key reply{"reply", "a reply in hex"};

// Counts of a link
inline constexpr Key seconds{"seconds", "duration"};
inline constexpr Key rounds{"rounds", "times that the whole polled list was served"};
inline constexpr Key exchanges{"exchanges", "frames sent, or tried to"};
inline constexpr Key goodExchanges{"goodExchanges", "of those, the ones with a good reply"};
inline constexpr Key retries{"retries", "frames sent again after a fault; in a record the limit of it"};
inline constexpr Key givenUp{"givenUp", "requests that the driver gave up on"};
inline constexpr Key connectionsLost{"connectionsLost", "connections that ended or were dropped after a fault"};
inline constexpr Key bytesSent{"bytesSent", "bytes on the wire to the controller"};
inline constexpr Key bytesReceived{"bytesReceived", "bytes on the wire from the controller"};
inline constexpr Key dataBytes{"dataBytes", "controller bytes in good replies and writes"};
inline constexpr Key latencyMedianUs{"latencyMedianUs", "microseconds that half of the good exchanges do not exceed"};
inline constexpr Key latency99Us{"latency99Us", "the same for 99 of 100"};
inline constexpr Key latencyMaxUs{"latencyMaxUs", "the same for all"};
inline constexpr Key latencyUs{"latencyUs", "microseconds of one exchange"};
inline constexpr Key exchangesPerSecond{"exchangesPerSecond", "since the line before"};
inline constexpr Key roundsPerSecond{"roundsPerSecond", "since the line before"};
inline constexpr Key dataBytesPerSecond{"dataBytesPerSecond", "since the line before"};
inline constexpr Key variables{"variables", "number of polled variables"};
inline constexpr Key bytesWanted{"bytesWanted", "bytes of the polled variables"};
inline constexpr Key bytesPerRequest{"bytesPerRequest", "bytes of one read request at most"};
inline constexpr Key requestsPerRound{"requestsPerRound", "read requests of one round after packing"};
inline constexpr Key exchangesPerRound{"exchangesPerRound", "frames of one round, on average"};
inline constexpr Key dataBytesPerRound{"dataBytesPerRound", "controller bytes in the replies of one round"};
inline constexpr Key requestsRead{"requestsRead", "read requests in good exchanges"};
inline constexpr Key faultList{"faultList", "each fault and how often it was, as text"};
inline constexpr Key giveUpList{"giveUpList", "each result code and how often it ended a request, as text"};

// Records
inline constexpr Key event{"event", "start, poll, read, write, memory, frame, reply, idle or link"};
inline constexpr Key version{"version", "of the record's format"};
inline constexpr Key labelFile{"labelFile", "path of the label file"};
inline constexpr Key labelText{"labelText", "what is in the label file"};
inline constexpr Key maxBytes{"maxBytes", "bytes of one read request at most"};
inline constexpr Key index{"index", "number for a template, as text"};
inline constexpr Key id{"id", "the host's number of the request"};
inline constexpr Key count{"count", "size in the host's units for the type code"};
inline constexpr Key definitions{"definitions", "polled variables: label, index, type code and count of each"};
inline constexpr Key attempt{"attempt", "of the same frame, from 1"};
inline constexpr Key replyBytes{"replyBytes", "bytes that the driver expects as the reply"};
inline constexpr Key countsDiffer{"countsDiffer", "true when the reply has other item counts than asked for"};
inline constexpr Key status{"status", "the driver's result code for the exchange"};
inline constexpr Key fault{"fault", "what was wrong with the exchange, empty when good"};
inline constexpr Key link{"link", "up, down, or still down after an attempt to connect"};
inline constexpr Key frames{"frames", "frames that were compared"};
inline constexpr Key calls{"calls", "calls of the host that were repeated"};
inline constexpr Key equal{"equal", "true when the driver did what the record says"};
inline constexpr Key recorded{"recorded", "what the record says"};
inline constexpr Key now{"now", "what the driver did instead"};

// The simulator's summary
inline constexpr Key seed{"seed", "of everything random"};
inline constexpr Key clients{"clients", "connections accepted"};
inline constexpr Key clientsRefused{"clientsRefused", "connections over the limit"};
inline constexpr Key requests{"requests", "good request frames"};
inline constexpr Key reads{"reads", "of those, the ones that read"};
inline constexpr Key writes{"writes", "of those, the ones that write"};
inline constexpr Key items{"items", "byte ranges in the reads"};
inline constexpr Key bytesRead{"bytesRead", "controller bytes answered"};
inline constexpr Key bytesWritten{"bytesWritten", "controller bytes written"};
inline constexpr Key bytesIn{"bytesIn", "bytes on the wire to the simulator"};
inline constexpr Key bytesOut{"bytesOut", "bytes on the wire from the simulator"};
inline constexpr Key badFrames{"badFrames", "frames with a wrong check value, start, command, body or length"};
inline constexpr Key slowFrames{"slowFrames", "frames that were not complete in time"};
inline constexpr Key memoryFull{"memoryFull", "writes that were not carried out: no room in the memory"};
inline constexpr Key unanswered{"unanswered", "requests while the played record has no link or no reply"};
inline constexpr Key bytesUnknown{"bytesUnknown", "controller bytes answered as 0: not in the played record so far"};
inline constexpr Key faults{"faults", "times that a fault was applied"};
inline constexpr Key faultKinds{"faultKinds", "the same for each kind of fault"};
inline constexpr Key rules{"rules", "each fault rule: rule, seen, applied"};
inline constexpr Key seen{"seen", "requests that the rule is for"};
inline constexpr Key applied{"applied", "of those, the ones it was applied to"};
inline constexpr Key neverApplied{"neverApplied", "the rules that were applied to none"};
inline constexpr Key expectations{"expectations", "each --expect: expect, counted, met"};
inline constexpr Key expect{"expect", "text of the expectation"};
inline constexpr Key counted{"counted", "what the counter was at the end"};
inline constexpr Key met{"met", "true when that is as expected"};

}  // namespace key

}  // namespace vornex

#endif
