// vornex-label: from the command line to the verb and the exit code.
#include <csignal>
#include <filesystem>
#include <set>
#include <stdexcept>

#include "host/Host_Error.h"
#include "label/Several.h"
#include "label/Tool.h"
#include "label/verbs/Verb_Table.h"
#include "labels/Label_Continuation.h"
#include "labels/Label_Type.h"

namespace vornex {

namespace {

const char ExitCodes[] =
    "0    done\n"
    "1    a mistake in the options or arguments\n"
    "2    a mistake in a label or in the label file\n"
    "3    no connection to the controller\n"
    "4    the driver gave up on a request; its result code is told in words\n"
    "5    what was read back, compared or replayed is not what was expected\n"
    "6    the driver library cannot be used\n"
    "8    an output could not be written\n"
    "130  interrupted by Ctrl-C\n"
    "141  nobody reads the output any more\n";

const char DefaultsHelp[] =
    "What the command line leaves out is taken from VORNEX_LABELS and\n"
    "VORNEX_TARGET, then from vornex.toml in the present folder or one above it,\n"
    "or else in $XDG_CONFIG_HOME/vornex or ~/.config/vornex:\n"
    "  labels = \"plant.json\"\n"
    "  target = \"press3\"\n"
    "  [controllers.press3]\n"
    "  target = \"10.0.0.3:2000\"\n"
    "  timeout = 3000\n"
    "A section may set labels, settle, retries and max-bytes too. The verb config\n"
    "tells what counts.\n";

const Page ToolPage = {
    "Labels of a controller, read, written and watched through the driver",
    "Loads the driver library as a panel does, resolves labels through it and talks to one controller. Data goes to "
    "standard output as text, JSON lines or CSV, messages go to standard error. Every verb has its own --help with "
    "examples.",
    {},
    {{"Defaults", DefaultsHelp}, {"Exit codes", ExitCodes}}};

// Scripts rely on the exit codes, other hosts do not know them.
Exit_Code exitCodeOf(Host_Error::Kind kind) {
    switch (kind) {
        case Host_Error::Kind::Settings: return Exit_Code::Usage;
        case Host_Error::Kind::Label: return Exit_Code::Label;
        case Host_Error::Kind::NoConnection: return Exit_Code::NoConnection;
        case Host_Error::Kind::Library: return Exit_Code::Library;
        case Host_Error::Kind::Interrupted: break;
    }
    return Exit_Code::Interrupted;
}

Exit_Code exitCodeOf(Output_Error::Kind kind) {
    switch (kind) {
        case Output_Error::Kind::Exists:
        case Output_Error::Kind::Unusable: return Exit_Code::Usage;
        case Output_Error::Kind::ReaderGone: return Exit_Code::ReaderGone;
        case Output_Error::Kind::Failed: break;
    }
    return Exit_Code::Output;
}

Exit_Code tellAndEnd(Tool& tool, const std::string& words, Exit_Code code) {
    if (code != Exit_Code::ReaderGone) tool.out.error(words);
    return code;
}

Exit_Code guarded(Tool& tool, const std::function<Exit_Code()>& work) {
    try {
        return work();
    } catch (const Tool_Error& error) {
        return tellAndEnd(tool, error.what(), error.code);
    } catch (const Host_Error& error) {
        return tellAndEnd(tool, error.what(), exitCodeOf(error.kind));
    } catch (const Output_Error& error) {
        const bool exists = error.kind == Output_Error::Kind::Exists;
        const char* const ways = exists ? "; --append continues it, --force replaces it" : "";
        return tellAndEnd(tool, std::string(error.what()) + ways, exitCodeOf(error.kind));
    } catch (const std::invalid_argument& mistake) {
        return tellAndEnd(tool, mistake.what(), Exit_Code::Usage);
    } catch (const File_Error& mistake) {
        return tellAndEnd(tool, mistake.what(), Exit_Code::Label);
    }
}

// What went wrong first decides the exit code; an output that is not whole is never "ok".
Exit_Code runChosen(const Verbs& verbs, Tool& tool, char** argv) {
    const auto several = verbs.options.settings.find("controllers");
    if (several == verbs.options.settings.end() || (verbs.chosenUses & UsesLink) != UsesLink) return verbs.chosen(tool);
    if (verbs.chosenUses & UsesSeveral) return runForEach(tool, controllersIn(several->second.value), argv);
    throw Tool_Error(Exit_Code::Usage,
                     "one controller at a time: '" + several->second.value + "' is for watch and stats");
}

int runVerb(const Verbs& verbs, char** argv) {
    Tool tool(verbs.options);
    if (verbs.options.settings.count("served")) endWithParent();
    Exit_Code code = guarded(tool, [&] { return runChosen(verbs, tool, argv); });
    const Exit_Code ended = guarded(tool, [&] {
        tool.out.finish();
        return tool.anOutputFailed() ? Exit_Code::Output : Exit_Code::Ok;
    });
    return static_cast<int>(code == Exit_Code::Ok ? ended : code);
}

// The label file that a run of the line would take; empty: none.
std::string labelFileOf(const Word_Request& request, const Defaults& defaults) {
    const auto given = [&request](const char* option) {
        const auto found = request.given.find(option);
        return found == request.given.end() ? std::string() : found->second;
    };
    std::string typed = given("--labels");
    if (!typed.empty()) return typed;
    const std::string target = given("--target");
    const std::string controller = target.empty() ? defaults.find("target").value_or(Setting()).value : target;
    return defaults.find("labels", controller).value_or(Setting()).value;
}

// The completion of types, of labels and of controllers' names. A file that cannot be read offers none: this is no
// place for messages.
std::optional<Offered_Words> ownWords(const Word_Request& request) {
    if (request.value == "TYPE") return Offered_Words{viewWords(), true};
    static const std::set<std::string> whole = {"LABEL", "GLOB", "ADDRESS"}, begun = {"ASSIGNMENT", "CONDITION"};
    const bool isTarget = request.value == "TARGET";
    if (!whole.count(request.value) && !begun.count(request.value) && !isTarget) return std::nullopt;
    Offered_Words offered;
    try {
        const Defaults defaults;
        for (const auto& [name, settings] : defaults.controllers())
            offered.words.push_back(name);
        if (isTarget) return offered;
        offered.words.clear();
        const std::string file = labelFileOf(request, defaults);
        std::error_code error;
        if (!std::filesystem::is_regular_file(file, error)) return offered;
        const Label_Continuation next = continueLabel(readLabelFile(file), request.beginning);
        offered.words = next.texts;
        offered.isWhole = next.isWhole && whole.count(request.value) > 0;
    } catch (const Settings_Error&) {
    } catch (const File_Error&) {
    }
    return offered;
}

void takeDefaults(Verbs& verbs, Output& out) {
    const Defaults defaults;
    for (const std::string& warning : defaults.warnings())
        out.warn(warning);
    verbs.options.settings = applyDefaults(*verbs.program, defaults, settingNames());
}

}  // namespace

Verbs::Verbs() : program(makeProgram("vornex-label", VORNEX_VERSION, ToolPage)) {
    addCommonOptions(*program, options, UsesLink | UsesInflux);
#define VORNEX_ADD_VERB(add) add(*this);
    VORNEX_VERBS(VORNEX_ADD_VERB)
#undef VORNEX_ADD_VERB
    addDocumentVerbs(*program);
}

CLI::App& Verbs::addTo(CLI::App& group, const std::string& name, const Page& page, unsigned uses, Run run) {
    CLI::App& verb = addVerb(group, name, page, [this, run, uses] {
        const bool isWrong = options.format == "influx" && !(uses & UsesInflux);
        if (isWrong) throw Tool_Error(Exit_Code::Usage, "-o influx is for values with times: watch");
        chosen = run;
        chosenUses = uses;
    });
    addCommonOptions(verb, options, uses);
    return verb;
}

// Everything that goes wrong has been told on standard error.
int runTool(int argc, char** argv) {
    Verbs verbs;
    std::optional<int> end;
    Tool before{Common_Options()};
    const Exit_Code code = guarded(before, [&] {
        end = parseCommandLine(*verbs.program, argc, argv, ownWords);
        if (!end) takeDefaults(verbs, before.out);
        return Exit_Code::Ok;
    });
    if (code != Exit_Code::Ok) return static_cast<int>(code);
    return end ? *end : runVerb(verbs, argv);
}

}  // namespace vornex

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a failed write, told or not by the one who writes
    return vornex::runTool(argc, argv);
}
