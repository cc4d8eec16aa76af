// Help and manual page, both written from the same rows.
#include <algorithm>
#include <sstream>

#include "cli/Verb_App.h"

namespace vornex {

namespace {

const std::size_t LineWidth = 80;
const std::size_t HelpColumn = 28;

struct Row {
    std::string name;   // "-c,--count", "LABEL...", "labels lint"
    std::string value;  // "N"; empty for flags, arguments and verbs
    std::string text;
};

struct Block {
    std::string title;
    std::vector<Row> rows;
};

const CLI::App& programOf(const CLI::App& app) { return app.get_parent() ? programOf(*app.get_parent()) : app; }

Page pageOf(const CLI::App& app) {
    const auto* const verb = dynamic_cast<const Verb_App*>(&app);
    return verb ? verb->page : Page{app.get_description()};
}

Row rowOf(const CLI::Option& option) {
    const bool many = option.get_items_expected_max() > 1;
    if (option.get_positional()) return {option.get_name(true) + (many ? "..." : ""), "", option.get_description()};
    std::string value = option.get_items_expected_max() > 0 ? option.get_type_name() : "";
    if (!value.empty() && option.get_items_expected_min() == 0) value = "[" + value + "]";
    return {option.get_name(false, true), value, option.get_description()};
}

// The verbs that can be run.
void addVerbRows(const CLI::App& app, const std::string& prefix, std::vector<Row>& rows) {
    for (const CLI::App* verb : visibleVerbs(app)) {
        if (visibleVerbs(*verb).empty())
            rows.push_back({prefix + verb->get_name(), "", pageOf(*verb).summary + "."});
        else
            addVerbRows(*verb, prefix + verb->get_name() + " ", rows);
    }
}

std::vector<Block> blocksOf(const CLI::App& app) {
    std::vector<Block> blocks = {{"Verbs", {}}, {"Arguments", {}}};
    addVerbRows(app, "", blocks[0].rows);
    for (const std::string& group : app.get_groups()) {
        if (group.empty()) continue;  // hidden
        blocks.push_back({group, {}});
        for (const CLI::Option* option : app.get_options()) {
            if (option->get_group() == group)
                blocks[option->get_positional() ? 1 : blocks.size() - 1].rows.push_back(rowOf(*option));
        }
    }
    blocks.erase(std::remove_if(blocks.begin(), blocks.end(), [](const Block& block) { return block.rows.empty(); }),
                 blocks.end());
    return blocks;
}

std::string usageOf(const CLI::App& app) {
    std::string text = visibleVerbs(app).empty() ? "[options]" : "[options] VERB ...";
    for (const CLI::Option* option : app.get_options()) {
        if (!option->get_positional()) continue;
        const std::string name = rowOf(*option).name;
        text += option->get_required() ? " " + name : " [" + name + "]";
    }
    return text;
}

// Words in lines of LineWidth from `column` on; line ends of the text stay.
std::string wrapped(const std::string& text, std::size_t column) {
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line); result += '\n') {
        std::istringstream words(line);
        std::size_t width = column;
        for (std::string word; words >> word; width += word.size()) {
            const bool fits = width + 1 + word.size() <= LineWidth;
            if (width > column) result += fits ? " " : "\n" + std::string(column, ' ');
            width = fits && width > column ? width + 1 : width > column ? column : width;
            result += word;
        }
    }
    return result;
}

// The text behind the name, or on the next line when the name is long.
std::string helpRow(const Row& row) {
    std::string text = "  " + row.name + (row.value.empty() ? "" : " ") + row.value;
    text +=
        text.size() + 2 > HelpColumn ? "\n" + std::string(HelpColumn, ' ') : std::string(HelpColumn - text.size(), ' ');
    return text + wrapped(row.text, HelpColumn);
}

// Text as roff takes it: no line may begin with a dot or quote, a backslash and a hyphen are escaped.
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

std::string bold(const std::string& text) { return "\\fB" + roff(text) + "\\fR"; }

std::string heading(std::string title) {
    for (char& letter : title)
        letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    return ".SH \"" + roff(title) + "\"\n";
}

