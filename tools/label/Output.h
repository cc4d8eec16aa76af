// Where the tool speaks: data on stdout as text, JSON lines or CSV, messages on stderr.
#ifndef VORNEX_LABEL_OUTPUT_H
#define VORNEX_LABEL_OUTPUT_H

#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "text/Output_File.h"
#include "text/Time_Text.h"
#include "values/Row.h"

namespace vornex {

// Safe to use from several threads: lines never mix. What goes to standard output throws Output_Error when it cannot be
// written, then and ever after; messages that cannot be told are lost.
class Output {
public:
    enum class Format { Text, Json, Csv, Influx };

    // Times are told as they are on the clock, or since the start.
    enum class Times { Absolute, Relative };

    Output(Format format, Times times, bool quiet, bool verbose);
    // From now on each row and message says that it is of this controller.
    void sayController(const std::string& name) { controller = name; }

    // One line of data. Text output prints `text`, the others the fields. CSV repeats its heading when the names
    // change.
    void row(const Row& row, const std::string& text);
    // Data that exists as text alone, such as a heading; nothing in the other formats.
    void text(const std::string& line);

    // Text as it is, line ends included, whatever the format.
    void block(const std::string& text);
    // Data that was put so far is to be seen now; without it much is written at once, and the rest with finish().
    void flush();
    // After the last data: it is written, or Output_Error is thrown.
    void finish();

    std::string time(Wall_Time when) const;

    void error(const std::string& message);   // always
    void warn(const std::string& message);    // not with -q
    void note(const std::string& message);    // not with -q
    void detail(const std::string& message);  // with -v alone

    // Messages go there from now on, when they would appear on the terminal that shows the data; null: as before.
    void divertMessages(std::function<void(const std::string&)> taker);

    // Progress on one line of the terminal, replaced by the next one; nothing when stderr is no terminal.
    void progress(const std::string& line);

    const Format format;
    const Times times;
    const Wall_Time start = std::chrono::system_clock::now();
    const bool quiet;
    const bool verbose;
    const bool dataOnTerminal;      // stdout is one
    const bool messagesOnTerminal;  // stderr is one

private:
    // Who collects lines for a database sorts messages by their first letter.
    bool forCollector() const { return format == Format::Influx; }
    void message(const std::string& line);
    void tell(const std::string& text);
    void clearProgress();
    void checked(const std::function<void()>& work);

    std::mutex mutex;
    Output_File data;
    Output_File messages;
    std::function<void(const std::string&)> messageTaker;
    std::optional<Output_Error> dataFailure;
    std::string who() const { return controller.empty() ? "" : controller + ": "; }
    std::string controller;   // empty: there is one alone
    std::string lastHeading;  // of CSV
    bool progressShown = false;
};

}  // namespace vornex

#endif
