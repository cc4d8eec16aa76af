// From the JSON tree to the label file, with every check that needs no controller.
#include "labels/Label_File.h"

#include <algorithm>
#include <initializer_list>
#include <set>

#include "labels/Label_Csv.h"
#include "labels/Label_Tree.h"
#include "text/Host_Port.h"
#include "text/Json_Tree.h"
#include "text/Nearest_Word.h"
#include "text/Number.h"
#include "text/Text.h"
#include "text/Text_Input.h"

namespace vornex {
namespace {

constexpr std::uint64_t AddressSpace = std::uint64_t(1) << 32;
constexpr int NestingLimit = 32;                // structures within structures; bounds every recursion over them
constexpr std::uint64_t MemberLimit = 1000000;  // with structures spelled out; bounds what nesting multiplies

std::vector<Label> readLabels(const Place& where, const char* kind, const std::string& owner, const Json_Entry& list,
                              Label_File& file) {
    requireKind(where, list.value, Json_Node::Kind::Array, "\"" + list.key + "\"");
    std::vector<Label> labels;
    labels.reserve(list.value.entries.size());
    std::set<std::string> names;
    for (const Json_Entry& entry : list.value.entries) {
        labels.push_back(readLabel(where, kind, owner, entry.value, file));
        const Label& label = labels.back();
        if (!names.insert(label.name).second) {
            where.about(kind, owner + label.name).fail(label.line, "the name is used twice");
        }
    }
    return labels;
}

Struct_Type readStruct(const Place& where, const Json_Entry& entry, Label_File& file) {
    const Place place = where.about("structure", entry.key);
    requireKind(place, entry.value, Json_Node::Kind::Object, "it");
    checkName(place, entry.line, entry.key);
    const std::string problem = structNameProblem(entry.key);
    if (!problem.empty()) place.fail(entry.line, problem);
    checkKeys(place, entry.value, {"size", "members"}, file);
    Struct_Type type;
    type.name = entry.key;
    type.line = entry.line;
    type.size = numberOf(place, requireKey(place, entry.value, "size"), 1);
    type.members = readLabels(place, "member", entry.key + ".", requireKey(place, entry.value, "members"), file);
    return type;
}

// Levels of structures from this one down. `known` keeps what was found, 0 for a structure still being looked at.
// Fails for a structure that contains itself.
int nestingOf(const Label_File& file, const Place& place, const Struct_Type& type, std::map<std::string, int>& known,
              int above = 0) {
    const auto before = known.find(type.name);
    if (before != known.end() && before->second > 0) return before->second;
    if (before != known.end()) place.about("structure", type.name).fail(type.line, "it contains itself");
    if (above > NestingLimit) place.about("structure", type.name).fail(type.line, "structures nest too deep");
    known[type.name] = 0;
    int levels = 1;
    for (const Label& member : type.members) {
        if (member.type.code != 12) continue;
        levels =
            std::max(levels, 1 + nestingOf(file, place, file.structs.at(member.type.structName), known, above + 1));
    }
    if (levels > NestingLimit) place.about("structure", type.name).fail(type.line, "structures nest too deep");
    return known[type.name] = levels;
}

// Members below a label of this type, those of nested structures each time, arrays once. `known` keeps what was found.
std::uint64_t membersBelow(const Label_File& file, const Type_Ref& type, std::map<std::string, std::uint64_t>& known) {
    if (type.code != 12) return 0;
    const auto before = known.find(type.structName);
    if (before != known.end()) return before->second;
    std::uint64_t count = 0;
    for (const Label& member : file.structs.at(type.structName).members)
        count = std::min(count + 1 + membersBelow(file, member.type, known), MemberLimit + 1);
    return known[type.structName] = count;
}

void checkMembers(const Label_File& file, const Place& place) {
    std::map<std::string, std::uint64_t> known;
    std::uint64_t count = 0;
    for (const Label& label : file.labels) {
        count += membersBelow(file, label.type, known);
        if (count <= MemberLimit) continue;
        place.about("label", label.name)
            .fail(label.line,
                  "with its structures spelled out, the file has more than a "
                  "million members up to here");
    }
}

[[noreturn]] void unknownType(const Label_File& file, const Place& place, const Label& label) {
    std::vector<std::string> known;
    for (const auto& entry : file.structs)
        known.push_back(entry.first);
    for (const Type_Name& type : typeNames())
        known.push_back(type.name);
    place.fail(label.line, "neither a type nor a structure is called '" + label.type.structName + "'" +
                               didYouMean(label.type.structName, known));
}

// Checks that need all structures: the type exists, the whole array fits below `limit`.
void checkExtent(const Label_File& file, const Place& place, const Label& label, std::uint64_t limit,
                 const std::string& limitName) {
    const std::uint64_t bytes = elementBytes(file, label.type);
    if (bytes == 0) unknownType(file, place, label);
    const std::uint64_t count = elementCount(label.type);
    if (label.at > limit || count > (limit - label.at) / bytes) {
        place.fail(label.line, std::to_string(count) + " x " + std::to_string(bytes) + " bytes at " +
                                   std::to_string(label.at) + " end past " + limitName);
    }
}

void checkWhole(const Label_File& file, const Place& place) {
    for (const auto& [name, type] : file.structs) {
        for (const Label& member : type.members) {
            checkExtent(file, place.about("member", name + "." + member.name), member, type.size,
                        "the structure's size " + std::to_string(type.size));
        }
    }
    std::map<std::string, int> levels;
    for (const auto& entry : file.structs)
        nestingOf(file, place, entry.second, levels);
    for (const Label& label : file.labels) {
        checkExtent(file, place.about("label", label.name), label, AddressSpace, "the 32-bit address space");
    }
    checkMembers(file, place);
}

void readTarget(const Place& place, const Json_Node& root, Label_File& file) {
    file.target = optionalText(place, root, "target");
    if (file.target.empty()) return;
    try {
        parseHostPort(file.target);
    } catch (const std::invalid_argument& refusal) {
        place.fail(root.find("target")->line, std::string("target ") + refusal.what());
    }
}

}  // namespace

void checkKeys(const Place& place, const Json_Node& object, const std::vector<std::string>& known, Label_File& file) {
    for (const Json_Entry& entry : object.entries) {
        if (std::find(known.begin(), known.end(), entry.key) != known.end()) continue;
        file.warnings.push_back(
            place.told(entry.line, "unknown key \"" + entry.key + "\"" + didYouMean(entry.key, known)));
    }
}

void requireKind(const Place& place, const Json_Node& node, Json_Node::Kind kind, const std::string& what) {
    if (node.kind != kind) place.fail(node.line, what + " is " + kindName(node.kind) + ", not " + kindName(kind));
}

const Json_Entry& requireKey(const Place& place, const Json_Node& object, const char* key) {
    const Json_Entry* entry = object.find(key);
    if (!entry) place.fail(object.line, std::string("the key \"") + key + "\" is missing");
    return *entry;
}

std::string textOf(const Place& place, const Json_Entry& entry) {
    requireKind(place, entry.value, Json_Node::Kind::String, "\"" + entry.key + "\"");
    if (hasControl(entry.value.text)) place.fail(entry.line, "\"" + entry.key + "\" holds a control character");
    return entry.value.text;
}

std::string optionalText(const Place& place, const Json_Node& object, const char* key) {
    const Json_Entry* entry = object.find(key);
    if (!entry) return "";
    return textOf(place, *entry);
}

std::uint32_t numberOf(const Place& place, const Json_Entry& entry, std::int64_t lowest) {
    std::int64_t value = entry.value.integer;
    bool isWhole = entry.value.kind == Json_Node::Kind::Integer;
    if (entry.value.kind == Json_Node::Kind::String) {  // JSON has no hexadecimal numbers
        try {
            value = static_cast<std::int64_t>(unsignedNumber(entry.value.text, 0, AddressSpace - 1));
            isWhole = true;
        } catch (const std::invalid_argument&) {
        }
    }
    if (!isWhole || value < lowest || value >= std::int64_t(AddressSpace)) {
        place.fail(entry.line, "\"" + entry.key + "\" is not a whole number from " + std::to_string(lowest) +
                                   " to 4294967295, such as 100 or \"0x64\"");
    }
    return static_cast<std::uint32_t>(value);
}

// Characters that label texts give a meaning of their own: such a name could never be reached.
void checkName(const Place& place, int line, const std::string& name) {
    if (name.empty()) place.fail(line, "the name is empty");
    if (hasControl(name)) place.fail(line, "the name holds a control character");
    if (name.find_first_of(".[]") != std::string::npos || name.find("%%") != std::string::npos) {
        place.fail(line, "a name cannot hold '.', '[', ']' or '%%'");
    }
    if (name == "@memory") place.fail(line, "'@memory' stands for bare memory in the tools' own requests");
}

Label_File labelFileOf(const Json_Node& root, const std::string& path) {
    const Place place = {path, ""};
    requireKind(place, root, Json_Node::Kind::Object, "the file");
    const Json_Entry& format = requireKey(place, root, "format");
    if (format.value.kind != Json_Node::Kind::Integer || format.value.integer != 1) {
        place.fail(format.line, "the format is not 1, the only one known");
    }
    Label_File file;
    file.path = path;
    checkKeys(place, root, {"$schema", "format", "target", "structs", "labels"}, file);
    readTarget(place, root, file);
    if (const Json_Entry* structs = root.find("structs")) {
        requireKind(place, structs->value, Json_Node::Kind::Object, "\"structs\"");
        for (const Json_Entry& entry : structs->value.entries)
            file.structs[entry.key] = readStruct(place, entry, file);
    }
    file.labels = readLabels(place, "label", "", requireKey(place, root, "labels"), file);
    checkWhole(file, place);
    return file;
}

Label_File parseLabelFile(const std::string& text, const std::string& path) {
    return labelFileOf(parseJson(text, path), path);
}

Label_File readLabelFile(const std::string& path) { return parseLabels(wholeUtf8(path), path); }

Label_File readLabelFile(const std::string& path, bool isStrict, const std::function<void(const std::string&)>& warn) {
    Label_File file = readLabelFile(path);
    for (const std::string& warning : file.warnings) {
        if (isStrict) throw File_Error(warning);
        warn(warning);
    }
    return file;
}

bool isCsvName(const std::string& path) { return endsIn(lowered(path), ".csv"); }

Label_File parseLabels(const std::string& text, const std::string& path) {
    return isCsvName(path) ? parseLabelCsv(text, path) : parseLabelFile(text, path);
}

}  // namespace vornex
