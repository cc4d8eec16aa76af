// Verbs, options and documents of any of our programs. CLI11 holds what is registered; help, manual page and completion
// are written from it. Its header is large, so registering does without it.
//
// Everything here belongs to the thread of main().
#ifndef VORNEX_CLI_PROGRAM_H
#define VORNEX_CLI_PROGRAM_H

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vornex {

struct Example {
    std::string command;  // without the program's name
    std::string meaning;
};

struct Section {
    std::string title;
    std::string text;  // lines shown as they are
};

// What help and manual page say of a program or verb beside its options.
struct Page {
    std::string summary;       // one line, no full stop
    std::string details = {};  // paragraphs with an empty line between
    std::vector<Example> examples = {};
    std::vector<Section> sections = {};
};

std::shared_ptr<CLI::App> makeProgram(const std::string& name, const std::string& version, const Page& page);

// `parent` is the program, or a verb that thereby becomes a group. `chosen` is called by parseCommandLine() when the
// user named this verb and all options are good.
CLI::App& addVerb(CLI::App& parent, const std::string& name, const Page& page, std::function<void()> chosen = {});
// It works, but neither documents nor completion tell of it.
void hide(CLI::App& verb);

// For programs with verbs: `help [VERB]`, and hidden `man [VERB]`, `man --all DIR` and `completion`.
void addDocumentVerbs(CLI::App& program);
// For programs without: --man and --completion.
void addDocumentFlags(CLI::App& program);

// What the completion wants to know of a value.
struct Word_Request {
    std::string value;                         // what stands for it in the help: "LABEL"
    std::string beginning;                     // of the word, as typed so far, quotes removed
    std::map<std::string, std::string> given;  // the options given before: "--labels" and its value
};
struct Offered_Words {
    std::vector<std::string> words;  // those that begin otherwise are dropped
    bool isWhole = true;             // false: something must follow, so no blank is put behind the word
};
// Nothing: this source does not know such values.
using Word_Source = std::function<std::optional<Offered_Words>(const Word_Request&)>;

// Nothing: go on. Else the exit code: what was asked for (help, version, a document, the shell's question) is on
// standard output, or "PROGRAM: REASON; see --help" on standard error. Throws Output_Error.
std::optional<int> parseCommandLine(CLI::App& program, int argc, const char* const* argv,
                                    const Word_Source& words = {});

}  // namespace vornex

#endif
