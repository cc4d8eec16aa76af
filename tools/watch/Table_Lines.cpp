#include "watch/Table_Lines.h"

#include <algorithm>
#include <array>

#include "host/Variable_Value.h"
#include "text/Text.h"

namespace vornex {

namespace {

const std::size_t Gap = 2;
const std::size_t LeastLabel = 8;

// In the order in which they stand. Those with a rank give way to a narrow window, the highest first.
struct Column {
    const char* heading;
    Align align;
    int rank;
};
const std::array<Column, 7> Columns = {{{"LABEL", Align::Left, 0},
                                        {"VALUE", Align::Right, 0},
                                        {"UNIT", Align::Left, 1},
                                        {"STATE", Align::Left, 0},
                                        {"AGE", Align::Right, 2},
                                        {"CHANGES", Align::Right, 3},
                                        {"ADDRESS", Align::Right, 4}}};
using Cells = std::array<std::string, Columns.size()>;

Cells cellsOf(const Watched& watched, Wall_Time now) {
    const bool known = watched.freshness != Freshness::Unknown;
    const std::string band = bandOf(formOf(watched.variable), watched.raw);
    return {watched.variable.text,
            watched.value.shown() + (band.empty() ? "" : " " + band),
            watched.variable.unit,
            freshnessName(watched.freshness),
            known ? ageText(now - watched.seen) : "",
            std::to_string(watched.changes),
            std::to_string(watched.variable.address)};
}

struct Layout {
    std::array<std::size_t, Columns.size()> width{};  // 0: the column is left out

    std::size_t total() const {
        std::size_t sum = 0;
        for (const std::size_t column : width)
            sum += column == 0 ? 0 : column + Gap;
        return sum - Gap;
    }
    void narrowTo(std::size_t columns) {
        for (int rank = 4; rank > 0 && total() > columns; --rank) {
            for (std::size_t i = 0; i < Columns.size(); ++i)
                width[i] = Columns[i].rank == rank ? 0 : width[i];
        }
        for (const std::size_t i : {0u, 1u}) {  // label, then value
            const std::size_t over = total() > columns ? total() - columns : 0;
            width[i] -= std::min(over, width[i] - std::min(width[i], LeastLabel));
        }
    }
    std::string line(const Cells& cells) const {
        std::string text;
        for (std::size_t i = 0; i < Columns.size(); ++i) {
            if (width[i] == 0) continue;
            text += (text.empty() ? "" : std::string(Gap, ' ')) +
                    padded(cutTo(cells[i], width[i]), width[i], Columns[i].align);
        }
        return text.substr(0, text.find_last_not_of(' ') + 1);
    }
};

std::string statusLine(const Table_Content& content) {
    std::size_t stale = 0;
    for (const Watched& watched : content.all)
        stale += watched.freshness == Freshness::Fresh ? 0 : 1;
    std::string text = content.target + "  " + content.linkText + "  round " + std::to_string(content.round);
    if (stale > 0) text += "  " + std::to_string(stale) + " of " + std::to_string(content.all.size()) + " not fresh";
    return text;
}

}  // namespace

std::vector<std::string> tableLines(const Table_Content& content, std::size_t columns, std::size_t lines) {
    const std::size_t fixed = 2 + content.messages.size();
    const bool fits = lines == 0 || content.all.size() + fixed <= lines;
    const std::size_t shown = fits ? content.all.size() : lines > fixed ? lines - fixed - 1 : 0;
    std::vector<Cells> rows(1);
    for (std::size_t i = 0; i < Columns.size(); ++i)
        rows[0][i] = Columns[i].heading;
    for (std::size_t i = 0; i < shown; ++i)
        rows.push_back(cellsOf(content.all[i], content.now));
    Layout layout;
    for (const Cells& cells : rows) {
        for (std::size_t i = 0; i < cells.size(); ++i)
            layout.width[i] = std::max(layout.width[i], displayWidth(cells[i]));
    }
    if (columns > 0) layout.narrowTo(columns);
    std::vector<std::string> text = {statusLine(content)};
    for (const Cells& cells : rows)
        text.push_back(layout.line(cells));
    if (!fits)
        text.push_back("... and " + std::to_string(content.all.size() - shown) + " more; a higher window shows them");
    text.insert(text.end(), content.messages.begin(), content.messages.end());
    for (std::string& line : text)
        line = columns > 0 ? cutTo(line, columns) : line;
    if (lines > 0 && text.size() > lines) text.resize(lines);
    return text;
}

}  // namespace vornex
