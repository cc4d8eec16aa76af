// decode: frames and replies in words.
#include <algorithm>
#include <cctype>
#include <iostream>
#include <iterator>
#include <memory>

#include "../common/Text_Input.h"
#include "Check_Value.h"
#include "Frame_View.h"
#include "Label_Names.h"
#include "Tool.h"
#include "Value_View.h"
#include "Verb_Table.h"

namespace vornex {

namespace {

const std::size_t HeaderSize = 1 + 2 + 1;  // start, body length, command
const std::size_t CheckSize = 2;

unsigned byteAt(const std::string& bytes, std::size_t at) { return static_cast<unsigned char>(bytes[at]); }
std::size_t wordAt(const std::string& bytes, std::size_t at) { return byteAt(bytes, at) | byteAt(bytes, at + 1) << 8; }

std::string hexWord(std::size_t value) {
    const char* const digits = "0123456789ABCDEF";
    std::string text = "0x";
    for (int shift = 12; shift >= 0; shift -= 4)
        text += digits[value >> shift & 15];
    return text;
}

std::string plural(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

// Bytes that are shown in a line of text; -o json has them all.
std::string shortHex(const std::string& bytes) {
    const std::size_t shown = 16;
    return hexBytes(bytes.substr(0, shown)) + (bytes.size() > shown ? " ..." : "");
}

std::size_t expectedReply(const Request_View& request) {
    std::size_t total = HeaderSize + CheckSize;
    if (request.command == Request_View::Command::Write) return total;
    for (const Frame_Item& item : request.items)
        total += 2 + item.length;
    return total;
}

// Why the bytes are no request, for bytes that begin like one. Empty: they do not even begin like one.
std::string requestFault(const std::string& bytes) {
    if (bytes.size() < HeaderSize || byteAt(bytes, 0) != 0x02) return "";
    const char command = bytes[3];
    if (command != 'A' && command != '@') return "";
    const std::size_t body = wordAt(bytes, 1);
    const std::size_t total = body + HeaderSize + CheckSize;
    if (total != bytes.size()) {
        return "body length " + std::to_string(body) + " makes a frame of " + plural(total, "byte") + ", not " +
               std::to_string(bytes.size());
    }
    if (command == 'A') return "body length " + std::to_string(body) + " of a read is no multiple of 6";
    return "body length " + std::to_string(body) + " of a write is below 6";
}

class Decoder {
public:
    explicit Decoder(Tool& userTool) : tool(userTool) {
        if (!tool.options.labelFile.empty()) names = Label_Names(tool.labels());
        if (names.tooMany())
            tool.out.warn(tool.options.labelFile + ": more than a million elements, labels are not told");
    }

    // True when nothing is wrong with the piece.
    bool decode(const std::string& piece) {
        ++number;
        bytes = piece;
        wrong = bytes.size() < HeaderSize + CheckSize || !checkIsRight(bytes);
        const std::optional<Request_View> found = viewRequest(bytes);
        // a reply's free header can look like a request's, so a piece of the expected length is the reply
        const bool isReply = request && (!found || bytes.size() == expectedReply(*request));
        if (isReply) {
            showReply();
            request.reset();
        } else if (found) {
            request = found;
            showRequest();
        } else {
            showUnasked();
        }
        return !wrong;
    }

private:
    std::string checkWords() const {
        if (bytes.size() < HeaderSize + CheckSize) return "too short for a check value";
        const std::size_t stored = wordAt(bytes, bytes.size() - CheckSize);
        if (checkIsRight(bytes)) return "check value " + hexWord(stored) + " right";
        return "check value " + hexWord(stored) + " WRONG, should be " +
               hexWord(checkValue(bytes.substr(0, bytes.size() - CheckSize)));
    }

    void head(const std::string& what) {
        tool.out.text(what + ", " + plural(bytes.size(), "byte") + ", " + checkWords());
    }
    void fault(const std::string& words) {
        wrong = true;
        tool.out.text("  WRONG: " + words);
        if (tool.out.format != Output::Format::Text) tool.out.warn("piece " + std::to_string(number) + ": " + words);
    }

    Row rowOf(const char* kind, const char* command) const {
        Row row;
        row.add("piece", number).add("kind", kind).add("command", command).add("bytes", bytes.size());
        const bool longEnough = bytes.size() >= HeaderSize + CheckSize;
        row.add("check", longEnough ? Value(hexWord(wordAt(bytes, bytes.size() - CheckSize))) : Value());
        return row.add("check_right", checkIsRight(bytes));
    }

    void item(Row row, int index, const Frame_Item& range, bool addressKnown, const std::string& data, bool hasData) {
        const std::string labels = addressKnown ? names.values(range.address, range.length, data) : "";
        row.add("item", index).add("address", addressKnown ? Value(range.address) : Value());
        row.add("length", range.length).add("data", hasData ? Value(hexBytes(data)) : Value()).add("labels", labels);
        std::string line = "  item " + std::to_string(index) + ": " + plural(range.length, "byte");
        if (addressKnown) line += " at " + std::to_string(range.address);
        if (hasData) line += ": " + shortHex(data);
        tool.out.row(row, labels.empty() ? line : line + "   " + labels);
    }

    void bare(Row row) {
        row.add("item", Value())
            .add("address", Value())
            .add("length", Value())
            .add("data", hexBytes(bytes))
            .add("labels", "");
        if (tool.out.format != Output::Format::Text) tool.out.row(row, "");
    }

    void showRequest() {
        const bool isWrite = request->command == Request_View::Command::Write;
        head(isWrite ? "write request" : "read request");
        const Row row = rowOf("request", isWrite ? "write" : "read");
        for (std::size_t i = 0; i < request->items.size(); ++i) {
            item(row, static_cast<int>(i), request->items[i], true, request->data, isWrite);
        }
        if (request->items.empty()) bare(row);
        if (isWrite && request->items[0].length != request->data.size()) {
            fault("the item says " + plural(request->items[0].length, "byte") + ", the frame carries " +
                  std::to_string(request->data.size()));
        }
        tool.out.text("  expects a reply of " + plural(expectedReply(*request), "byte"));
    }

    void showReply() {
        const bool isWrite = request->command == Request_View::Command::Write;
        head(isWrite ? "reply to the write" : "reply to the read");
        showHeader();
        if (bytes.size() != expectedReply(*request)) {
            fault("the reply to this request has " + plural(expectedReply(*request), "byte"));
        }
        const Row row = rowOf("reply", isWrite ? "write" : "read");
        if (isWrite || bytes.size() < HeaderSize + CheckSize) return bare(row);
        showItems(row, request->items, true);
    }

    // Walks by the counts in the reply, as the driver does, and never past the check value.
    void showItems(const Row& row, const std::vector<Frame_Item>& asked, bool addressKnown) {
        const std::size_t end = bytes.size() - CheckSize;
        std::size_t at = HeaderSize;
        for (std::size_t i = 0; i < asked.size(); ++i) {
            if (at + 2 > end) return fault("the reply ends before item " + std::to_string(i));
            const std::size_t count = wordAt(bytes, at);
            const std::string data = bytes.substr(at + 2, std::min(count, end - at - 2));
            const Frame_Item carried = {asked[i].address, static_cast<std::uint32_t>(data.size())};
            item(row, static_cast<int>(i), carried, addressKnown, data, true);
            if (count != asked[i].length) {
                fault(plural(asked[i].length, "byte") + " were asked for, the reply says " + std::to_string(count));
            }
            if (data.size() != count) return fault("the count runs past the end of the reply");
            at += 2 + count;
        }
        if (at != end) fault(plural(end - at, "byte") + " left behind the last item");
    }

    void showHeader() const {
        tool.out.text("  header " + hexBytes(bytes.substr(0, HeaderSize)) + ", which the driver does not look at");
    }

    // The items of a reply whose request is not known: their counts must lead to the check value.
    std::optional<std::vector<Frame_Item>> ownItems() const {
        std::vector<Frame_Item> items;
        const std::size_t end = bytes.size() - CheckSize;
        std::size_t at = HeaderSize;
        while (at + 2 <= end) {
            items.push_back({0, static_cast<std::uint32_t>(wordAt(bytes, at))});
            at += 2 + items.back().length;
        }
        if (at != end) return std::nullopt;
        return items;
    }

    void showUnasked() {
        const std::string reason = requestFault(bytes);
        if (!reason.empty() && !checkIsRight(bytes)) {
            head("a request that is not whole");
            fault(reason);
            return bare(rowOf("unknown", ""));
        }
        const bool whole = bytes.size() >= HeaderSize + CheckSize;
        const std::optional<std::vector<Frame_Item>> items = whole ? ownItems() : std::nullopt;
        if (!items) {
            head("neither a request nor a reply");
            wrong = true;
            return bare(rowOf("unknown", ""));
        }
        head(items->empty() ? "reply to a write" : "reply to a read; its request would tell the addresses");
        showHeader();
        const Row row = rowOf("reply", items->empty() ? "write" : "read");
        if (items->empty())
            bare(row);
        else
            showItems(row, *items, false);
    }

    Tool& tool;
    Label_Names names;
    std::optional<Request_View> request;  // waits for its reply
    std::string bytes;
    int number = 0;
    bool wrong = false;
};

bool isOneByte(const std::string& text) {
    return text.size() <= 2 && std::all_of(text.begin(), text.end(), [](char letter) {
               return std::isxdigit(static_cast<unsigned char>(letter)) != 0;
           });
}

// "decode 02 06 00 41" without quotes arrives as an argument per byte.
std::vector<std::string> joined(const std::vector<std::string>& arguments) {
    if (!std::all_of(arguments.begin(), arguments.end(), isOneByte)) return arguments;
    std::string all;
    for (const std::string& argument : arguments)
        all += (argument.size() == 1 ? "0" : "") + argument;
    return {all};
}

bool decodeArguments(Decoder& decoder, const std::vector<std::string>& arguments) {
    std::vector<std::string> pieces;
    for (const std::string& text : joined(arguments))
        pieces.push_back(bytesOfHex(text));
    bool good = true;
    for (const std::string& piece : pieces)
        good = decoder.decode(piece) && good;
    return good;
}

// Each piece as it comes, so that a pipe from a running capture shows at once.
bool decodeInput(Decoder& decoder) {
    bool good = true;
    int number = 1;
    try {
        for (std::string line; nextLine(std::cin, line); ++number) {
            if (!trimmed(line).empty()) good = decoder.decode(bytesOfHex(line)) && good;
        }
    } catch (const std::invalid_argument& mistake) {
        throw std::invalid_argument("standard input:" + std::to_string(number) + ": " + mistake.what());
    }
    return good;
}

Exit_Code runDecode(Tool& tool, const std::vector<std::string>& arguments) {
    const bool fromInput = arguments.size() == 1 && arguments[0] == "-";
    Decoder decoder(tool);
    try {
        const bool good = fromInput ? decodeInput(decoder) : decodeArguments(decoder, arguments);
        return good ? Exit_Code::Ok : Exit_Code::VerifyMismatch;
    } catch (const std::invalid_argument& mistake) {
        throw Tool_Error(Exit_Code::Usage, mistake.what());
    }
}

}  // namespace

Verb decodeVerb() {
    const auto pieces = std::make_shared<std::vector<std::string>>();
    Verb verb;
    verb.name = "decode";
    verb.summary = "Tell frames and replies in words";
    verb.description =
        "Each argument is one frame or reply in hex, with or without spaces; - takes one per line from "
        "standard input. A reply that follows its request is taken apart with the request's addresses. With "
        "-l labels and values are told. The check value is worked out by the tool itself. Exit code 5 when "
        "something is wrong with a piece.";
    verb.examples = {{"decode 02 06 00 41 00 10 00 00 04 00 11 29", "One request."},
                     {"decode 020600410010000004001129 0000000004001122334492db", "A request and its reply."},
                     {"decode -l plant.json - < frames.txt", "One piece per line, with labels and values."}};
    verb.options = {Option("HEX", "", "Bytes of a frame or reply, or -.", pieces.get()).must()};
    verb.run = [pieces](Tool& tool) { return runDecode(tool, *pieces); };
    return verb;
}

}  // namespace vornex
