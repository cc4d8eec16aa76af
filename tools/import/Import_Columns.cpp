#include "import/Import_Columns.h"

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>

#include "labels/Label_Tree.h"
#include "text/Nearest_Word.h"
#include "text/Text.h"
#include "text/Text_Input.h"

namespace vornex {
namespace {

constexpr std::size_t HeadingRows = 20;

// Beside the keys themselves.
const std::map<std::string, std::string> KnownHeadings = {
    {"address", "at"},          {"adresse", "at"},     {"bezeichner", "name"}, {"beschreibung", "description"},
    {"comment", "description"}, {"data type", "type"}, {"datatype", "type"},   {"datentyp", "type"},
    {"einheit", "unit"},        {"factor", "scale"},   {"faktor", "scale"},    {"kommentar", "description"},
    {"maximum", "max"},         {"minimum", "min"},    {"symbol", "name"},     {"tag", "name"},
    {"tagname", "name"},        {"typ", "type"},       {"variable", "name"},
};

using Row = std::vector<Csv_Cell>;

bool isKey(const std::string& word) {
    const auto& keys = labelKeys();
    return std::any_of(keys.begin(), keys.end(), [&](const Label_Key& key) { return word == key.name; });
}

std::string knownKey(const std::string& heading) {
    const auto known = KnownHeadings.find(heading);
    if (known != KnownHeadings.end()) return known->second;
    return isKey(heading) ? heading : "";
}

std::vector<std::string> headingsOf(const Row& row) {
    std::vector<std::string> headings;
    headings.reserve(row.size());
    for (const Csv_Cell& cell : row)
        headings.push_back(trimmed(cell.text));
    return headings;
}

// What keeps this row from being the heading; empty: nothing does.
std::string readHeading(const Row& row, const Column_Map& map, Import_Columns& columns) {
    const std::vector<std::string> headings = headingsOf(row);
    std::set<std::size_t> used;
    for (const auto& [key, wanted] : map) {
        const auto found = std::find_if(
            headings.begin(), headings.end(),
            [&wanted = wanted](const std::string& heading) { return lowered(heading) == lowered(wanted); });
        if (found == headings.end()) return "no column is called '" + wanted + "'" + didYouMean(wanted, headings);
        columns.at[key] = static_cast<std::size_t>(found - headings.begin());
        used.insert(columns.at[key]);
    }
    for (std::size_t i = 0; i < headings.size(); ++i) {
        if (used.count(i) || headings[i].empty()) continue;
        const std::string key = knownKey(lowered(headings[i]));
        if (key.empty() || !columns.at.emplace(key, i).second) columns.leftOut.push_back(headings[i]);
    }
    for (const char* needed : {"name", "type", "at"}) {
        if (columns.at.count(needed)) continue;
        return std::string("no column is known as the ") + (needed == std::string("at") ? "address" : needed) +
               " among " + joined(headings) + "; --map says which it is";
    }
    return "";
}

}  // namespace

Column_Map parseColumnMap(const std::vector<std::string>& texts) {
    std::vector<std::string> keys = {"address"};
    for (const Label_Key& key : labelKeys())
        keys.push_back(key.name);
    Column_Map map;
    std::string last;
    for (const std::string& piece : split(joined(texts, ","), ',')) {
        const std::size_t equals = piece.find('=');
        if (equals == std::string::npos && !last.empty()) {
            map[last] += "," + piece;  // a heading with a comma in it
            continue;
        }
        if (equals == std::string::npos) throw std::invalid_argument("--map: '" + piece + "' is not KEY=HEADING");
        const std::string key = trimmed(piece.substr(0, equals));
        if (std::find(keys.begin(), keys.end(), key) == keys.end())
            throw std::invalid_argument("--map: '" + key + "' is no key of a label" + didYouMean(key, keys));
        last = key == "address" ? "at" : key;
        if (!map.emplace(last, trimmed(piece.substr(equals + 1))).second)
            throw std::invalid_argument("--map: '" + key + "' is given twice");
    }
    return map;
}

Import_Columns findColumns(const std::vector<Row>& rows, const Column_Map& map, const std::string& path) {
    if (rows.empty()) throw File_Error(path + ":1: the table is empty; a row of headings is expected");
    std::string reason;
    const Row* nearest = &rows[0];
    std::size_t most = 0;
    for (std::size_t i = 0; i < std::min(rows.size(), HeadingRows); ++i) {
        Import_Columns columns;
        columns.heading = i;
        const std::string problem = readHeading(rows[i], map, columns);
        if (problem.empty()) return columns;
        if (!reason.empty() && columns.at.size() <= most) continue;
        reason = problem;  // told of the row that is most like a heading
        nearest = &rows[i];
        most = columns.at.size();
    }
    throw File_Error(path + ":" + std::to_string((*nearest)[0].line) + ": " + reason);
}

char findSeparator(const std::string& text) {
    constexpr std::array<char, 3> All = {'\t', ';', ','};  // of equals the first
    std::array<std::size_t, All.size()> lines = {};
    std::size_t at = 0;
    bool inQuotes = false;
    for (std::size_t line = 0; line < HeadingRows && at < text.size(); ++line) {
        std::array<bool, All.size()> seen = {};
        for (; at < text.size() && (inQuotes || text[at] != '\n'); ++at) {
            if (text[at] == '"') inQuotes = !inQuotes;
            for (std::size_t i = 0; i < All.size(); ++i)
                seen[i] = seen[i] || (text[at] == All[i] && !inQuotes);
        }
        ++at;
        for (std::size_t i = 0; i < All.size(); ++i)
            lines[i] += seen[i] ? 1 : 0;
    }
    return All[static_cast<std::size_t>(std::max_element(lines.begin(), lines.end()) - lines.begin())];
}

}  // namespace vornex
