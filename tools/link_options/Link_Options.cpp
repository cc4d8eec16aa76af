#include "link_options/Link_Options.h"

#include "cli/Options.h"

namespace vornex {

void addLinkOptions(CLI::App& app, Host_Settings& settings, Controllers controllers) {
    addText(
        app, "-t,--target", "TARGET", settings.target,
        std::string("The controller: HOST:PORT, or a name of vornex.toml; without it the label file's \"target\".") +
            (controllers == Controllers::Several ? " Several stand with commas between." : ""));
    addNumber(app, "-T,--timeout", "MS", settings.timeoutMs, 1, 600000, "How long a reply or a connection may take.");
    addNumber(app, "--settle", "MS", settings.settleMs, 0, 10000,
              "How long a new connection is listened to before the first request; what comes closes it.");
    addNumber(app, "-R,--retries", "N", settings.retries, 0, 1000,
              "Failed replies that the driver bears before it gives up.");
    addNumber(app, "-m,--max-bytes", "N", settings.maxBytes, 1, LongestRequest, "Bytes of one read request at most.");
}

void addLibraryOption(CLI::App& app, std::string& library) {
    addText(app, "--library", "FILE", library, "The driver library; without it the one beside the program.");
}

}  // namespace vornex
