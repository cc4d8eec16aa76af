// The manual pages, written from the verb table.
#include "Common_Options.h"
#include "Help.h"

namespace vornex {

namespace {

const char ExitCodes[] =
    ".SH EXIT STATUS\n"
    ".TP\n0\nDone.\n.TP\n1\nA mistake in the options or arguments.\n"
    ".TP\n2\nA mistake in a label or in the label file.\n.TP\n3\nNo connection to the controller.\n"
    ".TP\n4\nThe driver gave up on a request; its result code is told in words.\n"
    ".TP\n5\nWhat was read back, or replayed, is not what was expected.\n"
    ".TP\n6\nThe driver library cannot be used.\n.TP\n130\nInterrupted by Ctrl-C.\n";

// Text as roff takes it: no line may begin with a dot or quote, a backslash and a hyphen are escaped.
std::string roff(const std::string& text) {
    std::string result;
    for (char letter : text) {
        const bool lineStart = result.empty() || result.back() == '\n';
        if (lineStart && (letter == '.' || letter == '\'')) result += "\\&";
        if (letter == '\\')
            result += "\\e";
        else if (letter == '-')
            result += "\\-";
        else
            result += letter;
    }
    return result;
}

std::string heading(const std::string& page, const std::string& summary) {
    return ".TH " + page + " 1 \"\" \"" + versionText() + "\" \"User commands\"\n.SH NAME\n" + roff(page) + " \\- " +
           roff(summary) + "\n";
}

std::string paragraphs(const std::string& text) {
    std::string result = roff(text);
    for (std::size_t at = 0; (at = result.find("\n\n", at)) != std::string::npos; at += 4) {
        result.replace(at, 2, "\n.PP\n");
    }
    return result + "\n";
}

std::string optionList(const std::vector<Option>& options, bool arguments) {
    std::string text;
    for (const Option& option : options) {
        if (option.isArgument() != arguments) continue;
        text += ".TP\n\\fB" + roff(option.names) + "\\fR" +
                (option.value.empty() ? "" : " \\fI" + roff(option.value) + "\\fR") + "\n" + roff(option.help) + "\n";
    }
    return text;
}

std::string synopsis(const Verb& verb) {
    std::string text = ".SH SYNOPSIS\n\\fBvornex\\-label " + roff(verb.name) + "\\fR [\\fIoptions\\fR]";
    for (const Option& option : verb.options) {
        if (!option.isArgument()) continue;
        const bool many = std::holds_alternative<std::vector<std::string>*>(option.target);
        const std::string name = "\\fI" + roff(option.names) + "\\fR" + (many ? " ..." : "");
        text += option.required ? " " + name : " [" + name + "]";
    }
    return text + "\n";
}

std::string commonSection() {
    Common_Options unused;
    return ".SH COMMON OPTIONS\n" + optionList(commonOptions(unused), false);
}

}  // namespace

std::string pageName(const Verb& verb) {
    std::string name = "vornex-label-" + verb.name;
    for (char& letter : name)
        letter = letter == ' ' ? '-' : letter;
    return name;
}

std::string manPage(const std::vector<Verb>& verbs) {
    std::string text = heading("vornex-label", "labels of a controller, read, written and watched through the driver");
    text +=
        ".SH SYNOPSIS\n\\fBvornex\\-label\\fR \\fIverb\\fR [\\fIoptions\\fR] [\\fIarguments\\fR]\n.SH DESCRIPTION\n";
    text += roff(
        "Loads the driver library as a panel does, resolves labels through it and talks to one controller.\n"
        "Data goes to standard output as text, JSON lines or CSV, messages go to standard error.\n");
    text += ".SH VERBS\n";
    for (const Verb& verb : verbs) {
        if (!verb.hidden) text += ".TP\n\\fB" + roff(verb.name) + "\\fR\n" + roff(verb.summary) + ".\n";
    }
    text += commonSection() + ExitCodes + ".SH SEE ALSO\n";
    std::string others;
    for (const Verb& verb : verbs) {
        if (verb.hidden) continue;
        others += (others.empty() ? "" : ",\n") + std::string("\\fB") + roff(pageName(verb)) + "\\fR(1)";
    }
    return text + others + "\n";
}

std::string verbManPage(const Verb& verb) {
    std::string text = heading(pageName(verb), verb.summary) + synopsis(verb);
    text += ".SH DESCRIPTION\n" + paragraphs(verb.description.empty() ? verb.summary + "." : verb.description);
    const std::string arguments = optionList(verb.options, true);
    const std::string options = optionList(verb.options, false);
    if (!arguments.empty()) text += ".SH ARGUMENTS\n" + arguments;
    if (!options.empty()) text += ".SH OPTIONS\n" + options;
    text += commonSection();
    if (!verb.examples.empty()) text += ".SH EXAMPLES\n";
    for (const Example& example : verb.examples) {
        text += ".TP\n\\fBvornex\\-label " + roff(example.command) + "\\fR\n" + roff(example.meaning) + "\n";
    }
    return text + ExitCodes + ".SH SEE ALSO\n\\fBvornex\\-label\\fR(1)\n";
}

}  // namespace vornex
