// From the tree of one label or member to the record of it.
#include <algorithm>
#include <stdexcept>

#include "labels/Label_Tree.h"
#include "text/Nearest_Word.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex {
namespace {

constexpr std::uint32_t MostDecimals = 17;  // a double has no more digits

double realOf(const Place& place, const Json_Entry& entry) {
    if (entry.value.kind == Json_Node::Kind::Integer) return static_cast<double>(entry.value.integer);
    std::string reason = std::string("is ") + kindName(entry.value.kind) + ", not a number";
    try {
        if (entry.value.kind == Json_Node::Kind::Real) return realNumber(entry.value.text) + 0.0;  // -0 is 0
    } catch (const std::invalid_argument& mistake) {
        reason = mistake.what();
    }
    place.fail(entry.line, "\"" + entry.key + "\" " + reason);
}

// {"0": "off", "1": "auto"}
std::vector<Named_Number> statesOf(const Place& place, const Json_Entry& entry) {
    requireKind(place, entry.value, Json_Node::Kind::Object, "\"states\"");
    std::vector<Named_Number> states;
    for (const Json_Entry& state : entry.value.entries) {
        try {
            states.push_back({textOf(place, state), wholeNumber<std::int64_t>(state.key)});
        } catch (const std::invalid_argument& mistake) {
            place.fail(state.line, std::string("\"states\": ") + mistake.what());
        }
    }
    return states;
}

// {"Overload": 3, "Door": 4}
std::vector<Named_Number> bitsOf(const Place& place, const Json_Entry& entry) {
    requireKind(place, entry.value, Json_Node::Kind::Object, "\"bits\"");
    std::vector<Named_Number> bits;
    for (const Json_Entry& bit : entry.value.entries) {
        requireKind(place, bit.value, Json_Node::Kind::Integer, "\"bits\": the place of '" + bit.key + "'");
        bits.push_back({bit.key, bit.value.integer});
    }
    return bits;
}

// Reads the keys of one label in the order in which they stand.
class Label_Reader {
public:
    Label_Reader(const Place& labelPlace, const Json_Node& labelNode, Label_File& labelFile)
        : place(labelPlace), node(labelNode), file(labelFile) {}

    void read(Label& into) {
        Meaning meaning;
        for (const Json_Entry& entry : node.entries)
            if (!take(entry, into) && !takeMeaning(entry, meaning)) unknown.push_back(&entry);
        for (const char* key : {"type", "at"})
            requireKey(place, node, key);
        checkView(into);
        checkStruct(into, meaning);
        if (!meaning.isEmpty()) {
            checkMeaning(into, meaning);
            into.meaning = std::make_shared<const Meaning>(std::move(meaning));
        }
        tellUnknown();
    }

private:
    bool take(const Json_Entry& entry, Label& label) const {
        const std::string& key = entry.key;
        if (key == "name") return true;  // read already
        if (key == "type") return readType(entry, label), true;
        if (key == "at") return label.at = numberOf(place, entry, 0), true;
        if (key == "view") return readView(entry, label), true;
        if (key == "sim") return label.sim = textOf(place, entry), true;
        return false;
    }

    bool takeMeaning(const Json_Entry& entry, Meaning& meaning) const {
        const std::string& key = entry.key;
        if (key == "unit") return meaning.unit = textOf(place, entry), true;
        if (key == "description") return meaning.description = textOf(place, entry), true;
        if (key == "decimals") return meaning.decimals = decimalsOf(entry), true;
        if (key == "scale") return meaning.scale = realOf(place, entry), true;
        if (key == "offset") return meaning.offset = realOf(place, entry), true;
        if (key == "min") return meaning.min = realOf(place, entry), true;
        if (key == "max") return meaning.max = realOf(place, entry), true;
        if (key == "low") return meaning.low = realOf(place, entry), true;
        if (key == "high") return meaning.high = realOf(place, entry), true;
        if (key == "states") return meaning.states = statesOf(place, entry), true;
        if (key == "bits") return meaning.bits = bitsOf(place, entry), true;
        return false;
    }

    int decimalsOf(const Json_Entry& entry) const {
        const std::uint32_t decimals = numberOf(place, entry, 0);
        if (decimals > MostDecimals || entry.value.kind != Json_Node::Kind::Integer)
            place.fail(entry.line, "\"decimals\" is not a whole number from 0 to 17");
        return static_cast<int>(decimals);
    }

