// vornex-sim: puts the parts together.
#include <csignal>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <utility>

#include "sim/Control.h"
#include "sim/Options.h"
#include "sim/Summary.h"
#include "sim/net/Control_Port.h"
#include "sim/net/Server.h"
#include "text/Host_Port.h"
#include "text/Number.h"
#include "text/Output_File.h"
#include "text/Text.h"

namespace vornex::sim {
namespace {

void tellMistake(const std::string& words) { std::cerr << harmlessLines(words) << std::endl; }

// Messages with the time since the start in front, to standard error or a file; nothing when quiet. A log that cannot
// be written any more is told, once, and the simulator goes on: whoever talks to it is not to be stopped by a full
// disk.
// Neither is it to wait for a reader that stands still: messages that a pipe has no room for are dropped and counted.
class Log_Writer {
public:
    explicit Log_Writer(const Options& options)
        : quiet(options.quiet),
          file(options.logFile.empty() ? Output_File::standardError()
                                       : Output_File(options.logFile, {Existing_File::Append, {options.labels}})) {}
    void write(const std::string& text) {
        if (quiet || hasFailed) return;
        if (file.wouldWait()) {
            ++dropped;
            return;
        }
        if (const std::uint64_t count = std::exchange(dropped, 0))
            writeNow(std::to_string(count) + " messages are missing here, nobody read them");
        writeNow(text.size() > LongestText ? text.substr(0, LongestText) + "..." : text);
    }
    bool failed() const { return hasFailed; }

private:
    static constexpr std::size_t LongestText = 1000;  // a pipe that is read takes such a line, and the one before it

    void writeNow(const std::string& words) {
        const std::string text = harmless(words);
        const std::chrono::duration<double> since = std::chrono::steady_clock::now() - started;
        try {
            file.write(padded(fixedNumber(since.count(), 3), 9, Align::Right) + " " + text + "\n");
            file.flush();
        } catch (const Output_Error& error) {
            hasFailed = true;
            tellMistake(std::string("vornex-sim: ") + error.what());
        }
    }

