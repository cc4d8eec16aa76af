#include "Cli.h"

#include <iostream>

#include <CLI/CLI.hpp>

#include "Help.h"
#include "Tool.h"
#include "Value.h"
#include "Verb_Table.h"

namespace vornex {

namespace {

template <class Type>
CLI::Option* bindTo(CLI::App& app, const std::string& names, const std::string& help, Type* target) {
    return app.add_option(names, *target, help);
}

CLI::Option* bindTo(CLI::App& app, const std::string& names, const std::string& help, bool* target) {
    return app.add_flag(names, *target, help);
}

CLI::Option* bindTo(CLI::App& app, const std::string& names, const std::string& help,
                    std::vector<std::string>* target) {
    CLI::Option* option = app.add_option(names, *target, help);
    // An option takes one value each time it is given, an argument as many as follow.
    if (names.front() == '-') option->expected(1)->take_all();
    return option;
}

// CLI11's own Range puts its types and decimals into every line of the help and every message.
CLI::Validator within(double low, double high) {
    const auto check = [low, high](std::string& text) {
        double number = 0;
        const bool fits = CLI::detail::lexical_cast(text, number) && number >= low && number <= high;
        return fits ? std::string()
                    : "'" + text + "' is no number from " + shortestNumber(low) + " to " + shortestNumber(high);
    };
    return CLI::Validator(check, "");
}

void addOption(CLI::App& app, const Option& option, const std::string& group) {
    CLI::Option* added =
        std::visit([&](auto* target) { return bindTo(app, option.names, option.help, target); }, option.target);
    if (!option.value.empty()) added->type_name(option.value);
    if (option.isArgument()) added->type_name("");
    if (option.required) added->required();
    if (!option.choices.empty()) added->check(CLI::IsMember(option.choices));
    if (option.low && option.high) added->check(within(*option.low, *option.high));
    if (!group.empty()) added->group(group);
}

// The subcommand for a name of one word or two; a group is made when its first verb comes.
CLI::App& subcommand(CLI::App& app, const Verb& verb) {
    const std::size_t space = verb.name.find(' ');
    if (space == std::string::npos) return *app.add_subcommand(verb.name, verb.summary);
    const std::string group = verb.name.substr(0, space);
    const auto found = app.get_subcommands([&group](CLI::App* other) { return other->get_name() == group; });
    CLI::App* const parent =
        found.empty() ? app.add_subcommand(group, "Work on label files")->require_subcommand(1) : found.front();
    return *parent->add_subcommand(verb.name.substr(space + 1), verb.summary);
}

void addVerb(CLI::App& app, const Verb& verb, const std::vector<Option>& common, const Verb*& chosen) {
    CLI::App& command = subcommand(app, verb);
    if (verb.hidden) command.group("");
    // the summary heads the help and stands in the list of verbs, where a description would be too long
    command.footer((verb.description.empty() ? "" : verb.description + "\n\n") + exampleText(verb));
    for (const Option& option : verb.options)
        addOption(command, option, "");
    for (const Option& option : common)
        addOption(command, option, "Common options");
    command.callback([&chosen, &verb] { chosen = &verb; });
}

int runVerb(const Verb& verb, const Common_Options& options) {
    Tool tool(options);
    try {
        return static_cast<int>(verb.run(tool));
    } catch (const Tool_Error& error) {
        tool.out.error(error.what());
        return static_cast<int>(error.code);
    } catch (const File_Error& mistake) {
        tool.out.error(mistake.what());
        return static_cast<int>(Exit_Code::Label);
    }
}

}  // namespace

int runTool(int argc, char** argv) {
    CLI::App app("Reads, writes and watches the labels of a controller through the driver, as a panel does.",
                 "vornex-label");
    app.set_version_flag("--version", versionText());
    app.require_subcommand(1);
    app.footer("Every verb has its own --help with examples.");

    Common_Options options;
    const std::vector<Option> common = commonOptions(options);
    const std::vector<Verb> verbs = allVerbs();
    const Verb* chosen = nullptr;
    for (const Option& option : common)
        addOption(app, option, "Common options");
    for (const Verb& verb : verbs)
        addVerb(app, verb, common, chosen);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error, std::cout, std::cerr);  // help, version
        std::cerr << "vornex-label: " << error.what() << "; see --help\n";
        return static_cast<int>(Exit_Code::Usage);
    }
    return runVerb(*chosen, options);
}

}  // namespace vornex
