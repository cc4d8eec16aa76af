// Options and arguments of a program or verb. Names with hyphens, "-c,--count", make an option, "LABEL" an argument.
// `value` is what stands for the value in help and manual page; FILE, PATH and DIR are completed as such.
// Targets must live until the command line is parsed; what they hold before is told as the default.
#ifndef VORNEX_CLI_OPTIONS_H
#define VORNEX_CLI_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vornex {

// The title in the help under which the options that follow stand; at first "Options".
void startGroup(CLI::App& app, const std::string& title);

void addFlag(CLI::App& app, const std::string& names, bool& target, const std::string& help);
void addText(CLI::App& app, const std::string& names, const std::string& value, std::string& target,
             const std::string& help);
// May be given several times, each time with one value.
void addTexts(CLI::App& app, const std::string& names, const std::string& value, std::vector<std::string>& target,
              const std::string& help);
void addChoice(CLI::App& app, const std::string& names, const std::vector<std::string>& words, std::string& target,
               const std::string& help);
// The same for more words than a line of help holds: `value` stands for them, and the caller's word source offers them.
void addWord(CLI::App& app, const std::string& names, const std::string& value, const std::vector<std::string>& words,
             std::string& target, const std::string& help);
// The value may be left out: the option alone then means `alone`.
void addTextOr(CLI::App& app, const std::string& names, const std::string& value, const std::string& alone,
               std::string& target, const std::string& help);

enum class Need { Must, May };
void addArgument(CLI::App& app, const std::string& name, std::string& target, const std::string& help, Need need);
// As many as the user gives.
void addArgument(CLI::App& app, const std::string& name, std::vector<std::string>& target, const std::string& help,
                 Need need);

template <class Target>
struct Number_In {
    using Type = Target;
};
template <class Number>
struct Number_In<std::optional<Number>> {
    using Type = Number;
};
template <class Target>
using Number_Of = typename Number_In<Target>::Type;
// A number from `low` to `high`. Target: int, an unsigned type, double, or an optional int or unsigned type.
template <class Target>
void addNumber(CLI::App& app, const std::string& names, const std::string& value, Target& target, Number_Of<Target> low,
               Number_Of<Target> high, const std::string& help);

// The label file, -l, and --strict, which readLabelFile() takes.
void addLabelFile(CLI::App& app, std::string& file, bool& isStrict, const std::string& help = "The label file.");

// A duration in seconds, given as 90, 90s, 5min, 8h or 2d.
void addDuration(CLI::App& app, const std::string& names, double& seconds, double low, double high,
                 const std::string& help);

}  // namespace vornex

#endif
