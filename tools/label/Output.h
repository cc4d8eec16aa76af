// Where the tool speaks: data on stdout as text, JSON lines or CSV, messages on stderr.
#ifndef VORNEX_LABEL_OUTPUT_H
#define VORNEX_LABEL_OUTPUT_H

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Value.h"

namespace vornex {

// Named fields in the order of a line.
class Row {
public:
    Row& add(std::string name, Value value) {
        fields.emplace_back(std::move(name), std::move(value));
        return *this;
    }
    std::vector<std::pair<std::string, Value>> fields;
};

// Safe to use from several threads: lines never mix.
class Output {
public:
    enum class Format { Text, Json, Csv };

    Output(Format format, bool quiet, bool verbose);

    // One line of data. Text output prints `text`, the others the fields. CSV repeats its heading when the names
    // change.
    void row(const Row& row, const std::string& text);
    // Data that exists as text alone, such as a heading; nothing in the other formats.
    void text(const std::string& line);

    // Text as it is, line ends included.
    void block(const std::string& text);

    void error(const std::string& message);   // always
    void warn(const std::string& message);    // not with -q
    void note(const std::string& message);    // not with -q
    void detail(const std::string& message);  // with -v alone

    // Progress on one line of the terminal, replaced by the next one; nothing when stderr is no terminal.
    void progress(const std::string& line);

    const Format format;
    const bool quiet;
    const bool verbose;
    const bool dataOnTerminal;      // stdout is one
    const bool messagesOnTerminal;  // stderr is one

private:
    void message(const std::string& line);
    void clearProgress();

    std::mutex mutex;
    std::string csvHeading;
    bool progressShown = false;
};

// {"name":value,...}
std::string jsonObject(const Row& row);
// A CSV field, quoted when it has to be.
std::string csvField(const std::string& text);

}  // namespace vornex

#endif
