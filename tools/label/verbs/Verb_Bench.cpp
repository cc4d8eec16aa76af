// vornex-label bench
#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>

#include "label/Workload.h"
#include "label/verbs/Verb_Table.h"
#include "text/Number.h"
#include "watch/Watch_Events.h"

namespace vornex {

namespace {

const int Sizes[] = {32, 100, 240, 500, 999};
const double NearlyAsMany = 0.95;  // of the rounds a second: closer than that, chance decides

// What one size of requests came to.
struct Trial {
    int size = 0;
    Workload work;
    Statistics_Figures figures;
    double seconds = 0;

    double roundsPerSecond() const { return per(figures.rounds, seconds); }
    double exchangesPerRound() const { return per(static_cast<double>(figures.goodOfRounds), figures.rounds); }
    double bytesPerRound() const { return per(static_cast<double>(figures.dataBytesOfRounds), figures.rounds); }
    // On the wire, frames and all.
    double trafficPerRound() const {
        const std::uint64_t bytes = figures.bytesSent + figures.bytesReceived;
        return per(static_cast<double>(bytes), static_cast<double>(figures.attempts)) * exchangesPerRound();
    }
    bool isSound() const { return figures.rounds > 0 && figures.gaveUp() == 0; }
};

// Polls as fast as the controller answers; nothing when interrupted.
std::optional<Trial> measure(Tool& tool, Polled_Labels polled) {
    polled.labels = tool.takeRawLabels(polled.labels);
    Watch_Events events;
    Online online(tool);
    online.session.addObserver(events);
    Trial trial;
    trial.size = tool.options.host.maxBytes;
    trial.work = startPolling(tool, online.session, polled);
    const Steady_Time start = std::chrono::steady_clock::now();
    const Steady_Time end =
        start + std::chrono::duration_cast<Steady_Time::duration>(std::chrono::duration<double>(polled.seconds));
    while (std::chrono::steady_clock::now() < end) {
        if (events.wait(end).interrupted) return std::nullopt;
    }
    trial.figures = online.statistics.figures();
    trial.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return trial;
}

std::string roundWords(const Trial& trial) {
    if (trial.figures.goodOfRounds == 0) return "no good exchange";
    return fixedNumber(trial.exchangesPerRound(), 1) + " exchanges a round, " + std::to_string(trial.work.bytesWanted) +
           " of " + fixedNumber(trial.bytesPerRound(), 0) + " bytes read are wanted";
}

void show(Output& out, const Trial& trial, const std::string& text, const Value& reason) {
    const Statistics_Figures& now = trial.figures;
    const double exchanges = per(static_cast<double>(now.good), trial.seconds);
    const double data = per(static_cast<double>(now.dataBytes), trial.seconds);
    Row row;
    row.add(key::bytesPerRequest, trial.size).add(key::requestsPerRound, trial.work.requests);
    row.add(key::exchangesPerRound, Value::number(fixedNumber(trial.exchangesPerRound(), 2)));
    row.add(key::bytesWanted, trial.work.bytesWanted);
    row.add(key::dataBytesPerRound, Value::number(fixedNumber(trial.bytesPerRound(), 0)));
    row.add(key::exchangesPerSecond, Value::number(fixedNumber(exchanges, 1)));
    row.add(key::roundsPerSecond, Value::number(fixedNumber(trial.roundsPerSecond(), 1)));
    row.add(key::dataBytesPerSecond, Value::number(fixedNumber(data, 0)));
    row.add(key::retries, now.retries).add(key::givenUp, now.gaveUp());
    row.add(key::latencyMedianUs, now.latency(0.5)).add(key::latency99Us, now.latency(0.99)).add(key::reason, reason);
    out.row(row, text);
    out.flush();
}

void showTrial(Output& out, const Trial& trial) {
    const Statistics_Figures& now = trial.figures;
    show(out, trial,
         "-m " + std::to_string(trial.size) + ": " + fixedNumber(trial.roundsPerSecond(), 1) + " rounds/s, " +
             roundWords(trial) + ", " + std::to_string(trial.work.requests) + " requests, latency p50 " +
             millisecondsText(now.latency(0.5)) + ", p99 " + millisecondsText(now.latency(0.99)) +
             (now.gaveUp() > 0 ? ", " + std::to_string(now.gaveUp()) + " given up" : ""),
         Value());
}

// The most rounds a second; of those that are as fast, the one with the fewest bytes on the wire.
void recommend(Output& out, std::vector<Trial> trials) {
    const auto isBad = [](const Trial& trial) { return !trial.isSound(); };
    trials.erase(std::remove_if(trials.begin(), trials.end(), isBad), trials.end());
    if (trials.empty()) return out.warn("no size came to a round without give-ups: none can be recommended");
    double fastest = 0;
    for (const Trial& trial : trials)
        fastest = std::max(fastest, trial.roundsPerSecond());
    std::vector<Trial> fast;
    std::copy_if(trials.begin(), trials.end(), std::back_inserter(fast),
                 [fastest](const Trial& trial) { return trial.roundsPerSecond() >= NearlyAsMany * fastest; });
    const Trial& best = *std::min_element(fast.begin(), fast.end(), [](const Trial& one, const Trial& other) {
        return one.trafficPerRound() < other.trafficPerRound();
    });
    const bool isAlone = fast.size() == 1;
    const std::string reason = std::string(isAlone ? "the most rounds a second" : "as many rounds a second as any") +
                               " (" + fixedNumber(best.roundsPerSecond(), 1) + ")" +
                               (isAlone ? "" : ", with the fewest bytes on the wire") + ": " + roundWords(best);
    show(out, best, "take -m " + std::to_string(best.size) + ": " + reason, reason);
}

Exit_Code bench(Tool& tool, const Polled_Labels& polled) {
    std::vector<Trial> trials;
    std::uint64_t good = 0;
    for (const int size : Sizes) {
        Common_Options sized = tool.options;
        sized.host.maxBytes = size;
        Tool sizedTool(sized);  // with a driver that knows nothing of the size before
        const std::optional<Trial> trial = measure(sizedTool, polled);
        if (!trial) return Exit_Code::Interrupted;
        showTrial(tool.out, *trial);
        good += trial->figures.good;
        trials.push_back(*trial);
    }
    recommend(tool.out, std::move(trials));
    return good > 0 ? Exit_Code::Ok : Exit_Code::GaveUp;
}

}  // namespace

void addBenchVerb(Verbs& verbs) {
    const auto own = std::make_shared<Polled_Labels>();
    own->seconds = 1;
    const Page page = {
        "Find the request size that suits the link",
        "Polls the labels as fast as the controller answers, with requests of at most 32, 100, 240, 500 and 999 bytes "
        "one after the other, and tells rounds, exchanges, bytes and latency of each. The last line says which one to "
        "take for -m, and for the panel's own setting: the one with the most rounds a second, and of those that are "
        "within 5 % of it the one with the fewest bytes on the wire.\n\nExit status 4 tells that no exchange was good.",
        {{"bench -l plant.json '*'", "All labels, a second for each size."},
         {"bench -l plant.json Motors Line -d 10", "What a panel with these labels would do."},
         {"bench -l plant.json '*' -o csv", "A table for a spreadsheet; the last row has the reason."}}};
    CLI::App& verb = verbs.add("bench", page, UsesLink, [own](Tool& tool) { return bench(tool, *own); });
    addLabelArguments(verb, own->labels);
    addDuration(verb, "-d,--duration", own->seconds, 0.01, 3600, "How long each size is tried.");
    addIndexOptions(verb, own->index);
}

}  // namespace vornex
