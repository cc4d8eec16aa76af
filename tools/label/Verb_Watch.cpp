// vornex-label watch
#include <memory>
#include <stdexcept>

#include "Label_Names.h"
#include "Online.h"
#include "Status_Text.h"
#include "Value_View.h"
#include "Variable_Value.h"
#include "Verb_Table.h"
#include "Watch_Condition.h"
#include "Watch_Events.h"
#include "Watch_View.h"

namespace vornex {

namespace {

struct Watch_Options {
    std::vector<std::string> labels;
    int rounds = 0;
    int interval = 200;
    int index = 0;
    bool table = false;
    std::string csv;
    std::string until;
    double deadband = 0;
};

class Watch {
public:
    Watch(Tool& userTool, const Watch_Options& watchOptions) : tool(userTool), options(watchOptions), online(tool) {}
    Exit_Code run();

private:
    void chooseVariables();
    void chooseViews();
    void startPolling();
    void tell(const Watch_News& news);
    void refresh();
    bool conditionMet() const;
    Exit_Code end(bool met);

    Tool& tool;
    const Watch_Options& options;
    Watch_Events events;
    Online online;
    std::vector<Watched> all;
    std::vector<std::unique_ptr<Watch_View>> views;
    Watch_Condition condition;
    std::size_t conditionAt = 0;  // in `all`
    bool giveUpTold = false;      // once for each trouble, not once a round
};

void Watch::chooseVariables() {
    std::vector<std::string> arguments = options.labels;
    if (!options.until.empty()) {
        try {
            condition = parseCondition(options.until);
        } catch (const std::invalid_argument& mistake) {
            throw Tool_Error(Exit_Code::Usage, std::string("--until: ") + mistake.what());
        }
    }
    for (Variable& variable : findVariables(online.session, tool.labels(), arguments, options.index)) {
        Watched watched;
        watched.variable = std::move(variable);
        all.push_back(std::move(watched));
    }
    if (condition.label.empty()) return;
    bool wholeArray = false;
    Watched watched;
    watched.variable = findVariable(online.session, tool.labels(), condition.label, options.index, wholeArray);
    for (conditionAt = 0; conditionAt < all.size(); ++conditionAt) {
        if (all[conditionAt].variable.text == watched.variable.text) return;
    }
    all.push_back(std::move(watched));  // polled and shown, although not named among the labels
}

void Watch::chooseViews() {
    if (options.table && tool.out.format == Output::Format::Text) {
        views.push_back(std::make_unique<Live_Table>(tool.out, online.session.target()));
    } else {
        views.push_back(std::make_unique<Change_Lines>(tool.out, options.deadband));
    }
    if (!options.csv.empty()) views.push_back(std::make_unique<Csv_Log>(options.csv));
}

void Watch::startPolling() {
    std::vector<Label_Range> ranges;
    for (const Watched& watched : all)
        ranges.push_back(watched.variable.range);
    const int requests = online.session.poll(ranges, Milliseconds(options.interval));
    tool.out.detail(std::to_string(all.size()) + " variables in " + std::to_string(requests) + " requests a round");
    if (requests == 0) throw Tool_Error(Exit_Code::Label, "the driver made no request of these labels");
}

// The values as the driver has them now. One that no reply has filled stays null.
void Watch::refresh() {
    for (Watched& watched : all) {
        const Variable& variable = watched.variable;
        watched.freshness = online.session.freshness(variable.address, variable.bytes);
        if (watched.freshness == Freshness::Unknown) continue;
        Value value = viewValue(variable.view, online.session.bytes(variable.range));
        if (watched.value.kind != Value::Kind::Null && value != watched.value) ++watched.changes;
        watched.value = std::move(value);
    }
}

void Watch::tell(const Watch_News& news) {
    for (const Link_Change& change : news.linkChanges) {
        for (const auto& view : views)
            view->link(change);
    }
    if (news.goodExchange) giveUpTold = false;
    for (const Give_Up& giveUp : news.giveUps) {
        if (giveUpTold) break;
        giveUpTold = true;
        const Label_Names names(tool.labels());
        std::string what;
        for (const Frame_Item& item : giveUp.items)
            what += (what.empty() ? "" : ", ") + names.of(item.address, item.length);
        tool.out.warn("the driver gave up on " + what + ": " + statusText(giveUp.status) + "; " + giveUp.fault);
    }
}

bool Watch::conditionMet() const {
    return !condition.label.empty() && all[conditionAt].freshness == Freshness::Fresh &&
           condition.metBy(all[conditionAt].value);
}

Exit_Code Watch::end(bool met) {
    for (const auto& view : views)
        view->finish(all);
    tool.out.note(online.statistics.summary());
    if (online.session.interrupted()) return Exit_Code::Interrupted;
    if (met) return Exit_Code::Ok;
    if (!condition.label.empty()) {
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

Exit_Code Watch::run() {
    chooseVariables();
    chooseViews();
    online.session.addObserver(events);
    online.connect();
    startPolling();
    for (bool first = true;;) {
        Watch_News news = events.wait();
        // The connection that was made at the start is no news.
        if (first && !news.linkChanges.empty()) news.linkChanges.erase(news.linkChanges.begin());
        first = false;
        tell(news);
        refresh();
        if (news.newRound || !news.linkChanges.empty()) {
            if (news.newRound || tool.out.dataOnTerminal) {
                for (const auto& view : views)
                    view->update(all);
            }
        }
        const bool met = conditionMet();
        const bool enough = options.rounds > 0 && news.rounds >= options.rounds;
        if (news.interrupted || met || enough) return end(met);
    }
}

}  // namespace

Verb watchVerb() {
    const auto own = std::make_shared<Watch_Options>();
    Verb verb;
    verb.name = "watch";
    verb.summary = "Poll labels and show changes, or a live table";
    verb.description =
        "Polls labels through the driver's cyclic list, as a panel does, until Ctrl-C. It goes on while the controller "
        "is away: the loss and the return of the connection are told, values are stale from the loss until they have "
        "come again, and a value that never came is ?, not 0.\n\n"
        "Exit status 4 tells that values were not fresh when the rounds ended, 5 that --until was not met by then.";
    verb.options = {
        Option("LABEL", "", "A label, an array or structure, or a glob such as 'Motors[*].Speed'.", &own->labels)
            .must(),
        Option("--table", "", "A table that is kept up to date.", &own->table),
        Option("-n,--rounds", "N", "End after N rounds (0: go on).", &own->rounds).between(0, 1000000000),
        Option("-i,--interval", "MS", "Least time from round to round (200).", &own->interval).between(0, 86400000),
        Option("--until", "CONDITION", "End when it is met: LABEL, one of > >= < <= == !=, and a value.", &own->until),
        Option("--deadband", "X", "Show a number again only when it has moved by more than X.", &own->deadband)
            .between(0, 1e300),
        Option("--csv", "FILE", "Write a line with all values for every round.", &own->csv),
        Option("--index", "N", "The index that takes the place of %% in a template (0).", &own->index)
            .between(-2147483647, 2147483647),
    };
    verb.examples = {
        {"watch -l plant.json Speed 'Motors[*].Temp' --table", "A live table."},
        {"watch -l plant.json Speed --until 'Speed>100' -n 50", "Wait for a value, 50 rounds at most."},
        {"watch -l plant.json Motors -i 1000 --csv log.csv -o json",
         "Changes as JSON lines, and a log of every round."},
    };
    verb.run = [own](Tool& tool) { return Watch(tool, *own).run(); };
    return verb;
}

}  // namespace vornex