// A term and what it is.
std::string item(const std::string& term, const std::string& text) { return ".TP\n" + term + "\n" + roff(text) + "\n"; }

std::string manSections(const CLI::App& app) {
    std::string text;
    for (const Section& section : pageOf(app).sections)
        text += heading(section.title) + ".nf\n" + roff(section.text) + ".fi\n";
    return app.get_parent() ? text + manSections(*app.get_parent()) : text;
}

// The program's page names those of its verbs, each of theirs names the program's.
std::string seeAlso(const CLI::App& app) {
    std::vector<Row> verbs;
    addVerbRows(app, "", verbs);
    std::string text = app.get_parent() ? bold(programOf(app).get_name()) + "(1)" : "";
    for (Row& verb : verbs) {
        std::replace(verb.name.begin(), verb.name.end(), ' ', '-');
        text += (text.empty() ? "" : ",\n") + bold(fullName(app, '-') + "-" + verb.name) + "(1)";
    }
    return text.empty() ? "" : heading("See also") + text + "\n";
}

}  // namespace

std::vector<const CLI::App*> visibleVerbs(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* verb) { return !verb->get_group().empty(); });
}

std::vector<std::string> verbNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* verb : visibleVerbs(app))
        names.push_back(verb->get_name());
    return names;
}

std::vector<std::string> optionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    }
    return names;
}

const CLI::App* verbNamed(const CLI::App& app, const std::string& name) {
    const auto found = app.get_subcommands([&name](const CLI::App* verb) { return verb->get_name() == name; });
    return found.empty() ? nullptr : found.front();
}

std::string fullName(const CLI::App& app, char separator) {
    return app.get_parent() ? fullName(*app.get_parent(), separator) + separator + app.get_name() : app.get_name();
}

std::string helpText(const CLI::App& app) {
    const Page page = pageOf(app);
    std::string text = page.summary + ".\n\nUsage: " + fullName(app) + " " + usageOf(app) + "\n";
    if (!page.details.empty()) text += "\n" + wrapped(page.details, 0);
    for (const Block& block : blocksOf(app)) {
        text += "\n" + block.title + ":\n";
        for (const Row& row : block.rows)
            text += helpRow(row);
    }
    for (const Section& section : page.sections) {
        text += "\n" + section.title + ":\n";
        std::istringstream lines(section.text);
        for (std::string line; std::getline(lines, line);)
            text += "  " + line + "\n";
    }
    if (!page.examples.empty()) text += "\nExamples:\n";
    for (const Example& example : page.examples)
        text += "  " + programOf(app).get_name() + " " + example.command + "\n      " + example.meaning + "\n";
    return text;
}

std::string manPage(const CLI::App& app) {
    const Page page = pageOf(app);
    const std::string name = roff(fullName(app, '-'));
    std::string text = ".TH " + name + " 1 \"\" \"" + roff(programOf(app).version()) + "\" \"User commands\"\n";
    text += ".SH NAME\n" + name + " \\- " + roff(page.summary) + "\n";
    text += ".SH SYNOPSIS\n" + bold(fullName(app)) + " " + roff(usageOf(app)) + "\n";
    std::string details = roff(page.details.empty() ? page.summary + "." : page.details) + "\n";
    for (std::size_t at = 0; (at = details.find("\n\n", at)) != std::string::npos; at += 4)
        details.replace(at, 2, "\n.PP\n");
    text += ".SH DESCRIPTION\n" + details;
    for (const Block& block : blocksOf(app)) {
        text += heading(block.title);
        for (const Row& row : block.rows)
            text += item(bold(row.name) + (row.value.empty() ? "" : " \\fI" + roff(row.value) + "\\fR"), row.text);
    }
    text += manSections(app);
    if (!page.examples.empty()) text += ".SH EXAMPLES\n";
    for (const Example& example : page.examples)
        text += item(bold(programOf(app).get_name() + " " + example.command), example.meaning);
    return text + seeAlso(app);
}

}  // namespace vornex
