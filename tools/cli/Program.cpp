#include "cli/Program.h"

#include <iostream>

#include "cli/Options.h"
#include "cli/Verb_App.h"
#include "text/Nearest_Word.h"
#include "text/Output_File.h"
#include "text/Text.h"

namespace vornex {

namespace {

// Ends the parsing: what the user asked for is said.
struct Answer {
    std::string text;
};

// Ends it as a mistake of the user's.
[[noreturn]] void refuse(const std::string& reason) { throw CLI::RuntimeError(reason, 1); }

const CLI::App& deepest(const CLI::App& app) {
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    return chosen.empty() ? app : deepest(*chosen.front());
}

std::string noVerb(const CLI::App& app, const std::string& word) {
    return "'" + word + "' is no verb" + didYouMean(word, verbNames(app));
}

// Why the words that CLI11 had no place for are wrong, those in front of the verb first; empty when there are none.
std::string reasonOfRest(const CLI::App& app) {
    const std::vector<std::string> rest = app.remaining();
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    if (rest.empty()) return chosen.empty() ? "" : reasonOfRest(*chosen.front());
    const std::string& word = rest.front();
    if (word.size() > 1 && word[0] == '-') {
        return "'" + word + "' is no option of " + fullName(app) + didYouMean(word, optionNames(app));
    }
    return visibleVerbs(app).empty() ? "'" + word + "' was not expected" : noVerb(app, word);
}

std::string reasonOf(const CLI::App& program, const CLI::ParseError& error) {
    const CLI::App& app = deepest(program);
    const bool isMissing = dynamic_cast<const CLI::RequiredError*>(&error);
    const bool isMistake = error.get_exit_code() != 0 && !isMissing && !dynamic_cast<const CLI::ExtrasError*>(&error);
    std::string rest = reasonOfRest(program);
    if (!isMistake && !rest.empty()) return rest;
    if (!isMissing || visibleVerbs(app).empty()) return error.what();
    return app.get_parent() ? "'" + app.get_name() + "' needs a verb" : "a verb is missing";
}

const CLI::App& verbAt(const CLI::App& program, const std::vector<std::string>& words) {
    const CLI::App* app = &program;
    for (const std::string& word : words) {
        const CLI::App* const verb = verbNamed(*app, word);
        if (!verb) refuse(noVerb(*app, word));
        app = verb;
    }
    return *app;
}

void writePages(const CLI::App& app, const std::string& folder) {
    if (!app.get_parent() || visibleVerbs(app).empty()) {
        writeWholeFile(folder + "/" + fullName(app, '-') + ".1", manPage(app), {Existing_File::Replace, {}});
    }
    for (const CLI::App* verb : visibleVerbs(app))
        writePages(*verb, folder);
}

int end(const CLI::App& program, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0 && reasonOfRest(program).empty()) {
        const bool isVersion = dynamic_cast<const CLI::CallForVersion*>(&error);
        printText(isVersion ? error.what() + std::string("\n") : helpText(deepest(program)));
        return 0;
    }
    std::cerr << program.get_name() << ": " << harmless(reasonOf(program, error)) << "; see --help\n";
    return 1;
}

}  // namespace

std::shared_ptr<CLI::App> makeProgram(const std::string& name, const std::string& version, const Page& page) {
    auto program = std::make_shared<Verb_App>(name, page);
    program->set_version_flag("--version", name + " " + version, "Tell the version.");
    return program;
}

CLI::App& addVerb(CLI::App& parent, const std::string& name, const Page& page, std::function<void()> chosen) {
    parent.require_subcommand(1);
    CLI::App& verb = *parent.add_subcommand(std::make_shared<Verb_App>(name, page));
    if (chosen) verb.callback(std::move(chosen));
    return verb;
}

void hide(CLI::App& verb) { verb.group(""); }

void addDocumentVerbs(CLI::App& program) {
    struct Given {
        std::vector<std::string> words;
        std::string folder;
    };
    const auto given = std::make_shared<Given>();
    const auto verb = [&program, given]() -> const CLI::App& { return verbAt(program, given->words); };
    CLI::App& help = addVerb(program, "help", {"Show the help of a verb"}, [verb] { throw Answer{helpText(verb())}; });
    CLI::App& man = addVerb(program, "man", {"Print the manual page"}, [&program, given, verb] {
        if (given->folder.empty()) throw Answer{manPage(verb())};
        writePages(program, given->folder);
        throw Answer{};
    });
    CLI::App& completion = addVerb(program, "completion", {"Print the bash completion"},
                                   [&program] { throw Answer{completionScript(program.get_name())}; });
    for (CLI::App* one : {&help, &man})
        addArgument(*one, "VERB", given->words, "The verb; without it the program.", Need::May);
    addText(man, "--all", "DIR", given->folder, "Write every page into this folder.");
    hide(man);
    hide(completion);
}

void addDocumentFlags(CLI::App& program) {
    program.add_flag_callback(
        "--man", [&program] { throw Answer{manPage(program)}; }, "Print the manual page.");
    program.add_flag_callback(
        "--completion", [&program] { throw Answer{completionScript(program.get_name())}; },
        "Print the bash completion.");
}

std::optional<int> parseCommandLine(CLI::App& program, int argc, const char* const* argv, const Word_Source& words) {
    try {
        if (argc == 3 && argv[1] == std::string("--complete")) throw Answer{completionAnswer(program, argv[2], words)};
        program.parse(argc, argv);
    } catch (const Answer& answer) {
        printText(answer.text);
        return 0;
    } catch (const CLI::ParseError& error) {
        return end(program, error);
    }
    return std::nullopt;
}

}  // namespace vornex