    bool quiet;
    std::uint64_t dropped = 0;
    bool hasFailed = false;
    Output_File file;
    std::chrono::steady_clock::time_point started = std::chrono::steady_clock::now();
};

unsigned short portOf(const Options& options, const Label_File& labels) {
    if (options.port) return *options.port;
    if (labels.target.empty()) return 0;
    return parseHostPort(labels.target).port;
}

// Null without --serve.
std::unique_ptr<Played_Record> openRecord(const Options& options) {
    if (options.record.empty()) return nullptr;
    const auto tell = [](const std::string& words) { tellMistake("vornex-sim: " + words); };
    const Play play = {options.record, options.speed, options.loops, options.gaps == "skip", options.memory << 20};
    return std::make_unique<Played_Record>(play, tell);
}

Controller makeController(const Options& options, const Label_File& labels, std::unique_ptr<Played_Record> record,
                          const Log& log) {
    Fault_Rules faults(options.seed);
    for (const std::string& fault : options.faults)
        faults.add(fault);
    const std::uint64_t memory = options.memory << 20;
    if (record) return Controller(Plant(labels, std::move(record), memory), std::move(faults), log);
    const Pattern pattern = options.pattern.empty() ? Pattern() : parsePattern(options.pattern);
    return Controller(Plant(labels, pattern, options.seed, memory), std::move(faults), log);
}

std::vector<Comparison> readExpectations(const Options& options, const Controller& controller) {
    std::vector<Comparison> expectations;
    for (const std::string& text : options.expectations) {
        expectations.push_back(parseExpectation(text));
        counterNamed(controller.counters(),
                     expectations.back().subject);  // a name nobody counts is a mistake now, not later
    }
    return expectations;
}

struct Running {
    asio::io_context io;
    asio::signal_set signals{io, SIGINT, SIGTERM};
    std::unique_ptr<Control_Socket> controlSocket;
};

void startControl(const Options& options, Running& running, Controller& controller, const Control_Hooks& hooks) {
    const auto handler = [&controller, hooks](const std::string& line) {
        return runControlLine(line, controller, hooks);
    };
    if (options.control == "-") return controlByStdin(running.io, handler, controller.log);
    if (!options.control.empty()) {
        running.controlSocket = std::make_unique<Control_Socket>(running.io, options.control, handler, controller.log);
    }
}

int cannotListen(const std::string& where, const std::system_error& error) {
    tellMistake("vornex-sim: cannot listen on " + where + ": " + error.what());
    return int(Exit_Code::NoPort);
}

// Until a signal, "quit" or a power cut ends it.
void run(Running& running, Server& server) {
    running.signals.async_wait([&server](const asio::error_code& error, int) {
        if (error) return;
        Output_File::stopWaiting();
        server.stop(false);
    });
    printText("listening " + server.address() + "\n");
    running.io.run();
    running.signals.clear();  // nobody takes them any more: the next one ends a summary that nobody reads
}

int serve(const Options& options, const Label_File& labels, std::unique_ptr<Played_Record> record, Log_Writer& writer) {
    const Log log = [&writer](const std::string& text) { writer.write(text); };
    const Log trace = options.verbose ? log : [](const std::string&) {};
    Controller controller = makeController(options, labels, std::move(record), log);
    const std::vector<Comparison> expectations = readExpectations(options, controller);

    Running running;
    Server server(running.io, controller, options.caps, trace);
    const auto summarise = [&] {
        return Summary{server.now() / 1000, options.seed, controller.counters(), controller.faults.rules(),
                       expectations};
    };
    // after the answer to "quit" is out
    const auto quit = [&] { asio::post(running.io, [&server] { server.stop(false); }); };
    try {
        server.listen(options.listen, portOf(options, labels));
    } catch (const std::system_error& error) {
        return cannotListen(options.listen + " port " + std::to_string(portOf(options, labels)), error);
    }
    try {
        startControl(options, running, controller,
                     {[&server] { return server.now(); }, [&] { return summaryJson(summarise()); }, quit});
    } catch (const std::system_error& error) {
        return cannotListen(options.control, error);
    }
    if (!options.record.empty()) server.followRecord();
    run(running, server);
    const Summary summary = summarise();
    printText(options.output == "json" ? summaryJson(summary) + "\n" : summaryText(summary));
    if (controller.plant.recordFailed()) return int(Exit_Code::Labels);
    if (!allMet(summary)) return int(Exit_Code::ExpectationFailed);
    return int(writer.failed() ? Exit_Code::Output : Exit_Code::Ok);
}

int runSimulator(int argc, char** argv) {
    Options options;
    try {
        if (const std::optional<int> code = readOptions(argc, argv, options)) return *code;
        Log_Writer writer(options);
        const auto warn = [](const std::string& warning) { tellMistake("vornex-sim: warning: " + warning); };
        std::unique_ptr<Played_Record> record = openRecord(options);
        Label_File labels = record ? record->labels() : Label_File();
        if (!options.labels.empty()) labels = readLabelFile(options.labels, options.isStrict, warn);
        return serve(options, labels, std::move(record), writer);
    } catch (const File_Error& error) {
        tellMistake(error.what());
        return int(Exit_Code::Labels);
    } catch (const Output_Error& error) {
        tellMistake(std::string("vornex-sim: ") + error.what());
        return int(error.kind == Output_Error::Kind::Unusable ? Exit_Code::Usage : Exit_Code::Output);
    } catch (const std::exception& error) {
        tellMistake(std::string("vornex-sim: ") + error.what());
        return int(Exit_Code::Usage);
    }
}

}  // namespace
}  // namespace vornex::sim

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a failed write
    return vornex::sim::runSimulator(argc, argv);
}
