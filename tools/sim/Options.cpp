#include "sim/Options.h"

#include <iostream>
#include <limits>

#include "cli/Defaults.h"
#include "cli/Options.h"
#include "cli/Program.h"
#include "sim/Control.h"
#include "sim/faults/Fault_Rules.h"
#include "values/Value_Motion.h"

namespace vornex::sim {
namespace {

const char* const PatternHelp =
    "The byte at every address is mix(address) XOR the generation's low 8 bits. mix, in 32-bit arithmetic:\n"
    "  m = address * 2654435761; m ^= m >> 15; m *= 2246822519; m ^= m >> 13; mix = m >> 24\n"
    "Each byte tells the generation it would be of; the bytes of one good answer all tell the same one, a foreign\n"
    "byte most likely another.\n"
    "read: every read answered shows the next generation, the first one 1. 250ms: the next one every 250 ms.\n"
    "fixed:N: always N. Writes are answered and counted but not stored: a stored byte would be foreign itself.\n";

const char* const FrameHelp =
    "An intact frame with a wrong check value, an unknown command or a senseless body is not answered: where the\n"
    "next one begins is known, and the client's time-out does the rest. A wrong start byte, a frame over --max-frame\n"
    "or one not complete in --frame-time closes the connection.\n"
    "A write that finds no room in --memory is not carried out, not answered, and counted as memoryFull.\n"
    "A client that leaves its answers lying is not read until it takes them.\n";

const char* const ExitHelp =
    "0 ok  1 usage  2 label file or record  3 cannot listen  7 an --expect was not met  8 an output could not be "
    "written\n";

Page simulatorPage() {
    return {"A simulated controller with faults on demand",
            "Serves the memory that a label file describes over TCP, with faults on demand.",
            {{"-l examples/plant.json -p 2000", "A controller with the values of the label file."},
             {"-l examples/plant.json -p 0 --fault 'drop@every=50' --fault 'delay(100,400)@p=0.1' --seed 7",
              "One that loses and delays answers."},
             {"--serve link.jsonl -p 2000 --speed 10", "A record of a link, played as the controller."},
             {"--pattern -p 0 --control - --expect 'writes>=3' -o json", "One that is driven by a script and judged."}},
            {{"Motions (\"sim\" in the label file)", MotionHelp},
             {"Faults", faultHelp()},
             {"Pattern mode", PatternHelp},
             {"Control lines", ControlHelp},
             {"Bad frames", FrameHelp},
             {"Exit codes", ExitHelp}}};
}

void addServing(CLI::App& app, Options& options) {
    addLabelFile(app, options.labels, options.isStrict, "Label file: what is in the memory and how it moves.");
    addNumber(app, "-p,--port", "PORT", options.port, 0, 65535,
              "TCP port; 0 takes a free one, none that of the label file's target, or a free one.");
    addText(app, "--listen", "ADDR", options.listen, "Address to listen on.");
    addTextOr(app, "--pattern", "STEP", "read", options.pattern,
              "A pattern instead of values: read, fixed:N or a period like 250ms; alone: read.");
}

void addPlaying(CLI::App& app, Options& options) {
    addText(app, "--serve", "FILE", options.record,
            "Play the replies of a record (vornex-label --trace FILE.jsonl) as the controller.");
    addNumber(app, "--speed", "X", options.speed, 0.01, 1000.0, "How much faster than the record.");
    addFlag(app, "--loop", options.loops, "At the record's end begin again; without it the last values stay.");
    addChoice(app, "--gaps", {"keep", "skip"}, options.gaps,
              "Times without a link or a reply: as they were, or left out.");
}

// Why these do not go together; empty when they do.
std::string conflictIn(const Options& options) {
    if (options.record.empty()) {
        const bool isForNothing = options.speed != 1 || options.loops || options.gaps != "keep";
        return isForNothing ? "--speed, --loop and --gaps are for --serve" : "";
    }
    return options.pattern.empty() ? "" : "--serve and --pattern do not go together";
}

void addTesting(CLI::App& app, Options& options) {
    addTexts(app, "--fault", "RULE", options.faults, "A fault by rule; may stand several times.");
    addNumber(app, "--seed", "N", options.seed, 0, std::numeric_limits<std::uint64_t>::max(),
              "Seed of everything random.");
    addText(app, "--control", "-|PATH", options.control,
            "Control lines from standard input (-) or a unix socket at PATH.");
    addTexts(app, "--expect", "EXPR", options.expectations,
             "What a counter must be at the end, like writes>=3, else exit code 7; may stand several times.");
}

void addCaps(CLI::App& app, Options& options) {
    addNumber(app, "--max-clients", "N", options.caps.clients, 1, 1000, "Connections at a time.");
    addNumber(app, "--max-frame", "BYTES", options.caps.frame, 12, 65541, "Bytes of a request, and of an answer.");
    addNumber(app, "--frame-time", "MS", options.caps.frameTime, 1, 3600000, "From a frame's first byte to its last.");
    addNumber(app, "--memory", "MIB", options.memory, 1, 4096, "Memory for what is written, in pages of 4 KiB.");
}

void addOutput(CLI::App& app, Options& options) {
    addChoice(app, "-o,--output", {"text", "json"}, options.output, "How the summary is written.");
    addText(app, "--log", "FILE", options.logFile, "Log to the end of FILE instead of standard error.");
    addFlag(app, "-q,--quiet", options.quiet, "No log.");
    addFlag(app, "-v,--verbose", options.verbose, "Log clients and requests too.");
    addDocumentFlags(app);
}

// The label file alone: a controller's address, time-outs and retries are a host's.
void takeDefaults(CLI::App& app) {
    const Defaults defaults;
    for (const std::string& warning : defaults.warnings())
        std::cerr << "vornex-sim: warning: " << warning << "\n";
    applyDefaults(app, defaults, {"labels"});
}

}  // namespace

std::optional<int> readOptions(int argc, char** argv, Options& options) {
    const std::shared_ptr<CLI::App> app = makeProgram("vornex-sim", VORNEX_VERSION, simulatorPage());
    addServing(*app, options);
    addPlaying(*app, options);
    addTesting(*app, options);
    addCaps(*app, options);
    addOutput(*app, options);
    if (const std::optional<int> code = parseCommandLine(*app, argc, argv)) return code;
    if (options.pattern.empty() && options.record.empty()) takeDefaults(*app);
    std::string mistake = conflictIn(options);
    if (options.labels.empty() && options.pattern.empty() && options.record.empty())
        mistake = "--labels or --pattern is required";
    if (mistake.empty()) return std::nullopt;
    std::cerr << "vornex-sim: " << mistake << "; see --help\n";
    return int(Exit_Code::Usage);
}

}  // namespace vornex::sim
