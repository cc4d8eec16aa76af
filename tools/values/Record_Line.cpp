#include "values/Record_Line.h"

#include <stdexcept>

#include <nlohmann/json.hpp>

#include "text/Text_Input.h"
#include "values/Keys.h"

namespace vornex {

namespace {

using Json = nlohmann::json;

// A record of this tool stays below these: they keep a forged one from taking all memory.
constexpr int DeepestValue = 4;
constexpr int MostValues = 8000000;  // in one line: a poll list has six for each of a million elements

Json parsed(const std::string& line) {
    int values = 0;
    const auto checkSize = [&values](int depth, Json::parse_event_t, Json&) {
        if (depth > DeepestValue) throw std::invalid_argument("values nest too deep");
        if (++values > MostValues) throw std::invalid_argument("more than eight million values");
        return true;
    };
    try {
        return Json::parse(line, checkSize);
    } catch (const Json::exception& mistake) {
        const std::string encoding = wideEncoding(line);
        throw std::invalid_argument(encoding.empty() ? mistake.what() : "is " + encoding + " text; save it as UTF-8");
    }
}

}  // namespace

Json parseRecordLine(const std::string& line) {
    Json event = parsed(line);
    const auto kind = event.find(key::event.name);
    if (!event.is_object() || kind == event.end() || !kind->is_string())
        throw std::invalid_argument("no line of a record: it has no \"event\"");
    if (*kind != "start") return event;
    const auto version = event.find(key::version.name);
    if (version == event.end() || *version != RecordVersion) {
        throw std::invalid_argument("a record of another version of the tool: this one reads version " +
                                    std::to_string(RecordVersion));
    }
    return event;
}

}  // namespace vornex
