// Completion: bash hands over the line, the program knows what may stand at its end.
#include <algorithm>
#include <cstdlib>

#include "cli/Verb_App.h"

namespace vornex {

namespace {

// Splits a line as a shell does, quotes and backslashes removed. The last word is the one at the cursor, "" behind a
// blank.
std::vector<std::string> shellWords(const std::string& line) {
    std::vector<std::string> words(1);
    char quote = '\0';
    bool isBegun = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char letter = line[i];
        const bool isBlank = letter == ' ' || letter == '\t';
        if (quote != '\0' && letter == quote) {
            quote = '\0';
        } else if (letter == '\\' && quote != '\'') {
            if (++i < line.size()) words.back() += line[i];
        } else if (quote == '\0' && (letter == '\'' || letter == '"')) {
            quote = letter;
        } else if (quote == '\0' && isBlank) {
            if (isBegun) words.emplace_back();
        } else {
            words.back() += letter;
        }
        isBegun = quote != '\0' || !isBlank;
    }
    return words;
}

std::string atHome(const std::string& path) {
    const char* const home = std::getenv("HOME");
    return home && path.compare(0, 2, "~/") == 0 ? home + path.substr(1) : path;
}

bool isOption(const std::string& word) { return word.size() > 1 && word[0] == '-'; }
bool takesValue(const CLI::Option* option) { return option && option->get_items_expected_min() > 0; }
bool hasWord(const std::string& text, const char* word) { return text.find(word) != std::string::npos; }

// What the words before the cursor have settled.
class Settled_Line {
public:
    explicit Settled_Line(const CLI::App& program) : verb(&program) {}

    void add(const std::string& word) {
        if (waiting) {
            give(waiting, word);
            waiting = nullptr;
        } else if (isOption(word)) {
            addOption(word);
        } else if (const CLI::App* next = verbNamed(*verb, word)) {
            verb = next;
        } else {
            ++arguments;
        }
    }

    // The option of "--name", "--name=VALUE" or "-nVALUE", null when there is none.
    const CLI::Option* optionOf(const std::string& word) const {
        const bool isLong = word[1] == '-';
        return verb->get_option_no_throw(word.substr(0, isLong ? word.find('=') : 2));
    }

    // The argument at the cursor; the last one stands for all that follow.
    const CLI::Option* argument() const {
        const auto all = verb->get_options([](const CLI::Option* option) { return option->get_positional(); });
        if (all.empty()) return nullptr;
        if (arguments < all.size()) return all[arguments];
        return all.back()->get_items_expected_max() > 1 ? all.back() : nullptr;
    }

    const CLI::App* verb;
    const CLI::Option* waiting = nullptr;  // for its value, the word at the cursor
    std::map<std::string, std::string> given;

private:
    void give(const CLI::Option* option, const std::string& value) { given[option->get_name()] = atHome(value); }

    void addOption(const std::string& word) {
        const CLI::Option* const option = optionOf(word);
        if (!takesValue(option)) return;
        const std::size_t begin = word[1] == '-' ? std::min(word.find('='), word.size() - 1) + 1 : 2;
        if (begin < word.size())
            give(option, word.substr(begin));
        else
            waiting = option;
    }

    std::size_t arguments = 0;
};

struct Answer_Lines {
    std::string options;  // of compopt
    std::vector<std::string> words;
};

// Quoting, closing quotes and the / of folders are left to bash.
Answer_Lines valuesOf(const CLI::Option* option, const CLI::App& program, const Word_Request& request,
                      const Word_Source& source) {
    if (!option) return {};
    const std::string& value = request.value;
    if (const auto offered = source ? source(request) : std::nullopt) {
        return {offered->isWhole ? "filenames" : "filenames nospace", offered->words};
    }
    if (value == "VERB") return {"", verbNames(program)};
    if (hasWord(value, "DIR")) return {"dirnames", {}};
    if (option->get_positional() || hasWord(value, "FILE") || hasWord(value, "PATH")) return {"default", {}};
    return {"", hasWord(value, "|") ? CLI::detail::split(value, '|') : std::vector<std::string>()};
}

Answer_Lines answerFor(const CLI::App& program, const Settled_Line& line, std::string& beginning,
                       const Word_Source& source) {
    const CLI::Option* option = line.waiting;
    if (!option && isOption(beginning)) {
        const std::size_t equals = beginning.find('=');
        if (equals == std::string::npos) return {"", optionNames(*line.verb)};
        option = line.optionOf(beginning);
        beginning.erase(0, equals + 1);
    } else if (!option) {
        if (!visibleVerbs(*line.verb).empty()) return {"", verbNames(*line.verb)};
        option = line.argument();
    }
    if (!option) return {};
    const std::string value = option->get_positional() ? option->get_name(true) : option->get_type_name();
    return valuesOf(option, program, {value, beginning, line.given}, source);
}

}  // namespace

std::string completionAnswer(const CLI::App& program, const std::string& line, const Word_Source& source) {
    const std::vector<std::string> words = shellWords(line);
    std::string beginning = words.back();
    Settled_Line settled(program);
    for (std::size_t i = 1; i + 1 < words.size(); ++i)
        settled.add(words[i]);
    const Answer_Lines answer = answerFor(program, settled, beginning, source);
    std::string text = answer.options + "\n";
    for (const std::string& word : answer.words) {
        if (word.compare(0, beginning.size(), beginning) == 0) text += word + "\n";
    }
    return text;
}

std::string completionScript(const std::string& program) {
    std::string name = "_" + program;
    std::replace(name.begin(), name.end(), '-', '_');
    return "# bash completion for " + program + ", written by it\n" + name +
           "() {\n"
           "    local IFS=' ' answer option\n"
           "    mapfile -t answer < <(\"${1/#\\~/$HOME}\" --complete \"${COMP_LINE:0:COMP_POINT}\" </dev/null "
           "2>/dev/null)\n"
           "    COMPREPLY=(\"${answer[@]:1}\")\n"
           "    for option in ${answer[0]}; do compopt -o \"$option\"; done\n"
           "}\n"
           "complete -F " +
           name + " " + program + "\n";
}

}  // namespace vornex
