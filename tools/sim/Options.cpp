#include "Options.h"

#include <CLI/CLI.hpp>

#include "Control.h"
#include "Fault_Rules.h"
#include "Value_Motion.h"

namespace vornex::sim {
namespace {

std::string footer() {
    return std::string("Motions in the label file (\"sim\"):\n") + MotionHelp + "\n\n" + faultHelp() +
           "\nPattern mode: the byte at every address is mix(address) XOR the generation's low 8 bits, where\n"
           "  mix: m = address * 2654435761; m ^= m >> 15; m *= 2246822519; m ^= m >> 13; m >> 24   (32 bits)\n"
           "  so each byte tells its generation, and the bytes of one good answer all tell the same one.\n"
           "  read: every read answered shows the next generation, the first one 1; 250ms: the next one every 250 ms;\n"
           "  fixed:N: always N. Writes are answered and counted but store nothing, since a stored byte would be\n"
           "  foreign itself.\n"
           "\nControl lines, with --control:\n" +
           ControlHelp +
           "\nAn intact frame with a wrong check value, an unknown command or a senseless body is not answered; a "
           "wrong\n"
           "start byte, a frame over --max-frame or one not complete in --frame-time closes the connection.\n"
           "\nExit codes: 0 ok, 1 usage, 2 label file, 3 cannot listen, 7 an --expect was not met\n"
           "\nExamples:\n"
           "  vornex-sim -l examples/plant.json -p 2000\n"
           "  vornex-sim -l examples/plant.json -p 0 --fault 'drop@every=50' --fault 'delay(100,400)@p=0.1' --seed 7\n"
           "  vornex-sim --pattern -p 0 --control - --expect 'writes>=3' -o json\n";
}

void addFaultOptions(CLI::App& app, Options& options) {
    app.add_option("--fault", options.faults, "Fault by rule, see below; may stand several times")
        ->type_name("RULE")
        ->allow_extra_args(false);
    app.add_option("--seed", options.seed, "Seed of everything random")->capture_default_str();
    app.add_option("--pattern", options.pattern,
                   "Serve a pattern instead of values: read, fixed:N or a period like 250ms")
        ->type_name("[STEP]")
        ->expected(0, 1)
        ->default_str("read");
    app.add_option("--control", options.control, "Take control lines from standard input (-) or a unix socket at PATH")
        ->type_name("-|PATH");
    app.add_option("--expect", options.expectations,
                   "COUNTER>=NUMBER at the end, else exit code 7; may stand several times")
        ->type_name("EXPR")
        ->allow_extra_args(false);
}

void addCaps(CLI::App& app, Options& options) {
    app.add_option("--max-clients", options.caps.clients, "Connections at a time")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();
    app.add_option("--max-frame", options.caps.frame, "Bytes of a request or an answer")
        ->check(CLI::Range(12, 65541))
        ->capture_default_str();
    app.add_option("--frame-time", options.caps.frameTime, "ms from a frame's first byte to its last")
        ->check(CLI::Range(1, 3600000))
        ->capture_default_str();
}

}  // namespace

std::optional<int> readOptions(int argc, char** argv, Options& options) {
    CLI::App app(
        "A controller to talk to: serves the memory that a label file describes, over TCP, with faults on demand.",
        "vornex-sim");
    app.set_version_flag("--version", std::string("vornex-sim ") + VORNEX_VERSION);
    app.add_option("-l,--labels", options.labels, "Label file: what is in the memory and how it moves")
        ->type_name("FILE");
    app.add_option("-p,--port", options.port, "TCP port; 0 takes a free one [the port of the label file's target]")
        ->type_name("PORT");
    app.add_option("--listen", options.listen, "Address to listen on")->type_name("ADDR")->capture_default_str();
    addFaultOptions(app, options);
    addCaps(app, options);
    app.add_option("-o,--output", options.output, "Summary as text or json")
        ->check(CLI::IsMember({"text", "json"}))
        ->capture_default_str();
    app.add_option("--log", options.logFile, "Log to FILE instead of standard error")->type_name("FILE");
    app.add_flag("-q,--quiet", options.quiet, "No log");
    app.add_flag("-v,--verbose", options.verbose, "Log clients and requests too");
    app.footer(footer());
    try {
        app.parse(argc, argv);
        if (options.labels.empty() && options.pattern.empty()) throw CLI::RequiredError("--labels or --pattern");
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? int(Exit_Code::Ok) : int(Exit_Code::Usage);
    }
    return std::nullopt;
}

}  // namespace vornex::sim
