// What options are worth that the command line leaves out: the environment says it, or else a file vornex.toml.
//
//   labels = "plant.json"          # a path from the file's folder on
//   target = "press3"              # HOST:PORT, or a controller that is named below
//
//   [controllers.press3]
//   target = "10.0.0.3:2000"
//   labels = "press3.json"         # what stands here comes before what stands above
//   timeout = 3000
//
// CLI11 reads the lines. Everything here belongs to the thread of main().
#ifndef VORNEX_CLI_DEFAULTS_H
#define VORNEX_CLI_DEFAULTS_H

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace vornex {

// A mistake in what the user set: what() names the file and line, or the variable.
class Settings_Error : public std::invalid_argument {
    using std::invalid_argument::invalid_argument;
};

struct Setting {
    std::string value;
    std::string origin;  // "command line", "VORNEX_LABELS", "/srv/line3/vornex.toml:3"
};
using Named_Settings = std::map<std::string, Setting>;  // by the option's name without hyphens

// The names that a file may set, each an option's.
std::vector<std::string> settingNames();

class Defaults {
public:
    // Reads the file that counts: vornex.toml of the present folder or of the nearest one above, or else the one in
    // $XDG_CONFIG_HOME/vornex (~/.config/vornex). One that belongs neither to the user nor to root is passed over with
    // a warning: it would choose the controller for whoever works below it. Throws Settings_Error.
    Defaults();

    const std::string& path() const { return file; }  // empty: there is none
    const std::vector<std::string>& warnings() const { return warned; }
    // By name, what their sections say.
    const std::map<std::string, Named_Settings>& controllers() const { return sections; }
    // Environment, the controller's section, the head of the file; the controller may be no name of the file's.
    std::optional<Setting> find(const std::string& name, const std::string& controller = "") const;
    // Throws Settings_Error when the text is neither a controller's name nor HOST:PORT.
    void checkTarget(const Setting& target) const;

private:
    void findFile();
    void read();
    void readLine(std::string line, int number, std::string& section);
    Named_Settings& settingsOf(const std::string& section, const std::string& place);

    std::string file;
    std::vector<std::string> warned;
    Named_Settings head;
    std::map<std::string, Named_Settings> sections;
};

// Set by a program for the process that serves one of several controllers.
inline constexpr char ControllerVariable[] = "VORNEX_CONTROLLER";

// The controllers of a target "press1,press2"; one for others.
std::vector<std::string> controllersIn(const std::string& target);

// A target of several controllers is left as it is, and is "controllers" in the result; in the process that serves one
// of them it is that one, which is then "served" too.
//
// After parseCommandLine(): gives the program's options of these names what they are worth, as if it had been typed,
// and a named controller's address to --target. Returns what is not built in, with the place it comes from;
// "controller" is the name given for the target. Throws Settings_Error.
Named_Settings applyDefaults(CLI::App& program, const Defaults& defaults, const std::vector<std::string>& names);

}  // namespace vornex

#endif
