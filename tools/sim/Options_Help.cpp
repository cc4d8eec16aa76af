#include "Options_Help.h"

#include <vector>

#include <CLI/CLI.hpp>

#include "Control.h"
#include "Fault_Rules.h"
#include "Value_Motion.h"

namespace vornex::sim {

const char* const Purpose =
    "A controller to talk to: serves the memory that a label file describes over TCP, with faults on demand.";

namespace {

struct Section {
    const char* title;
    std::string text;  // lines shown as they are
};

const char* const PatternHelp =
    "The byte at every address is mix(address) XOR the generation's low 8 bits. mix, in 32-bit arithmetic:\n"
    "  m = address * 2654435761; m ^= m >> 15; m *= 2246822519; m ^= m >> 13; mix = m >> 24\n"
    "Each byte tells the generation it would be of; the bytes of one good answer all tell the same one, a foreign\n"
    "byte most likely another.\n"
    "read: every read answered shows the next generation, the first one 1. 250ms: the next one every 250 ms.\n"
    "fixed:N: always N. Writes are answered and counted but not stored: a stored byte would be foreign itself.\n";

const char* const FrameHelp =
    "An intact frame with a wrong check value, an unknown command or a senseless body is not answered: where the\n"
    "next one begins is known, and the client's time-out does the rest. A wrong start byte, a frame over --max-frame\n"
    "or one not complete in --frame-time closes the connection.\n";

const char* const ExitHelp = "0 ok  1 usage  2 label file  3 cannot listen  7 an --expect was not met\n";

const char* const ExampleHelp =
    "vornex-sim -l examples/plant.json -p 2000\n"
    "vornex-sim -l examples/plant.json -p 0 --fault 'drop@every=50' --fault 'delay(100,400)@p=0.1' --seed 7\n"
    "vornex-sim --pattern -p 0 --control - --expect 'writes>=3' -o json\n";

std::vector<Section> sections() {
    return {{"Motions (\"sim\" in the label file)", MotionHelp},
            {"Faults", faultHelp()},
            {"Pattern mode", PatternHelp},
            {"Control lines", ControlHelp},
            {"Bad frames", FrameHelp},
            {"Exit codes", ExitHelp},
            {"Examples", ExampleHelp}};
}

// Text as roff takes it: hyphens and backslashes escaped, no dot or quote at the beginning of a line.
std::string roff(const std::string& text) {
    std::string result;
    for (const char letter : text) {
        const bool atStart = result.empty() || result.back() == '\n';
        if (atStart && (letter == '.' || letter == '\'')) result += "\\&";
        if (letter == '\\' || letter == '-') result += '\\';
        result += letter == '\\' ? 'e' : letter;
    }
    return result;
}

}  // namespace

std::string helpFooter() {
    std::string text;
    for (const Section& section : sections()) {
        text += std::string(section.title) + ":\n  ";
        for (std::size_t i = 0; i < section.text.size(); ++i) {
            text += section.text[i];
            if (section.text[i] == '\n' && i + 1 < section.text.size()) text += "  ";
        }
        text += "\n";
    }
    return text;
}

std::string manPage(const CLI::App& app) {
    std::string text = ".TH vornex\\-sim 1 \"\" \"vornex\\-sim " VORNEX_VERSION "\" \"User commands\"\n";
    text += ".SH NAME\nvornex\\-sim \\- a simulated controller with faults on demand\n";
    text +=
        ".SH SYNOPSIS\n\\fBvornex\\-sim\\fR [\\fIoptions\\fR]\n.SH DESCRIPTION\n" + roff(Purpose) + "\n.SH OPTIONS\n";
    for (const CLI::Option* option : app.get_options()) {
        text += ".TP\n\\fB" + roff(option->get_name(false, true)) + "\\fR";
        if (option->get_expected_max() > 0) text += " \\fI" + roff(option->get_type_name()) + "\\fR";
        text += "\n" + roff(option->get_description()) + "\n";
    }
    for (const Section& section : sections()) {
        text += ".SH \"" + roff(section.title) + "\"\n.nf\n" + roff(section.text) + ".fi\n";
    }
    return text;
}

std::string bashCompletion(const CLI::App& app) {
    std::string words;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames())
            words += " --" + name;
    }
    return "# bash completion for vornex-sim; written by vornex-sim --completion\n"
           "_vornex_sim() {\n"
           "    local current=\"${COMP_WORDS[COMP_CWORD]}\" previous=\"${COMP_WORDS[COMP_CWORD-1]}\"\n"
           "    case \"$previous\" in\n"
           "        -l|--labels|--log|--control) COMPREPLY=($(compgen -f -- \"$current\")); return ;;\n"
           "        -o|--output) COMPREPLY=($(compgen -W 'text json' -- \"$current\")); return ;;\n"
           "    esac\n"
           "    COMPREPLY=($(compgen -W '" +
           words.substr(1) +
           "' -- \"$current\"))\n"
           "}\n"
           "complete -F _vornex_sim vornex-sim\n";
}

}  // namespace vornex::sim
