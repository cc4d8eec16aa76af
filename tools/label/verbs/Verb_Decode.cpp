// decode: frames and replies in words.
#include <algorithm>
#include <cctype>
#include <cstring>
#include <iostream>
#include <iterator>
#include <memory>

#include "label/Tool.h"
#include "label/verbs/Verb_Table.h"
#include "labels/Label_Names.h"
#include "text/Hex.h"
#include "text/Text.h"
#include "text/Text_Input.h"
#include "values/Named_Values.h"
#include "wire/Check_Value.h"
#include "wire/Frame_Reader.h"

namespace vornex {

namespace {

std::string hexWord(std::uint16_t value) { return "0x" + hexDigits(value, 4); }

const std::size_t BytesShown = 16;  // in a line of text; -o json has them all

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
        wrong = !checkIsRight(bytes);
        std::string reason;
        std::optional<Request> found = readRequest(bytes, &reason);
        // a reply's free header can look like a request's, so a piece of the expected length is the reply
        const bool isReply = request && (!found || bytes.size() == replyBytes(*request));
        if (isReply) {
            showReply();
            request.reset();
        } else if (found) {
            request = std::move(found);
            showRequest();
        } else if (beginsLikeRequest(bytes) && wrong) {
            head("a request that is not whole");
            fault(reason);
            bare(rowOf("unknown", ""));
        } else {
            showUnasked();
        }
        return !wrong;
    }

private:
    bool hasCheck() const { return bytes.size() >= HeaderBytes + CheckBytes; }

    std::string checkWords() const {
        if (!hasCheck()) return "too short for a check value";
        const std::string words = "check value " + hexWord(storedCheck(bytes));
        if (checkIsRight(bytes)) return words + " right";
        return words + " WRONG, should be " + hexWord(checkValue(bytes.substr(0, bytes.size() - CheckBytes)));
    }

    void head(const std::string& what) {
        tool.out.text(what + ", " + counted(bytes.size(), "byte") + ", " + checkWords());
    }
    void fault(const std::string& words) {
        wrong = true;
        tool.out.text("  WRONG: " + words);
        if (tool.out.format != Output::Format::Text) tool.out.warn("piece " + std::to_string(number) + ": " + words);
    }

    Row rowOf(const char* kind, const char* command) const {
        Row row;
        row.add(key::piece, number).add(key::kind, kind).add(key::command, command).add(key::frameBytes, bytes.size());
        row.add(key::checkValue, hasCheck() ? Value(hexWord(storedCheck(bytes))) : Value());
        row.add(key::checkRight, checkIsRight(bytes));
        return row.add(key::header, std::strcmp(kind, "reply") == 0 ? Value(hexBytes(headerOf(bytes))) : Value());
    }

    void item(Row row, int index, const Memory_Range& range, bool addressKnown, const std::string& data, bool hasData) {
        const std::string labels = addressKnown ? namedValues(names, range.address, range.bytes, data) : "";
        row.add(key::item, index).add(key::address, addressKnown ? Value(range.address) : Value());
        row.add(key::bytes, range.bytes)
            .add(key::data, hasData ? Value(hexBytes(data)) : Value())
            .add(key::labels, labels);
        std::string line = "  item " + std::to_string(index) + ": " + counted(range.bytes, "byte");
        if (addressKnown) line += " at " + std::to_string(range.address);
        if (hasData) line += ": " + firstHexBytes(data, BytesShown);
        tool.out.row(row, labels.empty() ? line : line + "   " + labels);
    }

    void bare(Row row) {
        row.add(key::item, Value())
            .add(key::address, Value())
            .add(key::bytes, Value())
            .add(key::data, hexBytes(bytes))
            .add(key::labels, "");
        if (tool.out.format != Output::Format::Text) tool.out.row(row, "");
    }

