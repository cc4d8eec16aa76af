#include "label/Output.h"

#include <unistd.h>

#include "text/Text.h"

namespace vornex {

Output::Output(Format outputFormat, Times timesAs, bool isQuiet, bool isVerbose)
    : format(outputFormat),
      times(timesAs),
      quiet(isQuiet),
      verbose(isVerbose),
      dataOnTerminal(isatty(STDOUT_FILENO) != 0),
      messagesOnTerminal(isatty(STDERR_FILENO) != 0),
      data(Output_File::standardOutput()),
      messages(Output_File::standardError()) {}

void Output::row(const Row& given, const std::string& text) {
    if (format == Format::Text) return block(who() + harmlessLines(text) + "\n");
    Row row = given;
    if (!controller.empty()) row.fields.insert(row.fields.begin(), {&key::controller, controller});
    if (format == Format::Json) return block(jsonObject(row) + "\n");
    const std::string heading = csvHeading(row);
    const bool isNew = heading != lastHeading;
    lastHeading = heading;
    block((isNew ? heading + "\n" : "") + csvLine(row) + "\n");
}

void Output::text(const std::string& line) {
    if (format == Format::Text) block(who() + harmlessLines(line) + "\n");
}

void Output::block(const std::string& text) {
    checked([&] {
        clearProgress();
        data.write(text);
        if (dataOnTerminal) data.flush();
    });
}

void Output::flush() {
    checked([this] { data.flush(); });
}

void Output::finish() {
    checked([this] { data.close(); });
}

// A failure that came while a message was told is thrown to the next one who puts data.
void Output::checked(const std::function<void()>& work) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (dataFailure) throw *dataFailure;
    try {
        work();
    } catch (const Output_Error& error) {
        dataFailure.emplace(error);
        throw;
    }
}

std::string Output::time(Wall_Time when) const {
    return times == Times::Absolute ? timeText(when) : timeSinceText(start, when);
}

void Output::error(const std::string& words) { message((forCollector() ? "E! " : "vornex-label: ") + who() + words); }

void Output::warn(const std::string& words) {
    if (!quiet) message((forCollector() ? "W! " : "vornex-label: warning: ") + who() + words);
}

void Output::note(const std::string& words) {
    if (!quiet) message((forCollector() ? "I! " : "") + who() + words);
}

void Output::detail(const std::string& words) {
    if (verbose && !quiet) message((forCollector() ? "D! " : "") + who() + words);
}

void Output::message(const std::string& words) {
    const std::string line = harmlessLines(words);
    const std::lock_guard<std::mutex> lock(mutex);
    if (messageTaker && messagesOnTerminal && dataOnTerminal) return messageTaker(line);
    clearProgress();
    tell(line + "\n");
}

void Output::divertMessages(std::function<void(const std::string&)> taker) {
    const std::lock_guard<std::mutex> lock(mutex);
    messageTaker = std::move(taker);
}

void Output::progress(const std::string& line) {
    if (quiet || !messagesOnTerminal) return;
    const std::lock_guard<std::mutex> lock(mutex);
    tell("\r" + line + "\033[K");
    progressShown = true;
}

void Output::clearProgress() {
    if (!progressShown) return;
    tell("\r\033[K");
    progressShown = false;
}

// Data first, so that both come in their order where they go to one place. Of a message that cannot be told nobody can
// be told.
void Output::tell(const std::string& text) {
    try {
        data.flush();
    } catch (const Output_Error& error) {
        dataFailure.emplace(error);
    }
    try {
        messages.write(text);
        messages.flush();
    } catch (const Output_Error&) {
    }
}

}  // namespace vornex
