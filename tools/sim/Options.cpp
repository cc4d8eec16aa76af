#include "Options.h"

#include <iostream>

#include <CLI/CLI.hpp>

#include "Options_Help.h"

namespace vornex::sim {
namespace {

// The range without a second description of itself in the help.
CLI::Validator range(int lowest, int highest) { return CLI::Range(lowest, highest).description(""); }

void addServing(CLI::App& app, Options& options) {
    app.add_option("-l,--labels", options.labels, "Label file: what is in the memory and how it moves")
        ->type_name("FILE");
    app.add_option("-p,--port", options.port,
                   "TCP port; 0 takes a free one [the port of the label file's target, or 0]")
        ->type_name("PORT");
    app.add_option("--listen", options.listen, "Address to listen on")->type_name("ADDR")->capture_default_str();
    app.add_option("--pattern", options.pattern, "A pattern instead of values: read, fixed:N or a period like 250ms")
        ->type_name("STEP")
        ->expected(0, 1)
        ->default_str("read");
}

void addTesting(CLI::App& app, Options& options) {
    app.add_option("--fault", options.faults, "A fault by rule; may stand several times")
        ->type_name("RULE")
        ->allow_extra_args(false);
    app.add_option("--seed", options.seed, "Seed of everything random")->type_name("N")->capture_default_str();
    app.add_option("--control", options.control, "Control lines from standard input (-) or a unix socket at PATH")
        ->type_name("-|PATH");
    app.add_option("--expect", options.expectations,
                   "What a counter must be at the end, like writes>=3, else exit code 7; may stand several times")
        ->type_name("EXPR")
        ->allow_extra_args(false);
}

void addCaps(CLI::App& app, Options& options) {
    app.add_option("--max-clients", options.caps.clients, "Connections at a time, 1 to 1000")
        ->type_name("N")
        ->check(range(1, 1000))
        ->capture_default_str();
    app.add_option("--max-frame", options.caps.frame, "Bytes of a request, and of an answer, 12 to 65541")
        ->type_name("BYTES")
        ->check(range(12, 65541))
        ->capture_default_str();
    app.add_option("--frame-time", options.caps.frameTime, "From a frame's first byte to its last, 1 to 3600000")
        ->type_name("MS")
        ->check(range(1, 3600000))
        ->capture_default_str();
}

void addOutput(CLI::App& app, Options& options) {
    app.add_option("-o,--output", options.output, "The summary as text or json")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({"text", "json"}).description(""))
        ->capture_default_str();
    app.add_option("--log", options.logFile, "Log to the end of FILE instead of standard error")->type_name("FILE");
    app.add_flag("-q,--quiet", options.quiet, "No log");
    app.add_flag("-v,--verbose", options.verbose, "Log clients and requests too");
    app.add_flag("--man", "Print the manual page");
    app.add_flag("--completion", "Print the bash completion");
}

int reportError(CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    std::cerr << "vornex-sim: " << error.what() << "\nvornex-sim --help lists the options.\n";
    return int(Exit_Code::Usage);
}

}  // namespace

std::optional<int> readOptions(int argc, char** argv, Options& options) {
    CLI::App app(Purpose, "vornex-sim");
    app.set_version_flag("--version", std::string("vornex-sim ") + VORNEX_VERSION);
    addServing(app, options);
    addTesting(app, options);
    addCaps(app, options);
    addOutput(app, options);
    app.footer(helpFooter());
    try {
        app.parse(argc, argv);
        if (app.count("--man")) return std::cout << manPage(app), int(Exit_Code::Ok);
        if (app.count("--completion")) return std::cout << bashCompletion(app), int(Exit_Code::Ok);
        if (options.labels.empty() && options.pattern.empty()) throw CLI::RequiredError("--labels or --pattern");
    } catch (const CLI::ParseError& error) {
        return reportError(app, error);
    }
    return std::nullopt;
}

}  // namespace vornex::sim
