#include "sim/faults/Fault_Rules.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "text/Number.h"
#include "text/Text.h"
#include "values/Keys.h"

namespace vornex::sim {
namespace {

constexpr std::uint64_t LargestArgument = 3600000;  // an hour in ms
constexpr std::uint64_t AnyNumber = std::numeric_limits<std::uint64_t>::max();

struct Kind_Entry {
    const char* name;
    std::size_t arguments;  // at most
    std::array<std::uint64_t, 2> defaults;
    const char* help;
};

// In the order of Fault_Kind.
constexpr Kind_Entry Kinds[FaultKinds] = {
    {"drop", 0, {}, "drop             no answer"},
    {"delay", 2, {200, 0}, "delay(MS[,MOST]) the answer MS later, or at random from MS to MOST [200]"},
    {"late",
     1,
     {20, 0},
     "late(MS)         the answer comes when the next request does, the next one's MS behind it [20]"},
    {"crc", 0, {}, "crc              wrong check value"},
    {"flip", 1, {1, 0}, "flip(BITS)       so many bits turned over anywhere in the answer [1]"},
    {"short", 1, {1, 0}, "short(BYTES)     so many bytes missing at the end [1]"},
    {"long", 1, {1, 0}, "long(BYTES)      so many bytes too many at the end [1]"},
    {"empty", 0, {}, "empty            header and check value only (reads)"},
    {"junk", 1, {0, 0}, "junk(BYTES)      random bytes instead of the answer [as many as the answer]"},
    {"header", 0, {}, "header           four random header bytes, check value right"},
    {"count", 1, {1, 0}, "count(MORE)      first item's count too large by MORE, check value right (reads) [1]"},
    {"swap", 0, {}, "swap             first and last item change places, check value right (reads of two or more)"},
    {"stale", 0, {}, "stale            the connection's previous answer again, instead of this one"},
    {"dup", 0, {}, "dup              the answer twice"},
    {"slice", 2, {3, 2}, "slice(BYTES,MS)  in pieces of BYTES with gaps of MS [3,2]"},
    {"glue", 0, {}, "glue             the answer comes in one piece with the next one"},
    {"rst", 1, {0, 0}, "rst(BYTES)       connection reset after so many bytes of the answer [0]"},
    {"fin", 1, {0, 0}, "fin(BYTES)       connection closed after so many bytes of the answer [0]"},
    {"refuse", 1, {1000, 0}, "refuse(MS)       as in a restart: all connections reset, new ones refused for MS [1000]"},
    {"stall", 1, {2000, 0}, "stall(MS)        the controller stands still, nobody gets an answer for MS [2000]"},
    {"kill", 0, {}, "kill             as in a power cut: all connections reset, the simulator ends"},
};

Fault_Kind findKind(const std::string& name) {
    std::string known;
    for (std::size_t i = 0; i < FaultKinds; ++i) {
        if (name == Kinds[i].name) return static_cast<Fault_Kind>(i);
        known += std::string(i ? ", " : "") + Kinds[i].name;
    }
    throw std::invalid_argument("unknown fault '" + name + "'; it is one of " + known);
}

void readKind(const std::string& text, Fault_Rule& rule) {
    const std::size_t open = text.find('(');
    rule.kind = findKind(text.substr(0, open));
    const Kind_Entry& kind = Kinds[static_cast<std::size_t>(rule.kind)];
    rule.args = kind.defaults;
    if (open == std::string::npos) return;
    if (text.back() != ')') throw std::invalid_argument("')' is missing in '" + text + "'");
    const std::vector<std::string> given = splitTrimmed(text.substr(open + 1, text.size() - open - 2), ',');
    if (given.size() > kind.arguments) throw std::invalid_argument("too many arguments: " + std::string(kind.help));
    for (std::size_t i = 0; i < given.size(); ++i)
        rule.args[i] = unsignedNumber(given[i], 0, LargestArgument);
    if (rule.kind == Fault_Kind::Slice && rule.args[0] == 0) throw std::invalid_argument("a piece has at least 1 byte");
    if (rule.kind == Fault_Kind::Flip && rule.args[0] == 0)
        throw std::invalid_argument("at least 1 bit is to turn over");
}

// "5" or "5..9"
std::pair<std::uint64_t, std::uint64_t> parseSpan(const std::string& text, std::uint64_t lowest,
                                                  std::uint64_t highest) {
    const std::size_t dots = text.find("..");
    const std::uint64_t first = unsignedNumber(text.substr(0, dots), lowest, highest);
    if (dots == std::string::npos) return {first, first};
    const std::uint64_t last = unsignedNumber(text.substr(dots + 2), lowest, highest);
    if (last < first) throw std::invalid_argument("'" + text + "' is upside down");
    return {first, last};
}

void readSelector(const std::string& text, Fault_Rule& rule) {
    const std::size_t equals = text.find('=');
    const std::string name = text.substr(0, equals);
    const std::string value = equals == std::string::npos ? std::string() : text.substr(equals + 1);
    if (name == "n") {
        rule.numbers = parseSpan(value, 1, AnyNumber);
    } else if (name == "every") {
        rule.every = unsignedNumber(value, 1, AnyNumber);
    } else if (name == "p") {
        rule.probability = realNumber(value, 0, 1);
    } else if (name == "cmd" && (value == "read" || value == "write")) {
        rule.forWrites = value == "write";
    } else if (name == "addr") {
        const auto span = parseSpan(value, 0, 0xFFFFFFFF);
        rule.addresses = {static_cast<std::uint32_t>(span.first), static_cast<std::uint32_t>(span.second)};
    } else {
        throw std::invalid_argument("unknown selector '" + text +
                                    "'; it is n=5, n=5..9, every=50, p=0.01, cmd=read, cmd=write or addr=100..199");
    }
}

bool touches(const Request& request, const std::pair<std::uint32_t, std::uint32_t>& addresses) {
    return std::any_of(request.items.begin(), request.items.end(), [&](const Memory_Range& item) {
        return item.bytes > 0 && item.address <= addresses.second &&
               std::uint64_t(item.address) + item.bytes > addresses.first;
    });
}

bool isPossible(Fault_Kind kind, const Request& request, bool hasPrevious) {
    switch (kind) {
        case Fault_Kind::Empty:
        case Fault_Kind::Count: return !request.isWrite && !request.items.empty();
        case Fault_Kind::Swap: return !request.isWrite && request.items.size() > 1;
        case Fault_Kind::Stale: return hasPrevious;
        default: return true;
    }
}

}  // namespace

std::string faultKinds() {
    std::string text;
    for (const Kind_Entry& kind : Kinds)
        text += std::string(kind.help) + "\n";
    return text;
}

std::string faultHelp() {
    std::string text = "KIND[(ARGS)][@SELECTOR[,SELECTOR...]]   [defaults]\n";
    for (const Kind_Entry& kind : Kinds)
        text += std::string("  ") + kind.help + "\n";
    return text +
           "Selectors: n=5  n=5..9  every=50  p=0.01  cmd=read|write  addr=100..199\n"
           "  All of a rule must agree. n and every count, from 1, the requests that cmd and addr select and that the\n"
           "  kind can be applied to. Rules add up: what several do to one answer is done in the order given.\n";
}

Fault_Rule parseFault(const std::string& text) {
    Fault_Rule rule;
    rule.text = text;
    try {
        const std::size_t at = text.find('@');
        readKind(text.substr(0, at), rule);
        if (at != std::string::npos) {
            for (const std::string& selector : splitTrimmed(text.substr(at + 1), ','))
                readSelector(selector, rule);
        }
    } catch (const std::invalid_argument& error) {
        throw std::invalid_argument("fault '" + text + "': " + error.what());
    }
    return rule;
}

bool Fault_Rules::remove(const std::string& text) {
    const auto found =
        std::find_if(active.begin(), active.end(), [&](const Fault_Rule& rule) { return rule.text == text; });
    if (found == active.end()) return false;
    active.erase(found);
    return true;
}

bool Fault_Rules::hits(Fault_Rule& rule, const Request& request, bool hasPrevious) {
    if (!isPossible(rule.kind, request, hasPrevious)) return false;
    if (rule.forWrites && *rule.forWrites != request.isWrite) return false;
    if (rule.addresses && !touches(request, *rule.addresses)) return false;
    ++rule.seen;
    if (rule.numbers && (rule.seen < rule.numbers->first || rule.seen > rule.numbers->second)) return false;
    if (rule.seen % rule.every != 0) return false;
    return rule.probability >= 1 || static_cast<double>(noise() >> 11) / 9007199254740992.0 < rule.probability;
}

std::vector<const Fault_Rule*> Fault_Rules::select(const Request& request, bool hasPrevious) {
    std::vector<const Fault_Rule*> selected;
    for (Fault_Rule& rule : active) {
        if (!hits(rule, request, hasPrevious)) continue;
        ++rule.fired;
        ++applied[static_cast<std::size_t>(rule.kind)];
        selected.push_back(&rule);
    }
    return selected;
}

void Fault_Rules::appendTo(Counters& counters) const {
    std::uint64_t sum = 0;
    for (const std::uint64_t count : applied)
        sum += count;
    counters.emplace_back(key::faults.name, sum);
    for (std::size_t i = 0; i < FaultKinds; ++i)
        counters.emplace_back(std::string("fault.") + Kinds[i].name, applied[i]);
}

}  // namespace vornex::sim
