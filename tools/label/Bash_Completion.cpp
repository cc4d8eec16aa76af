// The bash completion, written from the verb table.
#include <sstream>

#include "Common_Options.h"
#include "Help.h"

namespace vornex {

namespace {

std::vector<std::string> namesOf(const Option& option) {
    std::vector<std::string> names;
    std::istringstream list(option.names);
    for (std::string name; std::getline(list, name, ',');)
        names.push_back(name);
    return names;
}

std::string optionWords(const std::vector<Option>& options) {
    std::string words;
    for (const Option& option : options) {
        if (option.isArgument()) continue;
        for (const std::string& name : namesOf(option))
            words += " " + name;
    }
    return words;
}

// A case branch for each option whose value can be completed: a choice of words or a file.
std::string valueCases(const std::vector<Option>& options) {
    std::string cases;
    for (const Option& option : options) {
        const bool file = option.value == "FILE";
        if (option.isArgument() || (option.choices.empty() && !file)) continue;
        std::string pattern, words;
        for (const std::string& name : namesOf(option))
            pattern += (pattern.empty() ? "" : "|") + name;
        for (const std::string& word : option.choices)
            words += (words.empty() ? "" : " ") + word;
        cases += "        " + pattern + ") COMPREPLY=($(compgen " + (file ? "-f" : "-W '" + words + "'") +
                 " -- \"$current\")); return ;;\n";
    }
    return cases;
}

}  // namespace

std::string bashCompletion(const std::vector<Verb>& verbs) {
    Common_Options unused;
    const std::vector<Option> common = commonOptions(unused);
    std::string names, verbCases, values = valueCases(common);
    for (const Verb& verb : verbs) {
        if (verb.hidden) continue;
        const std::string first = verb.name.substr(0, verb.name.find(' '));
        names += " " + first;
        verbCases += "        " + first + ") words+='" + optionWords(verb.options) + "' ;;\n";
        values += valueCases(verb.options);
    }
    return "# bash completion for vornex-label; written by vornex-label completion\n"
           "_vornex_label() {\n"
           "    local current=\"${COMP_WORDS[COMP_CWORD]}\" previous=\"${COMP_WORDS[COMP_CWORD-1]}\"\n"
           "    local verb=\"${COMP_WORDS[1]}\" words='" +
           optionWords(common) +
           "'\n"
           "    COMPREPLY=()\n"
           "    if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
           "        COMPREPLY=($(compgen -W '--help --version" +
           names +
           "' -- \"$current\")); return\n"
           "    fi\n"
           "    case \"$previous\" in\n" +
           values +
           "    esac\n"
           "    case \"$verb\" in\n" +
           verbCases +
           "    esac\n"
           "    case \"$current\" in\n"
           "        -*) COMPREPLY=($(compgen -W \"$words\" -- \"$current\")) ;;\n"
           "        *) COMPREPLY=($(compgen -f -- \"$current\")) ;;\n"
           "    esac\n"
           "}\n"
           "complete -F _vornex_label vornex-label\n";
}

}  // namespace vornex
