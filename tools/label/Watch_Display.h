// How a watch shows its variables on standard output: changes line by line, or a live table.
#ifndef VORNEX_LABEL_WATCH_DISPLAY_H
#define VORNEX_LABEL_WATCH_DISPLAY_H

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "label/Output.h"
#include "watch/Change_Filter.h"

namespace vornex {

// A line for each value that differs from the one shown last by more than the deadband, or is fresh again.
class Change_Lines : public Watch_Output {
public:
    Change_Lines(Output& output, double deadbandWidth) : out(output), filter(deadbandWidth) {}
    void update(const std::vector<Watched>& all, int round) override;
    void link(const Link_Change& change) override;

protected:
    Output& out;
    Change_Filter filter;
};

// The line protocol of InfluxDB: all fresh values of each round, or those that have changed.
class Point_Lines : public Change_Lines {
public:
    Point_Lines(Output& output, std::string controllerName, std::optional<double> deadbandOfChanges)
        : Change_Lines(output, deadbandOfChanges.value_or(0)),
          controller(std::move(controllerName)),
          changesOnly(deadbandOfChanges.has_value()) {}
    void update(const std::vector<Watched>& all, int round) override;

private:
    const std::string controller;
    const bool changesOnly;
};

// The table. On a terminal it has the screen for itself, like a pager, is drawn anew after each round and each change
// of the window, and takes the tool's messages into its own lines; what it showed last stays when it ends. In a pipe it
// is printed after the first round and at the end.
class Live_Table : public Watch_Output {
public:
    Live_Table(Output& output, std::string targetText);
    ~Live_Table() override;
    void update(const std::vector<Watched>& all, int round) override;
    void link(const Link_Change& change) override;
    void tick(const std::vector<Watched>& all) override;
    void finish(const std::vector<Watched>& all) override;

private:
    void draw(const std::vector<Watched>& all);
    void leaveScreen();

    Output& out;
    const std::string target;
    std::string linkText = "connected";
    int round = 0;
    std::deque<std::string> messages;
    std::mutex messageMutex;  // guards the messages
    bool hasScreen = false;
};

}  // namespace vornex

#endif
