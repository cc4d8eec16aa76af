// What a verb is: data for the command line, the man page and the completion, and a function that does the work.
#ifndef VORNEX_LABEL_VERB_H
#define VORNEX_LABEL_VERB_H

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "Exit_Code.h"

namespace vornex {

class Tool;

// Where an option's value goes. A bool is a flag, a list takes the option or argument more than once.
using Option_Target = std::variant<bool*, int*, double*, std::string*, std::optional<int>*, std::optional<std::string>*,
                                   std::vector<std::string>*>;

// One option or argument. `names` is "-c,--count" for an option, "LABEL" for an argument.
struct Option {
    Option(std::string optionNames, std::string valueName, std::string helpText, Option_Target optionTarget)
        : names(std::move(optionNames)), value(std::move(valueName)), help(std::move(helpText)), target(optionTarget) {}

    Option& must() {
        required = true;
        return *this;
    }
    Option& between(double lowest, double highest) {
        low = lowest;
        high = highest;
        return *this;
    }
    Option& oneOf(std::vector<std::string> words) {
        choices = std::move(words);
        return *this;
    }
    bool isArgument() const { return names.front() != '-'; }
    bool isFlag() const { return std::holds_alternative<bool*>(target); }

    std::string names;
    std::string value;  // what stands for the value in the help, empty for flags and arguments
    std::string help;
    Option_Target target;
    bool required = false;
    std::vector<std::string> choices;
    std::optional<double> low;
    std::optional<double> high;
};

struct Example {
    std::string command;  // without the tool's name
    std::string meaning;
};

// To add a verb: write Verb_Name.cpp with a function `Verb nameVerb()` that fills this record, declare the function
// in Verb_Table.h, and list both in Verb_Table.cpp and CMakeLists.txt. Help, man page and completion follow.
struct Verb {
    std::string name;         // "read"; two words ("labels lint") make a group of verbs
    std::string summary;      // one line, no full stop
    std::string description;  // paragraphs for help and man page
    std::vector<Example> examples;
    std::vector<Option> options;  // the targets must live as long as `run`
    std::function<Exit_Code(Tool&)> run;
    bool hidden = false;
};

}  // namespace vornex

#endif
