// vornex-label watch
#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>

#include "host/Variable_Value.h"
#include "label/Online.h"
#include "label/Watch_Display.h"
#include "label/verbs/Verb_Table.h"
#include "labels/Label_Names.h"
#include "values/Comparison.h"
#include "watch/Csv_Log.h"
#include "watch/Log_Folder.h"
#include "watch/Watch_Events.h"

namespace vornex {

namespace {

struct Watch_Options {
    std::vector<std::string> labels;
    int rounds = 0;
    int interval = 200;
    Template_Index index;
    bool table = false;
    bool raw = false;
    std::string csv;
    std::string until;
    double deadband = 0;
    bool noWait = false;
    double seconds = 0;
    std::string log;
    std::string logFormat = "csv";
    std::string rotate = "1d";
    std::uint64_t keep = 0;
    bool changes = false;
};

const Milliseconds TickTime{250};

class Watch {
public:
    Watch(Tool& userTool, const Watch_Options& watchOptions)
        : tool(userTool),
          options(watchOptions),
          labels(tool.takeRawLabels(options.labels)),
          online(tool, Loss_Told::ByVerb) {}
    Exit_Code run();

private:
    void chooseVariables();
    void chooseOutputs();
    void chooseLog();
    std::string controller() const;
    std::optional<double> changesOnly() const;
    void startPolling();
    void show(const std::function<void(Watch_Output&)>& what);
    void tell(const Watch_News& news);
    bool conditionMet() const;
    bool take(const Watch_News& news);
    Exit_Code end();