    void showRequest() {
        const std::string command = request->isWrite ? "write" : "read";
        head(command + " request");
        const Row row = rowOf("request", command.c_str());
        int index = 0;
        for (const Memory_Range& range : request->items)
            item(row, index++, range, true, request->data, request->isWrite);
        if (request->items.empty()) bare(row);
        if (request->isWrite && request->items[0].bytes != request->data.size()) {
            fault("the item says " + counted(request->items[0].bytes, "byte") + ", the frame carries " +
                  std::to_string(request->data.size()));
        }
        tool.out.text("  expects a reply of " + counted(replyBytes(*request), "byte"));
    }

    void showReply() {
        head(request->isWrite ? "reply to the write" : "reply to the read");
        showHeader();
        if (bytes.size() != replyBytes(*request)) {
            fault("the reply to this request has " + counted(replyBytes(*request), "byte"));
        }
        const Row row = rowOf("reply", request->isWrite ? "write" : "read");
        if (request->isWrite || !hasCheck()) return bare(row);
        showItems(row, *readReply(bytes, request->items.size()));
    }

    // With the addresses of the request, when there is one.
    void showItems(const Row& row, const Reply& reply) {
        for (std::size_t i = 0; i < reply.items.size(); ++i) {
            const auto& [count, data] = reply.items[i];
            const std::uint32_t address = request ? request->items[i].address : 0;
            item(row, static_cast<int>(i), {address, static_cast<std::uint32_t>(data.size())}, request.has_value(),
                 data, true);
            if (request && count != request->items[i].bytes) {
                fault(counted(request->items[i].bytes, "byte") + " were asked for, the reply says " +
                      std::to_string(count));
            }
            if (data.size() != count) return fault("the count runs past the end of the reply");
        }
        if (request && reply.items.size() < request->items.size())
            return fault("the reply ends before item " + std::to_string(reply.items.size()));
        if (!reply.rest.empty()) fault(counted(reply.rest.size(), "byte") + " left behind the last item");
    }

    void showHeader() const {
        tool.out.text("  header " + hexBytes(headerOf(bytes)) + ", which the driver does not look at");
    }

    // A reply whose request is not known: its counts must lead to the check value.
    void showUnasked() {
        const std::optional<Reply> reply = readReply(bytes);
        const bool cut = reply && !reply->items.empty() && reply->items.back().data.size() != reply->items.back().count;
        if (!reply || cut || !reply->rest.empty()) {
            head("neither a request nor a reply");
            wrong = true;
            return bare(rowOf("unknown", ""));
        }
        const bool toWrite = reply->items.empty();
        head(toWrite ? "reply to a write" : "reply to a read; its request would tell the addresses");
        showHeader();
        const Row row = rowOf("reply", toWrite ? "write" : "read");
        if (toWrite) return bare(row);
        showItems(row, *reply);
    }

    Tool& tool;
    Label_Names names;
    std::optional<Request> request;  // waits for its reply
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
    const bool good = fromInput ? decodeInput(decoder) : decodeArguments(decoder, arguments);
    return good ? Exit_Code::Ok : Exit_Code::VerifyMismatch;
}

}  // namespace

void addDecodeVerb(Verbs& verbs) {
    const auto pieces = std::make_shared<std::vector<std::string>>();
    const Page page = {
        "Tell frames and replies in words",
        "Each argument is one frame or reply in hex, with or without spaces; - takes one per line from "
        "standard input. A reply that follows its request is taken apart with the request's addresses. With "
        "-l labels and values are told. The check value is worked out by the tool itself. Exit code 5 when "
        "something is wrong with a piece.",
        {{"decode 02 06 00 41 00 10 00 00 04 00 11 29", "One request."},
         {"decode 020600410010000004001129 0000000004001122334492db", "A request and its reply."},
         {"decode -l plant.json - < frames.txt", "One piece per line, with labels and values."}}};
    CLI::App& verb = verbs.add("decode", page, UsesLabels, [pieces](Tool& tool) { return runDecode(tool, *pieces); });
    addArgument(verb, "HEX", *pieces, "Bytes of a frame or reply, or -.", Need::Must);
}

}  // namespace vornex