    void readType(const Json_Entry& entry, Label& label) const {
        try {
            label.type = parseType(textOf(place, entry));
        } catch (const std::invalid_argument& error) {
            place.fail(entry.line, error.what());
        }
    }

    void readView(const Json_Entry& entry, Label& label) const {
        const std::string text = textOf(place, entry);
        const std::optional<View> view = parseView(text);
        if (!view) place.fail(entry.line, "unknown view '" + text + "'; it is one of " + joined(viewNames()));
        label.view = *view;
    }

    // The line of a key, the label's own when it is not there.
    int lineOf(const char* key) const {
        const Json_Entry* const entry = node.find(key);
        return entry ? entry->line : node.line;
    }

    void checkView(const Label& label) const {
        if (label.view == View::Default || label.type.code == 12) return;
        const std::uint32_t bytes = elementBytes(file, label.type);
        const std::uint32_t width = viewEntry(label.view).width;
        if (width <= bytes) return;
        place.fail(lineOf("view"), "view " + viewName(label.view) + " needs " + std::to_string(width) +
                                       " bytes, an element has " + std::to_string(bytes));
    }

    void checkStruct(const Label& label, const Meaning& meaning) const {
        if (label.type.code != 12) return;
        if (label.view != View::Default) place.fail(lineOf("view"), "a structure has no view; its members have");
        if (!label.sim.empty()) place.fail(lineOf("sim"), "a structure does not move by itself; its members do");
        const bool hasMore = meaning.isScaled() || meaning.min || meaning.max || meaning.low || meaning.high ||
                             !meaning.states.empty() || !meaning.bits.empty();
        if (hasMore) place.fail(node.line, "a structure has no scale, limits, states or bits; its members have");
    }

    void checkMeaning(const Label& label, const Meaning& meaning) const {
        if (label.type.code == 12) return;
        const std::string problem = meaningProblem(meaning, viewOf(label), elementBytes(file, label.type));
        if (!problem.empty()) place.fail(node.line, problem);
    }

    void tellUnknown() const {
        std::vector<std::string> known;
        if (unknown.empty()) return;
        for (const Label_Key& key : labelKeys())
            known.push_back(key.name);
        checkKeys(place, node, known, file);
    }

    const Place& place;
    const Json_Node& node;
    Label_File& file;
    std::vector<const Json_Entry*> unknown;
};

}  // namespace

const std::vector<Label_Key>& labelKeys() {
    using Kind = Label_Key::Kind;
    static const std::vector<Label_Key> keys = {
        {"name", Kind::Text, "any text without `.`, `[`, `]` and `%%`"},
        {"type", Kind::Type, "a standard name, a type code or a structure's name, with index bounds for an array"},
        {"at", Kind::Address, "the byte address, of a member the offset in its structure: `100` or `\"0x64\"`"},
        {"view", Kind::View, "how people see the bytes"},
        {"unit", Kind::Text, "printed behind the value"},
        {"decimals", Kind::Count, "digits behind the point that are wished for, 0 to 17"},
        {"scale", Kind::Number, "the shown value is raw x scale + offset"},
        {"offset", Kind::Number, "the shown value is raw x scale + offset"},
        {"min", Kind::Number, "the lowest value that may be written"},
        {"max", Kind::Number, "the highest value that may be written"},
        {"low", Kind::Number, "what is normal begins here; shown, not enforced"},
        {"high", Kind::Number, "what is normal ends here; shown, not enforced"},
        {"states", Kind::Names, "names of raw values: `{\"0\": \"off\", \"1\": \"auto\"}`"},
        {"bits", Kind::Names, "names of bits, 0 the lowest: `{\"Overload\": 3}`"},
        {"description", Kind::Text, "what it is, in words"},
        {"sim", Kind::Text,
         "how the simulator moves the value: `vornex-sim --help` lists the motions; `labels lint` tells those that it "
         "refuses"},
    };
    return keys;
}

const Meaning& meaningOf(const Label& label) {
    static const Meaning none;
    return label.meaning ? *label.meaning : none;
}

Label readLabel(const Place& where, const char* kind, const std::string& owner, const Json_Node& object,
                Label_File& file) {
    requireKind(where, object, Json_Node::Kind::Object, kind);
    const Json_Entry& nameEntry = requireKey(where, object, "name");
    Label label;
    label.line = object.line;
    label.name = textOf(where, nameEntry);
    const Place place = where.about(kind, owner + label.name);
    checkName(place, nameEntry.line, label.name);
    Label_Reader(place, object, file).read(label);
    return label;
}

}  // namespace vornex
