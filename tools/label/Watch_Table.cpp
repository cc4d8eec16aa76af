// The live table of a watch.
#include <sys/ioctl.h>
#include <unistd.h>

#include <utility>

#include "label/Watch_Display.h"
#include "watch/Table_Lines.h"

namespace vornex {

namespace {

const std::size_t MessagesKept = 3;
const char OwnScreen[] = "\033[?1049h\033[?25l";  // without the cursor
const char OldScreen[] = "\033[?1049l\033[?25h";

winsize window() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0) {
        size.ws_row = 24;
        size.ws_col = 80;
    }
    return size;
}

}  // namespace

Live_Table::Live_Table(Output& output, std::string targetText) : out(output), target(std::move(targetText)) {}

Live_Table::~Live_Table() {
    try {
        leaveScreen();
    } catch (const Output_Error&) {  // then nobody sees the screen
    }
}

void Live_Table::update(const std::vector<Watched>& all, int newRound) {
    round = newRound;
    if (out.dataOnTerminal || round == 1) draw(all);
}

void Live_Table::link(const Link_Change& change) {
    const bool up = change.state == Link_Change::State::Up;
    const char* const how = change.state == Link_Change::State::Down ? "CONNECTION LOST " : "NO CONNECTION ";
    linkText = up ? "connected" : how + timeText(change.at).substr(11, 8) + ": " + change.reason;
    if (!out.dataOnTerminal) out.note(target + ": " + linkText);
}

void Live_Table::tick(const std::vector<Watched>& all) {
    if (out.dataOnTerminal) draw(all);
}

void Live_Table::finish(const std::vector<Watched>& all) {
    leaveScreen();
    const std::size_t columns = out.dataOnTerminal ? window().ws_col : 0;
    std::string text;
    for (const std::string& line :
         tableLines({target, linkText, round, all, {}, std::chrono::system_clock::now()}, columns, 0))
        text += line + "\n";
    out.block(text);
    for (const std::string& message : std::exchange(messages, {}))
        out.note(message);
    out.flush();
}

// Every line from the window's left edge and cut to its width, so that neither length nor a change of size moves it.
void Live_Table::draw(const std::vector<Watched>& all) {
    if (!out.dataOnTerminal) {
        for (const std::string& line :
             tableLines({target, linkText, round, all, {}, std::chrono::system_clock::now()}, 0, 0))
            out.text(line);
        return out.flush();
    }
    if (!std::exchange(hasScreen, true)) {
        out.block(OwnScreen);
        out.divertMessages([this](const std::string& message) {
            const std::lock_guard<std::mutex> lock(messageMutex);
            messages.push_back(message);
            if (messages.size() > MessagesKept) messages.pop_front();
        });
    }
    const winsize size = window();
    std::vector<std::string> told;
    {
        const std::lock_guard<std::mutex> lock(messageMutex);
        told.assign(messages.begin(), messages.end());
    }
    std::string text = "\033[H";
    const char* separator = "";
    for (const std::string& line :
         tableLines({target, linkText, round, all, told, std::chrono::system_clock::now()}, size.ws_col, size.ws_row)) {
        text += separator + line + "\033[K";
        separator = "\r\n";
    }
    out.block(text + "\033[J");
    out.flush();
}

void Live_Table::leaveScreen() {
    if (!std::exchange(hasScreen, false)) return;
    out.divertMessages(nullptr);
    out.block(OldScreen);
    out.flush();
}

}  // namespace vornex
