// vornex-sim: puts the parts together.
#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "Control.h"
#include "Control_Port.h"
#include "Options.h"
#include "Server.h"
#include "Summary.h"

namespace vornex::sim {
namespace {

// Messages with the time since the start in front, to standard error or a file; nothing when quiet.
class Log_Writer {
public:
    explicit Log_Writer(const Options& options) : quiet(options.quiet) {
        if (options.logFile.empty()) return;
        file.open(options.logFile, std::ios::app);
        if (!file) throw std::runtime_error(options.logFile + ": cannot be written");
    }
    void write(const std::string& text) {
        if (quiet) return;
        char time[32];
        const std::chrono::duration<double> since = std::chrono::steady_clock::now() - started;
        std::snprintf(time, sizeof time, "%9.3f ", since.count());
        (file.is_open() ? file : std::cerr) << time << text << std::endl;
    }

private:
    bool quiet;
    std::ofstream file;
    std::chrono::steady_clock::time_point started = std::chrono::steady_clock::now();
};

unsigned short portOf(const Options& options, const Label_File& labels) {
    if (options.port) return *options.port;
    if (labels.target.empty()) return 0;
    return static_cast<unsigned short>(std::stoi(labels.target.substr(labels.target.rfind(':') + 1)));
}

Controller makeController(const Options& options, const Label_File& labels, const Log& log) {
    const Pattern pattern = options.pattern.empty() ? Pattern() : parsePattern(options.pattern);
    Fault_Rules faults(options.seed);
    for (const std::string& fault : options.faults)
        faults.add(fault);
    return Controller(Plant(labels, pattern, options.seed), std::move(faults), log);
}

std::vector<Expectation> readExpectations(const Options& options, const Controller& controller) {
    std::vector<Expectation> expectations;
    for (const std::string& text : options.expectations) {
        expectations.push_back(parseExpectation(text));
        valueOf(controller.counters(),
                expectations.back().counter);  // a name nobody counts is a mistake now, not later
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
    if (options.control == "-") return controlByStdin(running.io, handler);
    if (!options.control.empty()) {
        running.controlSocket = std::make_unique<Control_Socket>(running.io, options.control, handler);
    }
}

int serve(const Options& options, const Label_File& labels, Log_Writer& writer) {
    const Log log = [&writer](const std::string& text) { writer.write(text); };
    const Log trace = options.verbose ? log : [](const std::string&) {};
    Controller controller = makeController(options, labels, log);
    const std::vector<Expectation> expectations = readExpectations(options, controller);

    Running running;
    Server server(running.io, controller, options.caps, trace);
    const auto summarise = [&] {
        return Summary{server.now() / 1000, options.seed, controller.counters(), controller.faults.rules(),
                       expectations};
    };
    // after the answer to "quit" is out
    const auto quit = [&] { asio::post(running.io, [&server] { server.stop(false); }); };
    running.signals.async_wait([&server](const asio::error_code& error, int) {
        if (!error) server.stop(false);
    });
    try {
        server.listen(options.listen, portOf(options, labels));
        startControl(options, running, controller,
                     {[&server] { return server.now(); }, [&] { return summaryJson(summarise()); }, quit});
    } catch (const std::system_error& error) {
        std::cerr << "vornex-sim: cannot listen on " << options.listen << " port " << portOf(options, labels) << ": "
                  << error.what() << std::endl;
        return int(Exit_Code::NoPort);
    }
    std::cout << "listening " << server.address() << std::endl;
    running.io.run();
    const Summary summary = summarise();
    std::cout << (options.output == "json" ? summaryJson(summary) + "\n" : summaryText(summary)) << std::flush;
    return int(allMet(summary) ? Exit_Code::Ok : Exit_Code::ExpectationFailed);
}

int runSimulator(int argc, char** argv) {
    Options options;
    if (const std::optional<int> code = readOptions(argc, argv, options)) return *code;
    try {
        Log_Writer writer(options);
        const Label_File labels = options.labels.empty() ? Label_File() : readLabelFile(options.labels);
        return serve(options, labels, writer);
    } catch (const File_Error& error) {
        std::cerr << error.what() << std::endl;
        return int(Exit_Code::Labels);
    } catch (const std::exception& error) {
        std::cerr << "vornex-sim: " << error.what() << std::endl;
        return int(Exit_Code::Usage);
    }
}

}  // namespace
}  // namespace vornex::sim

int main(int argc, char** argv) { return vornex::sim::runSimulator(argc, argv); }
