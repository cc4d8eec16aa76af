#include "cli/Options.h"

#include <stdexcept>

#include <CLI/CLI.hpp>

#include "text/Number.h"
#include "text/Time_Text.h"

namespace vornex {

namespace {

double numberWithin(const std::string& text, double low, double high) { return realNumber(text, low, high); }
template <class Integer>
Integer numberWithin(const std::string& text, Integer low, Integer high) {
    return wholeNumber(text, low, high);
}

std::string shown(double number) { return shortestNumber(number); }
template <class Integer>
std::string shown(Integer number) {
    return std::to_string(number);
}
template <class Number>
std::string shown(const std::optional<Number>& number) {
    return number ? shown(*number) : "";
}

// Limits that only keep a number in its type are told to nobody but who breaks them.
const double TellingLimit = 1e9;

std::string remark(const std::string& range, const std::string& standard) {
    if (range.empty() && standard.empty()) return "";
    const std::string comma = range.empty() || standard.empty() ? "" : ", ";
    return " [" + range + comma + (standard.empty() ? "" : "default " + standard) + "]";
}

}  // namespace

void startGroup(CLI::App& app, const std::string& title) { app.option_defaults()->group(title); }

void addFlag(CLI::App& app, const std::string& names, bool& target, const std::string& help) {
    app.add_flag(names, target, help);
}

void addText(CLI::App& app, const std::string& names, const std::string& value, std::string& target,
             const std::string& help) {
    app.add_option(names, target, help + remark("", target))->type_name(value);
}

void addTexts(CLI::App& app, const std::string& names, const std::string& value, std::vector<std::string>& target,
              const std::string& help) {
    // Added to what the same option brought in front of the verb.
    const auto take = [&target](const CLI::results_t& given) {
        target.insert(target.end(), given.begin(), given.end());
        return true;
    };
    app.add_option(names, take, help)->type_name(value)->expected(1)->take_all();
}

void addTextOr(CLI::App& app, const std::string& names, const std::string& value, const std::string& alone,
               std::string& target, const std::string& help) {
    app.add_option(names, target, help)->type_name(value)->expected(0, 1)->default_str(alone);
}

void addChoice(CLI::App& app, const std::string& names, const std::vector<std::string>& words, std::string& target,
               const std::string& help) {
    addWord(app, names, CLI::detail::join(words, "|"), words, target, help);
}

void addWord(CLI::App& app, const std::string& names, const std::string& value, const std::vector<std::string>& words,
             std::string& target, const std::string& help) {
    app.add_option(names, target, help + remark("", target))
        ->type_name(value)
        ->check(CLI::IsMember(words).description(""));
}

void addArgument(CLI::App& app, const std::string& name, std::string& target, const std::string& help, Need need) {
    app.add_option(name, target, help)->type_name("")->required(need == Need::Must);
}

void addArgument(CLI::App& app, const std::string& name, std::vector<std::string>& target, const std::string& help,
                 Need need) {
    app.add_option(name, target, help)->type_name("")->required(need == Need::Must);
}

template <class Target>
void addNumber(CLI::App& app, const std::string& names, const std::string& value, Target& target, Number_Of<Target> low,
               Number_Of<Target> high, const std::string& help) {
    // comes first, and CLI11 puts the option's name before the reason
    const auto check = [low, high](const std::string& text) {
        try {
            return numberWithin(text, low, high), std::string();
        } catch (const std::invalid_argument& reason) {
            return std::string(reason.what());
        }
    };
    const auto take = [&target, low, high](const CLI::results_t& given) {
        target = numberWithin(given.back(), low, high);
        return true;
    };
    const std::string range = static_cast<double>(high) < TellingLimit ? shown(low) + " to " + shown(high) : "";
    app.add_option(names, take, help + remark(range, shown(target)))->type_name(value)->check(check);
}

void addDuration(CLI::App& app, const std::string& names, double& seconds, double low, double high,
                 const std::string& help) {
    const auto check = [low, high](const std::string& text) {
        try {
            return realNumber(shortestNumber(secondsOf(text)), low, high), std::string();
        } catch (const std::invalid_argument& reason) {
            return std::string(reason.what());
        }
    };
    const auto take = [&seconds](const CLI::results_t& given) {
        seconds = secondsOf(given.back());
        return true;
    };
    app.add_option(names, take, help + remark("", shown(seconds)))->type_name("TIME")->check(check);
}

void addLabelFile(CLI::App& app, std::string& file, bool& isStrict, const std::string& help) {
    addText(app, "-l,--labels", "FILE", file, help);
    addFlag(app, "--strict", isStrict, "What is doubtful in it is an error: unknown keys and columns.");
}

template <class Target>
using Add_Number = void(CLI::App&, const std::string&, const std::string&, Target&, Number_Of<Target>,
                        Number_Of<Target>, const std::string&);
template Add_Number<int> addNumber<int>;
template Add_Number<unsigned> addNumber<unsigned>;
template Add_Number<unsigned long> addNumber<unsigned long>;
template Add_Number<unsigned long long> addNumber<unsigned long long>;
template Add_Number<double> addNumber<double>;
template Add_Number<std::optional<int>> addNumber<std::optional<int>>;
template Add_Number<std::optional<unsigned short>> addNumber<std::optional<unsigned short>>;
template Add_Number<std::optional<unsigned long>> addNumber<std::optional<unsigned long>>;
template Add_Number<std::optional<unsigned long long>> addNumber<std::optional<unsigned long long>>;

}  // namespace vornex
