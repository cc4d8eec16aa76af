#include "Output.h"

#include <unistd.h>

#include <cstdio>

namespace vornex {

namespace {

void writeLine(FILE* file, const std::string& line) {
    std::fwrite(line.data(), 1, line.size(), file);
    std::fputc('\n', file);
    std::fflush(file);  // whoever reads the pipe sees a change when it happens
}

}  // namespace

std::string jsonObject(const Row& row) {
    std::string line;
    for (const auto& [name, value] : row.fields) {
        line += (line.empty() ? "" : ",") + jsonString(name) + ":" + value.json();
    }
    return "{" + line + "}";
}

std::string csvField(const std::string& text) {
    if (text.find_first_of(",;\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (char letter : text) {
        if (letter == '"') quoted += '"';
        quoted += letter;
    }
    return quoted + "\"";
}

Output::Output(Format outputFormat, bool isQuiet, bool isVerbose)
    : format(outputFormat),
      quiet(isQuiet),
      verbose(isVerbose),
      dataOnTerminal(isatty(STDOUT_FILENO) != 0),
      messagesOnTerminal(isatty(STDERR_FILENO) != 0) {}

void Output::row(const Row& row, const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex);
    clearProgress();
    if (format == Format::Text) return writeLine(stdout, text);
    if (format == Format::Json) return writeLine(stdout, jsonObject(row));
    std::string heading, line;
    for (const auto& [name, value] : row.fields) {
        heading += (heading.empty() ? "" : ",") + csvField(name);
        line += (&name == &row.fields.front().first ? "" : ",") +
                (value.kind == Value::Kind::Null ? std::string() : csvField(value.shown()));
    }
    if (heading != csvHeading) writeLine(stdout, heading);
    csvHeading = heading;
    writeLine(stdout, line);
}

void Output::text(const std::string& line) {
    if (format != Format::Text) return;
    const std::lock_guard<std::mutex> lock(mutex);
    clearProgress();
    writeLine(stdout, line);
}

void Output::block(const std::string& text) {
    if (format != Format::Text) return;
    const std::lock_guard<std::mutex> lock(mutex);
    clearProgress();
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

void Output::error(const std::string& words) { message("vornex-label: " + words); }

void Output::warn(const std::string& words) {
    if (!quiet) message("vornex-label: warning: " + words);
}

void Output::note(const std::string& words) {
    if (!quiet) message(words);
}

void Output::detail(const std::string& words) {
    if (verbose && !quiet) message(words);
}

void Output::message(const std::string& line) {
    const std::lock_guard<std::mutex> lock(mutex);
    clearProgress();
    writeLine(stderr, line);
}

void Output::progress(const std::string& line) {
    if (quiet || !messagesOnTerminal) return;
    const std::lock_guard<std::mutex> lock(mutex);
    std::fprintf(stderr, "\r%s\033[K", line.c_str());
    std::fflush(stderr);
    progressShown = true;
}

void Output::clearProgress() {
    if (!progressShown) return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    progressShown = false;
}

}  // namespace vornex
