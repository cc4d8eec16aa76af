// vornex-edge: puts the parts together.
#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "cli/Defaults.h"
#include "edge/Edge_Options.h"
#include "edge/Edge_Run.h"
#include "edge/payload/Wire_Value.h"
#include "text/Output_File.h"
#include "text/Text.h"
#include "text/Text_Input.h"

namespace vornex::edge {
namespace {

enum class Exit_Code { Ok = 0, Usage = 1, Label = 2, Library = 6, State = 8 };

// SIGTERM and SIGINT end the waits while this lives; later ones are too late to matter.
class Stop_Signals {
public:
    explicit Stop_Signals(Wait_Point& waiting) {
        stopped = &waiting;
        set([](int) { stopped->stop(); });
    }
    ~Stop_Signals() { set(SIG_IGN); }
    Stop_Signals(const Stop_Signals&) = delete;
    Stop_Signals& operator=(const Stop_Signals&) = delete;

private:
    static void set(void (*handler)(int)) {
        std::signal(SIGTERM, handler);
        std::signal(SIGINT, handler);
    }
    static inline Wait_Point* stopped = nullptr;
};

// A message that nobody takes is not waited for.
void tellOnError(const std::string& words) {
    static Output_File errors = Output_File::standardError();
    try {
        if (errors.wouldWait()) return;
        errors.write("vornex-edge: " + words + "\n");
        errors.flush();
    } catch (const Output_Error&) {
    }
}

std::string passwordOf(const std::string& file) {
    if (file.empty()) return "";
    std::string password = trimmed(split(wholeText(file), '\n')[0]);
    std::error_code none;
    const std::filesystem::perms rights = std::filesystem::status(file, none).permissions();
    if (!none && (rights & std::filesystem::perms::others_read) != std::filesystem::perms::none)
        tellOnError(file + ": everybody can read this password");
    return password;
}

std::vector<std::string> writableOf(const Edge_Options& options) {
    std::vector<std::string> patterns;
    for (const std::string& pattern : splitTrimmed(options.writable, ';')) {
        if (!pattern.empty()) patterns.push_back(pattern);
    }
    return patterns;
}

Run_Settings settingsOf(const Edge_Options& options, const Published_Labels& labels) {
    Run_Settings settings;
    settings.node.ids = options.ids;
    settings.node.primaryHost = options.primaryHost;
    settings.node.metrics = labels.metrics();
    settings.node.usesAliases = options.usesAliases;
    settings.broker.address = parseHostPort(options.broker);
    settings.broker.clientId = options.ids.group + "-" + options.ids.node;
    settings.broker.user = options.user;
    settings.broker.password = passwordOf(options.passwordFile);
    settings.broker.caFile = options.caFile;
    settings.broker.certificate = options.certificate;
    settings.broker.key = options.key;
    settings.broker.isUnverified = options.isUnverified;
    settings.stateFolder = options.stateFolder;
    settings.storeBytes = std::uint64_t(options.storeMiB) << 20;
    return settings;
}

void printMetrics(const Topics& topics, const Published_Labels& labels) {
    std::string text = topics.deviceBirth + "\n";
    for (const Metric_Entry& entry : labels.metrics()) {
        text += "  " + entry.name + "  " + typeName(entry.type);
        for (const Property& property : entry.properties)
            text.append("  ").append(property.key).append("=").append(typedText(property.type, property.value));
        text += entry.isWritable ? "  writable\n" : "\n";
    }
    printText(text);
}

Exit_Code serve(const Edge_Options& options) {
    if (options.labelFile.empty()) throw std::invalid_argument("no label file: -l FILE names one");
    if (options.poll.empty()) throw std::invalid_argument("nothing to publish: --poll says what");
    if (options.stateFolder.empty() && !options.checksOnly)
        throw std::invalid_argument("--state DIR is needed: values are kept there while the broker is away");
    const Label_File file = readLabelFile(options.labelFile, options.isStrict,
                                          [](const std::string& warning) { tellOnError("warning: " + warning); });
    const Driver_Library library(options.library);
    Session session(library, options.host, file);
    Published_Labels labels(session, file, parsePollGroups(options.poll), writableOf(options));
    const Run_Settings settings = settingsOf(options, labels);
    if (options.checksOnly) {
        printMetrics(Topics(options.ids, options.primaryHost), labels);
        return Exit_Code::Ok;
    }
    Wait_Point waiting;
    const Stop_Signals signals(waiting);
    const auto tell = [&options](const std::string& words) {
        if (!options.quiet) tellOnError(words);
    };
    Edge_Run(settings, session, labels, waiting, tell).run();
    return Exit_Code::Ok;
}

Exit_Code guarded(const std::function<Exit_Code()>& work) {
    const auto end = [](const std::exception& reason, Exit_Code code) {
        tellOnError(reason.what());
        return code;
    };
    try {
        return work();
    } catch (const Host_Error& error) {
        if (error.kind == Host_Error::Kind::Library) return end(error, Exit_Code::Library);
        return end(error, error.kind == Host_Error::Kind::Label ? Exit_Code::Label : Exit_Code::Usage);
    } catch (const File_Error& mistake) {
        return end(mistake, Exit_Code::Label);
    } catch (const Store_Error& error) {
        return end(error, Exit_Code::State);
    } catch (const std::invalid_argument& mistake) {
        return end(mistake, Exit_Code::Usage);
    }
}

}  // namespace
}  // namespace vornex::edge

int main(int argc, char** argv) {
    using namespace vornex::edge;
    std::signal(SIGPIPE, SIG_IGN);  // a closed pipe or socket is a failed write, told by the one who writes
    Edge_Options options;
    std::optional<int> end;
    const Exit_Code code = guarded([&] {
        end = readOptions(argc, argv, options);
        return end ? Exit_Code::Ok : serve(options);
    });
    return end ? *end : static_cast<int>(code);
}
