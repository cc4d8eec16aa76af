// The options of a program that talks to a controller through the driver: how it is reached, which label file and which
// driver library. The same words, limits and defaults in all of them; vornex.toml sets them by the same names.
//
// Targets must live until the command line is parsed. Everything here belongs to the thread of main().
#ifndef VORNEX_LINK_OPTIONS_LINK_OPTIONS_H
#define VORNEX_LINK_OPTIONS_LINK_OPTIONS_H

#include <string>

#include "host/Host_Settings.h"

namespace CLI {
class App;
}

namespace vornex {

enum class Controllers { One, Several };

// --target, --timeout, --settle, --retries, --max-bytes.
void addLinkOptions(CLI::App& app, Host_Settings& settings, Controllers controllers = Controllers::One);

// --library; empty: the one beside the program.
void addLibraryOption(CLI::App& app, std::string& library);

}  // namespace vornex

#endif
