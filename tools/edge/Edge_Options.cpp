#include "edge/Edge_Options.h"

#include <iostream>
#include <stdexcept>

#include "cli/Defaults.h"
#include "cli/Options.h"
#include "cli/Program.h"
#include "link_options/Link_Options.h"

namespace vornex::edge {

namespace {

Page edgePage() {
    return {
        "Variables of one controller for a plant, over an MQTT broker as Sparkplug B",
        "Polls labels through the driver and publishes their changes: births with names, types and units, data by "
        "exception, death certificates. What changes while the broker or the primary host is away is kept on disk and "
        "sent afterwards as historical. Commands are denied but for the labels behind --writable; each write is "
        "checked, "
        "and verified by reading it back. One process serves one controller.\n\n"
        "Everything can stand in vornex.toml, by the options' names.",
        {{"-l plant.json --broker 10.0.0.9:1883 --group plant --node line3 --poll 'Motors*.Speed @ 100; Setpoint @ "
          "1000' "
          "--state /var/lib/vornex",
          "Publish."},
         {"-l plant.json --group plant --node line3 --poll 'Motors*.Speed @ 100' --check",
          "Tell what would be published."}},
        {{"Exit codes",
          "0    ended by a signal, after its death certificate\n"
          "1    a mistake in the options\n"
          "2    a mistake in a label or in the label file\n"
          "6    the driver library cannot be used\n"
          "8    the state folder cannot be used, or another process uses it\n"}}};
}

void addBroker(CLI::App& app, Edge_Options& options) {
    startGroup(app, "Broker");
    addText(app, "--broker", "HOST:PORT", options.broker, "The MQTT broker.");
    addText(app, "--user", "NAME", options.user, "The user at the broker.");
    addText(app, "--password-file", "FILE", options.passwordFile, "A file whose first line is the user's password.");
    addText(app, "--ca-file", "FILE", options.caFile, "Certificates that the broker's is checked by; switches TLS on.");
    addText(app, "--certificate", "FILE", options.certificate, "The client's certificate, for TLS.");
    addText(app, "--key", "FILE", options.key, "Its key.");
    addFlag(app, "--unverified", options.isUnverified, "TLS that believes any certificate.");
}

void addNode(CLI::App& app, Edge_Options& options) {
    startGroup(app, "Node");
    addText(app, "--group", "ID", options.ids.group, "The group of the node.");
    addText(app, "--node", "ID", options.ids.node, "The edge node.");
    addText(app, "--device", "ID", options.ids.device, "The controller; without it its name in vornex.toml.");
    addText(app, "--primary-host", "ID", options.primaryHost, "Publish only while this host is online.");
    addText(app, "--poll", "GROUPS", options.poll,
            "What is published: 'LABEL... @ MS [deadband=X|X%] [silence=SECONDS]', groups between semicolons.");
    addText(app, "--writable", "LABELS", options.writable, "What commands may write, between semicolons.");
    addFlag(app, "--aliases", options.usesAliases,
            "Data by number instead of name: shorter, not every reader takes it.");
    addText(app, "--state", "DIR", options.stateFolder,
            "The folder for what is kept: the birth number, unsent values.");
    addNumber(app, "--store-size", "MIB", options.storeMiB, 1, 65536, "Room for unsent values; the oldest go first.");
}

void addController(CLI::App& app, Edge_Options& options) {
    startGroup(app, "Controller");
    addLabelFile(app, options.labelFile, options.isStrict);
    addLinkOptions(app, options.host);
    addLibraryOption(app, options.library);
}

}  // namespace

std::optional<int> readOptions(int argc, char** argv, Edge_Options& options) {
    const std::shared_ptr<CLI::App> app = makeProgram("vornex-edge", VORNEX_VERSION, edgePage());
    addController(*app, options);
    addBroker(*app, options);
    addNode(*app, options);
    startGroup(*app, "Options");
    addFlag(*app, "--check", options.checksOnly, "Tell what would be published, and end.");
    addFlag(*app, "-q,--quiet", options.quiet, "Errors only.");
    addDocumentFlags(*app);
    if (const std::optional<int> code = parseCommandLine(*app, argc, argv)) return code;
    const Defaults defaults;
    for (const std::string& warning : defaults.warnings())
        std::cerr << "vornex-edge: warning: " << warning << "\n";
    const Named_Settings settings = applyDefaults(*app, defaults, settingNames());
    const auto controller = settings.find("controller");
    if (options.ids.device.empty())
        options.ids.device = controller == settings.end() ? "controller" : controller->second.value;
    return std::nullopt;
}

}  // namespace vornex::edge
