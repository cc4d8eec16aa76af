#include "cli/Defaults.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include <CLI/CLI.hpp>

#include "text/Host_Port.h"
#include "text/Nearest_Word.h"
#include "text/Text.h"
#include "text/Text_Input.h"

namespace vornex {

namespace {

namespace fs = std::filesystem;

struct Setting_Name {
    const char* name;
    const char* environment;  // null: none
    bool isPath;
};
const std::array<Setting_Name, 21> Names = {
    {{"labels", "VORNEX_LABELS", true}, {"target", "VORNEX_TARGET", false}, {"timeout", nullptr, false},
     {"settle", nullptr, false},        {"retries", nullptr, false},        {"max-bytes", nullptr, false},
     {"broker", nullptr, false},        {"user", nullptr, false},           {"password-file", nullptr, true},
     {"ca-file", nullptr, true},        {"certificate", nullptr, true},     {"key", nullptr, true},
     {"group", nullptr, false},         {"node", nullptr, false},           {"device", nullptr, false},
     {"primary-host", nullptr, false},  {"poll", nullptr, false},           {"writable", nullptr, false},
     {"aliases", nullptr, false},       {"state", nullptr, true},           {"store-size", nullptr, false}}};
const char FileName[] = "vornex.toml";
const char Section[] = "controllers.";

const Setting_Name* entryOf(const std::string& name) {
    const auto found = std::find_if(Names.begin(), Names.end(), [&](const auto& entry) { return entry.name == name; });
    return found == Names.end() ? nullptr : &*found;
}

std::string nonEmptyVariable(const char* name) {
    const char* const text = name ? std::getenv(name) : nullptr;
    return text ? text : "";
}

// Of the user: $XDG_CONFIG_HOME, or what stands for it. Empty when neither is known.
std::string ownFolder() {
    const std::string folder = nonEmptyVariable("XDG_CONFIG_HOME"), home = nonEmptyVariable("HOME");
    if (!folder.empty()) return folder + "/vornex";
    return home.empty() ? "" : home + "/.config/vornex";
}

bool isControllerName(const std::string& name) {
    const auto isGood = [](unsigned char letter) { return std::isalnum(letter) || letter == '-' || letter == '_'; };
    return !name.empty() && std::all_of(name.begin(), name.end(), isGood);
}

// The name and the value of one line, by CLI11's reader of such files.
CLI::ConfigItem itemOf(const std::string& line, const std::string& place) {
    std::istringstream text(line);
    const std::vector<CLI::ConfigItem> items = CLI::ConfigTOML().from_config(text);
    if (line.find('=') == std::string::npos || items.size() != 1 || items[0].inputs.empty()) {
        throw Settings_Error(place + "'" + line + "' is not NAME = VALUE");
    }
    for (const std::string& value : items[0].inputs) {
        const bool isOpen = !value.empty() && (value.front() == '"' || value.front() == '\'');
        if (isOpen) throw Settings_Error(place + "the quotes are not closed; a value cannot hold #");
    }
    return items[0];
}

}  // namespace

std::vector<std::string> settingNames() {
    std::vector<std::string> names;
    names.reserve(std::size(Names));
    for (const Setting_Name& entry : Names)
        names.push_back(entry.name);
    return names;
}

Defaults::Defaults() {
    findFile();
    if (!file.empty()) read();
}

void Defaults::findFile() {
    std::vector<std::string> candidates;
    std::error_code error;
    for (fs::path folder = fs::current_path(error); !error && !folder.empty(); folder = folder.parent_path()) {
        candidates.push_back((folder / FileName).string());
        if (folder == folder.parent_path()) break;
    }
    if (!ownFolder().empty()) candidates.push_back(ownFolder() + "/" + FileName);
    for (const std::string& candidate : candidates) {
        struct stat found;
        if (stat(candidate.c_str(), &found) != 0) continue;
        if (found.st_uid == geteuid() || found.st_uid == 0) {
            file = candidate;
            return;
        }
        warned.push_back(candidate + " is passed over: it belongs to somebody else");
    }
}

void Defaults::read() {
    std::istringstream lines;
    try {
        lines.str(wholeUtf8(file));
    } catch (const File_Error& mistake) {
        throw Settings_Error(mistake.what());
    }
    std::string section;
    int number = 0;
    for (std::string line; std::getline(lines, line);)
        readLine(trimmed(line), ++number, section);
    for (const auto& [name, settings] : sections) {
        if (!settings.count("target")) throw Settings_Error(file + ": controller '" + name + "' has no target");
    }
}

void Defaults::readLine(std::string line, int number, std::string& section) {
    const std::string place = file + ":" + std::to_string(number) + ": ";
    if (line.empty() || line.front() == '#') return;
    if (line.front() == '[') {
        line = trimmed(line.substr(0, line.find('#')));
        if (line.back() != ']') throw Settings_Error(place + "'" + line + "' is no section");
        section = trimmed(line.substr(1, line.size() - 2));
        settingsOf(section, place);
        return;
    }
    const CLI::ConfigItem item = itemOf(line, place);
    const Setting_Name* const entry = item.parents.empty() ? entryOf(item.name) : nullptr;
    if (!entry) {
        throw Settings_Error(place + "'" + item.fullname() + "' cannot be set" +
                             didYouMean(item.fullname(), settingNames()));
    }
    Setting setting{joined(item.inputs, ","), file + ":" + std::to_string(number)};
    if (setting.value.empty()) throw Settings_Error(place + "'" + item.name + "' has no value");
    if (entry->isPath) setting.value = (fs::path(file).parent_path() / setting.value).string();
    if (!settingsOf(section, place).emplace(item.name, setting).second) {
        throw Settings_Error(place + "'" + item.name + "' stands twice");
    }
}

Named_Settings& Defaults::settingsOf(const std::string& section, const std::string& place) {
    if (section.empty()) return head;
    const std::size_t length = sizeof Section - 1;
    const std::string name = section.compare(0, length, Section) == 0 ? section.substr(length) : "";
    if (isControllerName(name)) return sections[name];
    throw Settings_Error(place + "section '" + section +
                         "' is not [controllers.NAME] with a name of letters, digits, " + "- and _");
}

std::optional<Setting> Defaults::find(const std::string& name, const std::string& controller) const {
    const Setting_Name* const entry = entryOf(name);
    const std::string fromEnvironment = entry ? nonEmptyVariable(entry->environment) : "";
    if (!fromEnvironment.empty()) return Setting{fromEnvironment, entry->environment};
    const auto section = sections.find(controller);
    for (const Named_Settings* settings : {section == sections.end() ? nullptr : &section->second, &head}) {
        if (settings && settings->count(name)) return settings->at(name);
    }
    return std::nullopt;
}

void Defaults::checkTarget(const Setting& target) const {
    if (sections.count(target.value)) return;
    try {
        parseHostPort(target.value);
    } catch (const std::invalid_argument& reason) {
        std::vector<std::string> names;
        for (const auto& [name, settings] : sections)
            names.push_back(name);
        const std::string words =
            file.empty() ? "" : ", and no controller of " + file + didYouMean(target.value, names);
        throw Settings_Error(target.origin + ": target " + reason.what() + words);
    }
}

namespace {

// What the command line says, to the verb or else to the program.
std::optional<Setting> typed(const CLI::App& app, const std::string& name) {
    for (const CLI::App* verb : app.get_subcommands()) {
        if (std::optional<Setting> setting = typed(*verb, name)) return setting;
    }
    const CLI::Option* const option = app.get_option_no_throw("--" + name);
    if (option && option->count() > 0) return Setting{option->results().back(), "command line"};
    return std::nullopt;
}

void checkControllers(const Defaults& defaults, const Setting& target) {
    std::vector<std::string> all = controllersIn(target.value);
    for (const std::string& one : all)
        defaults.checkTarget({one, target.origin});
    std::sort(all.begin(), all.end());
    const auto twice = std::adjacent_find(all.begin(), all.end());
    if (twice != all.end()) throw Settings_Error(target.origin + ": target '" + *twice + "' stands twice");
}

void give(CLI::App& program, const std::string& name, const Setting& setting) {
    CLI::Option* const option = program.get_option_no_throw("--" + name);
    if (!option) return;
    try {
        option->clear();
        option->add_result(setting.value);
        option->run_callback();
    } catch (const CLI::ParseError& mistake) {
        throw Settings_Error(setting.origin + ": " + mistake.what());
    }
}

}  // namespace

std::vector<std::string> controllersIn(const std::string& target) { return splitTrimmed(target, ','); }

Named_Settings applyDefaults(CLI::App& program, const Defaults& defaults, const std::vector<std::string>& names) {
    Named_Settings settings;
    std::string controller;
    std::optional<Setting> target = typed(program, "target");
    if (!target) target = defaults.find("target");
    const std::string served = nonEmptyVariable(ControllerVariable);
    if (target && std::count(names.begin(), names.end(), "target")) {
        const bool areSeveral = target->value.find(',') != std::string::npos;
        if (areSeveral && !served.empty()) target->value = served;
        checkControllers(defaults, *target);
        settings["target"] = *target;
        if (areSeveral) settings[served.empty() ? "controllers" : "served"] = *target;
        const auto section = defaults.controllers().find(target->value);
        if (section != defaults.controllers().end()) {
            controller = target->value;
            settings["controller"] = *target;
            settings["target"] = section->second.at("target");
        }
        give(program, "target", settings["target"]);
    }
    for (const std::string& name : names) {
        if (name == "target") continue;
        std::optional<Setting> setting = typed(program, name);
        const bool isTyped = setting.has_value();
        if (!setting) setting = defaults.find(name, controller);
        if (setting && !isTyped) give(program, name, *setting);
        if (setting) settings[name] = *setting;
    }
    return settings;
}

}  // namespace vornex
