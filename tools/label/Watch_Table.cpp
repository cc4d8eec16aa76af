// The live table of a watch.
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>

#include "Watch_View.h"

namespace vornex {

namespace {

std::string padded(const std::string& text, std::size_t width, bool toRight = false) {
    std::size_t shown = 0;  // characters, not bytes: a unit may be "°C"
    for (char letter : text)
        shown += (static_cast<unsigned char>(letter) & 0xC0) != 0x80 ? 1 : 0;
    const std::string space(width > shown ? width - shown : 0, ' ');
    return toRight ? space + text : text + space;
}

std::size_t terminalLines() {
    winsize size;
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 4 ? size.ws_row : 24;
}

struct Widths {
    std::size_t label = 5;
    std::size_t value = 12;
    std::size_t unit = 4;
};

Widths widthsOf(const std::vector<Watched>& all) {
    Widths widths;
    for (const Watched& watched : all) {
        widths.label = std::max(widths.label, watched.variable.text.size());
        widths.value = std::max(widths.value, watched.value.shown().size());
        widths.unit = std::max(widths.unit, watched.variable.unit.size());
    }
    return widths;
}

std::string line(const Widths& widths, const std::string& label, const std::string& value, const std::string& unit,
                 const std::string& state, const std::string& changes, const std::string& address) {
    return padded(label, widths.label) + "  " + padded(value, widths.value, true) + " " + padded(unit, widths.unit) +
           "  " + padded(state, 7) + "  " + padded(changes, 7, true) + "  " + padded(address, 10, true);
}

}  // namespace

void Live_Table::update(const std::vector<Watched>& all) {
    ++rounds;
    if (out.dataOnTerminal || rounds == 1) draw(all);
}

void Live_Table::link(const Link_Change& change) {
    const bool up = change.state == Link_Change::State::Up;
    linkText = up ? "connected" : "CONNECTION LOST: " + change.reason;
    if (!out.dataOnTerminal) out.note(target + ": " + linkText);
}

void Live_Table::finish(const std::vector<Watched>& all) { draw(all); }

void Live_Table::draw(const std::vector<Watched>& all) {
    const Widths widths = widthsOf(all);
    std::vector<std::string> lines = {target + "  " + linkText + "  round " + std::to_string(rounds),
                                      line(widths, "LABEL", "VALUE", "UNIT", "STATE", "CHANGES", "ADDRESS")};
    const std::size_t room = out.dataOnTerminal ? terminalLines() - 2 : all.size() + lines.size();
    for (const Watched& watched : all) {
        if (lines.size() + 1 >= room && all.size() + 2 > room) {
            lines.push_back("... and " + std::to_string(all.size() + 2 - lines.size()) +
                            " more; a higher window shows them");
            break;
        }
        const Variable& variable = watched.variable;
        lines.push_back(line(widths, variable.text, watched.value.shown(), variable.unit,
                             freshnessName(watched.freshness), std::to_string(watched.changes),
                             std::to_string(variable.address)));
    }
    std::string text;
    if (out.dataOnTerminal && linesDrawn > 0) text = "\033[" + std::to_string(linesDrawn) + "A";
    for (const std::string& drawn : lines)
        text += drawn + (out.dataOnTerminal ? "\033[K\n" : "\n");
    if (out.dataOnTerminal) text += "\033[J";
    out.block(text);
    linesDrawn = lines.size();
}

}  // namespace vornex
