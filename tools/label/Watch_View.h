// How a watch shows its variables: changes line by line, a live table, a CSV file.
#ifndef VORNEX_LABEL_WATCH_VIEW_H
#define VORNEX_LABEL_WATCH_VIEW_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "Exchange.h"
#include "Output.h"
#include "Variables.h"

namespace vornex {

// A variable under watch. The value is the last one that a reply brought, null before the first.
struct Watched {
    Variable variable;
    Value value;
    Freshness freshness = Freshness::Unknown;
    std::uint64_t changes = 0;
};

std::string freshnessName(Freshness freshness);

// Called on the watch's own thread after each round, and when the link changes.
class Watch_View {
public:
    virtual ~Watch_View() = default;
    virtual void update(const std::vector<Watched>& all) = 0;
    virtual void link(const Link_Change&) {}
    virtual void finish(const std::vector<Watched>&) {}
};

// A line for each value that differs from the one shown last by more than the deadband, or is fresh again.
class Change_Lines : public Watch_View {
public:
    Change_Lines(Output& output, double deadbandWidth) : out(output), deadband(deadbandWidth) {}
    void update(const std::vector<Watched>& all) override;
    void link(const Link_Change& change) override;

private:
    struct Shown {
        bool any = false;
        Value value;
        Freshness freshness = Freshness::Unknown;
    };
    bool differs(const Shown& last, const Watched& now) const;

    Output& out;
    const double deadband;
    std::vector<Shown> shown;
};

// The table, redrawn in place on a terminal. In a pipe it is printed after the first round and at the end.
class Live_Table : public Watch_View {
public:
    Live_Table(Output& output, std::string targetText) : out(output), target(std::move(targetText)) {}
    void update(const std::vector<Watched>& all) override;
    void link(const Link_Change& change) override;
    void finish(const std::vector<Watched>& all) override;

private:
    void draw(const std::vector<Watched>& all);

    Output& out;
    const std::string target;
    std::string linkText = "connected";
    int rounds = 0;
    std::size_t linesDrawn = 0;
};

// One line a round, one column a variable; cells without a fresh value are empty.
class Csv_Log : public Watch_View {
public:
    // Throws Tool_Error Usage when the file cannot be written.
    explicit Csv_Log(const std::string& path);
    ~Csv_Log() override;
    void update(const std::vector<Watched>& all) override;

private:
    FILE* file;
    bool headed = false;
};

}  // namespace vornex

#endif
