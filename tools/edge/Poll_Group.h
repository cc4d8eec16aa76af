// Which labels are published, how often they are looked at and which changes count.
#ifndef VORNEX_EDGE_POLL_GROUP_H
#define VORNEX_EDGE_POLL_GROUP_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "values/Value.h"

namespace vornex::edge {

struct Poll_Group {
    std::vector<std::string> patterns;
    std::uint64_t intervalMs = 1000;
    double deadBand = 0;          // a number counts as changed when it has moved by more
    bool isPercent = false;       // of the value that was published last
    std::uint64_t silenceMs = 0;  // then it is published unchanged; 0: never
};

// "Motors*.Speed Speed @ 100 deadband=1% silence=60": patterns, the interval in ms, what counts, the longest silence in
// seconds. Several groups stand between semicolons. Throws std::invalid_argument with the reason.
std::vector<Poll_Group> parsePollGroups(const std::string& text);

// What of one variable was published, and whether a value is to be.
class Change_Filter {
public:
    explicit Change_Filter(const Poll_Group& group) : rules(&group) {}

    // Whether it is time to look again; `nowMs` never goes back.
    bool isDue(std::uint64_t nowMs) const { return !lookedMs || nowMs - *lookedMs >= rules->intervalMs; }
    // Looks at a value: true when it is to be published, and takes it as published.
    bool take(const Value& value, std::uint64_t nowMs);
    void publishedOtherwise(const Value& value, std::uint64_t nowMs);

private:
    bool counts(const Value& value) const;

    const Poll_Group* rules;
    std::optional<Value> last;
    std::optional<std::uint64_t> lookedMs;
    std::uint64_t publishedMs = 0;
};

}  // namespace vornex::edge

#endif