    Tool& tool;
    const Watch_Options& options;
    const std::vector<std::string> labels;
    Watch_Events events;
    Online online;
    std::vector<Watched> all;
    std::vector<std::unique_ptr<Watch_Output>> outputs;
    const Log_Folder* log = nullptr;  // among them
    Steady_Time endTime = Steady_Time::max();
    Comparison condition;
    std::size_t conditionAt = 0;  // in `all`
    bool met = false;
    bool giveUpTold = false;  // once for each trouble, not once a round
};

void Watch::chooseVariables() {
    requireTemplate(labels, options.index);
    if (!options.until.empty()) {
        try {
            condition = parseComparison(options.until);
        } catch (const std::invalid_argument& mistake) {
            throw Tool_Error(Exit_Code::Usage, std::string("--until: ") + mistake.what());
        }
    }
    for (Variable& variable : findVariables(online.session, tool.labels(), labels, options.index)) {
        if (options.raw && !variable.bit) seeAs(variable, variable.view);
        Watched watched;
        watched.variable = std::move(variable);
        all.push_back(std::move(watched));
    }
    if (condition.subject.empty()) return;
    bool wholeArray = false;
    Watched watched;
    watched.variable = findVariable(online.session, tool.labels(), condition.subject, options.index, wholeArray);
    if (options.raw && !watched.variable.bit) seeAs(watched.variable, watched.variable.view);
    try {
        fitComparison(condition, formOf(watched.variable));
    } catch (const std::invalid_argument& mistake) {
        throw Tool_Error(Exit_Code::Usage, std::string("--until: ") + mistake.what());
    }
    for (conditionAt = 0; conditionAt < all.size(); ++conditionAt) {
        if (all[conditionAt].variable.text == watched.variable.text) return;
    }
    all.push_back(std::move(watched));  // polled and shown, although not named among the labels
}

void Watch::chooseOutputs() {
    const bool isText = tool.out.format == Output::Format::Text;
    if (tool.options.settings.count("served") && (options.table || !options.csv.empty()))
        throw Tool_Error(Exit_Code::Usage, "--table and --csv are for one controller");
    if (isText && tool.out.quiet) {
        // only the files and the exit code are wanted
    } else if (options.table && isText) {
        outputs.push_back(std::make_unique<Live_Table>(tool.out, online.session.target()));
    } else if (tool.out.format == Output::Format::Influx) {
        outputs.push_back(std::make_unique<Point_Lines>(tool.out, controller(), changesOnly()));
    } else {
        outputs.push_back(std::make_unique<Change_Lines>(tool.out, options.deadband));
    }
    if (!options.csv.empty()) outputs.push_back(std::make_unique<Csv_Log>(options.csv, tool.outputPolicy(), all));
    if (!options.log.empty()) chooseLog();
}

// By its name if it has one.
std::string Watch::controller() const {
    const auto named = tool.options.settings.find("controller");
    return named == tool.options.settings.end() ? online.session.target() : named->second.value;
}

std::optional<double> Watch::changesOnly() const {
    return options.changes ? std::make_optional(options.deadband) : std::nullopt;
}

void Watch::chooseLog() {
    Log_Settings settings;
    settings.folder = options.log;
    if (tool.options.settings.count("served")) settings.folder += "/" + controller();
    settings.format = options.logFormat == "csv"    ? Line_Format::Csv
                      : options.logFormat == "json" ? Line_Format::Json
                                                    : Line_Format::Influx;
    try {
        settings.rotation = parseRotation(options.rotate);
    } catch (const std::invalid_argument& mistake) {
        throw Tool_Error(Exit_Code::Usage, std::string("--rotate: ") + mistake.what());
    }
    settings.keep = options.keep;
    settings.controller = controller();
    settings.changesOnly = changesOnly();
    auto folder = std::make_unique<Log_Folder>(settings, [this](const std::string& words) { tool.out.warn(words); });
    log = folder.get();
    outputs.push_back(std::move(folder));
}

void Watch::startPolling() {
    std::vector<Label_Range> ranges;
    for (const Watched& watched : all)
        ranges.push_back(watched.variable.range);
    const int requests = online.session.poll(ranges, {Milliseconds(options.interval), options.rounds, true});
    tool.out.detail(std::to_string(all.size()) + " variables in " + std::to_string(requests) + " requests a round");
    if (requests == 0) throw Tool_Error(Exit_Code::Label, "the driver made no request of these labels");
}

// An output that ends too early is given up, and the others go on; the last one takes the watch with it.
void Watch::show(const std::function<void(Watch_Output&)>& what) {
    for (auto output = outputs.begin(); output != outputs.end();) {
        try {
            what(**output);
            ++output;
        } catch (const Output_Error& error) {
            if (outputs.size() == 1) throw;
            tool.outputFailed(error);
            output = outputs.erase(output);
        }
    }
}

void Watch::tell(const Watch_News& news) {
    for (const Link_Change& change : news.linkChanges) {
        show([&change](Watch_Output& output) { output.link(change); });
    }
    if (news.goodExchange) giveUpTold = false;
    for (const Give_Up& giveUp : news.giveUps) {
        if (giveUpTold) break;
        giveUpTold = true;
        const Label_Names names(tool.labels());
        std::string what;
        for (const Memory_Range& item : giveUp.items)
            what += (what.empty() ? "" : ", ") + names.of(item.address, item.bytes);
        tool.out.warn("the driver gave up on " + what + ": " + statusText(giveUp.status) + "; " + giveUp.fault);
    }
}

bool Watch::conditionMet() const {
    return !condition.subject.empty() && all[conditionAt].freshness == Freshness::Fresh &&
           condition.metBy(condition.ofRaw ? all[conditionAt].raw : all[conditionAt].value);
}

Exit_Code Watch::end() {
    show([this](Watch_Output& output) { output.finish(all); });
    if (log && log->lostLines()) tool.outputIncomplete(options.log + ": lines are missing in the log");
    tool.out.note(online.statistics.summary());
    if (online.session.interrupted()) return Exit_Code::Interrupted;
    if (met) return Exit_Code::Ok;
    if (!condition.subject.empty()) {
        tool.out.error("the condition '" + options.until + "' was not met");
        return Exit_Code::VerifyMismatch;
    }
    std::size_t missing = 0;
    for (const Watched& watched : all)
        missing += watched.freshness == Freshness::Fresh ? 0 : 1;
    if (missing == 0) return Exit_Code::Ok;
    tool.out.error(std::to_string(missing) + " of " + std::to_string(all.size()) + " values are not fresh");
    return Exit_Code::GaveUp;
}

// The news of one wait. Each round is taken by itself, so that outputs and --rounds miss none.
bool Watch::take(const Watch_News& news) {
    tell(news);
    refresh(online.session, all);
    const bool changed = news.newRound || (!news.linkChanges.empty() && tool.out.dataOnTerminal);
    if (changed) show([&](Watch_Output& output) { output.update(all, news.rounds); });
    if (!changed) show([this](Watch_Output& output) { output.tick(all); });
    met = conditionMet();
    const bool isOver = std::chrono::steady_clock::now() >= endTime;
    if (news.interrupted || met || isOver || (options.rounds > 0 && news.rounds >= options.rounds)) return false;
    if (news.newRound) online.session.roundTaken();
    return true;
}

Exit_Code Watch::run() {
    chooseVariables();
    chooseOutputs();
    online.session.addObserver(events);
    online.connect(options.noWait ? First_Connection::Needed : First_Connection::MayFollow);
    startPolling();
    const std::chrono::duration<double> seconds(options.seconds);
    if (options.seconds > 0)
        endTime = std::chrono::steady_clock::now() + std::chrono::duration_cast<Milliseconds>(seconds);
    Watch_News news;
    do {
        news = events.wait(std::min(endTime, std::chrono::steady_clock::now() + TickTime));
    } while (take(news));
    return end();
}

}  // namespace

void addWatchVerb(Verbs& verbs) {
    const auto own = std::make_shared<Watch_Options>();
    const Page page = {
        "Poll labels and show changes, or a live table",
        "Polls labels through the driver's cyclic list, as a panel does, until Ctrl-C. It goes on while the controller "
        "is away: the loss and the return of the connection are told, values are stale from the loss until they have "
        "come again, and a value that never came is ?, not 0.\n\n"
        "--log keeps the values of every round for days, a line a variable: the files are named by number and time, "
        "the "
        "newest one is gone on with at the next start, and a full disk is told and survived. -o influx prints the line "
        "protocol of InfluxDB, with messages for a collector (E! W! I!) on standard error.\n\n"
        "Exit status 4 tells that values were not fresh when the rounds ended, 5 that --until was not met by then.",
        {{"watch -l plant.json Speed 'Motors[*].Temp' --table", "A live table."},
         {"watch -l plant.json Speed --until 'Speed>100' -n 50", "Wait for a value, 50 rounds at most."},
         {"watch -l plant.json Motors -i 1000 --csv log.csv -o json",
          "Changes as JSON lines, and a log of every round."},
         {"watch -l plant.json '*' --log press3 --keep 30 --changes -q", "The changes of the last month."},
         {"watch -l plant.json '*' -i 1000 -o influx", "Points for a database."}}};
    CLI::App& verb = verbs.add("watch", page, UsesLink | UsesInflux | UsesSeveral,
                               [own](Tool& tool) { return Watch(tool, *own).run(); });
    addLabelArguments(verb, own->labels);
    addFlag(verb, "--table", own->table, "A table that is kept up to date.");
    addRoundsOption(verb, own->rounds);
    addDuration(verb, "-d,--duration", own->seconds, 0, 1e8, "End after so long; 0: go on.");
    addIntervalOption(verb, own->interval);
    addText(verb, "--until", "CONDITION", own->until,
            "End when it is met: LABEL, one of > >= < <= == !=, and a value.");
    addNumber(verb, "--deadband", "X", own->deadband, 0, 1e300,
              "Show a number again only when it has moved by more than X.");
    addFlag(verb, "--changes", own->changes, "Keep changes alone with --log and -o influx, instead of every round.");
    addText(verb, "--csv", "FILE", own->csv, "Write a line with all values for every round.");
    addText(verb, "--log", "DIR", own->log, "Keep the values in files of this folder.");
    addChoice(verb, "--log-format", {"csv", "json", "influx"}, own->logFormat, "How these files are written.");
    addText(verb, "--rotate", "WHEN", own->rotate, "A new file each hour or day (1h, 1d), or at a size (50M).");
    addNumber(verb, "--keep", "N", own->keep, 0, 1000000, "Keep the newest N of these files; 0: all.");
    addNoWaitOption(verb, own->noWait);
    addRawOption(verb, own->raw);
    addIndexOptions(verb, own->index);
}

}  // namespace vornex
