// What the files of this room share; nobody else includes it.
#ifndef VORNEX_CLI_VERB_APP_H
#define VORNEX_CLI_VERB_APP_H

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/Program.h"

namespace vornex {

// A program or verb with the texts that CLI11 has no place for. Documents are written for a plain CLI::App too.
struct Verb_App : CLI::App {
    Verb_App(const std::string& verbName, const Page& verbPage) : CLI::App(verbPage.summary, verbName), page(verbPage) {
        set_help_flag("-h,--help", "Show this help.");
    }
    const Page page;
};

std::vector<const CLI::App*> visibleVerbs(const CLI::App& app);
std::vector<std::string> verbNames(const CLI::App& app);
// With their hyphens, the long ones alone.
std::vector<std::string> optionNames(const CLI::App& app);
// Null when there is none, hidden ones included.
const CLI::App* verbNamed(const CLI::App& app, const std::string& name);
// "vornex-label labels lint", or with hyphens: the name of its manual page.
std::string fullName(const CLI::App& app, char separator = ' ');

std::string helpText(const CLI::App& app);
// In man(7) format.
std::string manPage(const CLI::App& app);
// A bash script that asks the program itself: PROGRAM --complete LINE.
std::string completionScript(const std::string& program);
// The answer: options of bash's compopt on the first line, then a word a line. `line` ends at the cursor.
std::string completionAnswer(const CLI::App& program, const std::string& line, const Word_Source& words);

}  // namespace vornex

#endif
