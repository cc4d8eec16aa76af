#include "edge/Poll_Group.h"

#include <cmath>
#include <stdexcept>

#include "text/Number.h"
#include "text/Text.h"

namespace vornex::edge {

namespace {

const std::uint64_t LongestMs = 86400000;

void readRule(Poll_Group& group, const std::string& rule) {
    const std::size_t at = rule.find('=');
    const std::string name = rule.substr(0, at), value = at == std::string::npos ? "" : rule.substr(at + 1);
    if (name == "deadband") {
        group.isPercent = endsIn(value, "%");
        group.deadBand = realNumber(group.isPercent ? value.substr(0, value.size() - 1) : value, 0, 1e300);
    } else if (name == "silence") {
        group.silenceMs = static_cast<std::uint64_t>(realNumber(value, 0.1, LongestMs / 1000.0) * 1000);
    } else {
        throw std::invalid_argument("'" + rule + "' is neither deadband=X, deadband=X% nor silence=SECONDS");
    }
}

Poll_Group parseGroup(const std::string& text) {
    const std::size_t at = text.find('@');
    if (at == std::string::npos) throw std::invalid_argument("'" + text + "' is not LABEL... @ MS");
    Poll_Group group;
    for (const std::string& word : split(text.substr(0, at), ' ')) {
        if (!word.empty()) group.patterns.push_back(word);
    }
    if (group.patterns.empty()) throw std::invalid_argument("'" + text + "' names no label");
    bool hasInterval = false;
    for (const std::string& word : split(text.substr(at + 1), ' ')) {
        if (word.empty()) continue;
        if (hasInterval) readRule(group, word);
        if (!hasInterval) group.intervalMs = wholeNumber<std::uint64_t>(word, 1, LongestMs, "interval");
        hasInterval = true;
    }
    if (!hasInterval) throw std::invalid_argument("'" + text + "' has no interval behind @");
    return group;
}

std::optional<double> numberOf(const Value& value) {
    if (value.kind != Value::Kind::Number) return std::nullopt;
    return readReal<double>(value.text);
}

}  // namespace

std::vector<Poll_Group> parsePollGroups(const std::string& text) {
    std::vector<Poll_Group> groups;
    for (const std::string& piece : splitTrimmed(text, ';')) {
        if (!piece.empty()) groups.push_back(parseGroup(piece));
    }
    return groups;
}

bool Change_Filter::counts(const Value& value) const {
    if (!last) return true;
    const std::optional<double> from = numberOf(*last), to = numberOf(value);
    if (rules->deadBand == 0 || !from || !to || !std::isfinite(*from) || !std::isfinite(*to)) return value != *last;
    const double band = rules->isPercent ? std::abs(*from) * rules->deadBand / 100 : rules->deadBand;
    return std::abs(*to - *from) > band;
}

bool Change_Filter::take(const Value& value, std::uint64_t nowMs) {
    lookedMs = nowMs;
    const bool isSilent = rules->silenceMs > 0 && nowMs - publishedMs >= rules->silenceMs;
    if (!isSilent && !counts(value)) return false;
    publishedOtherwise(value, nowMs);
    return true;
}

void Change_Filter::publishedOtherwise(const Value& value, std::uint64_t nowMs) {
    last = value;
    publishedMs = nowMs;
}

}  // namespace vornex::edge
