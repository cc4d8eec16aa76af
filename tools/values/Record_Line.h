// One line of a record of the link (--trace FILE.jsonl): a JSON object with the keys of Keys.h under Records. The first
// line is the start, with the label file; the times are those of the recording computer.
#ifndef VORNEX_VALUES_RECORD_LINE_H
#define VORNEX_VALUES_RECORD_LINE_H

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace vornex {

// Of the records that are written and read.
constexpr int RecordVersion = 2;

// Throws std::invalid_argument for what is no JSON object with an event, or is larger than a record's lines are; for a
// start of another version too.
nlohmann::json parseRecordLine(const std::string& line);

}  // namespace vornex

#endif
