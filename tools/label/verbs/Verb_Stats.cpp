// vornex-label stats
#include <memory>

#include "label/Workload.h"
#include "label/verbs/Verb_Table.h"
#include "text/Number.h"
#include "watch/Watch_Events.h"

namespace vornex {

namespace {

Row figuresRow(const Statistics_Figures& now) {
    Row row;
    row.add(key::seconds, Value::number(fixedNumber(now.seconds, 3)))
        .add(key::rounds, now.rounds)
        .add(key::exchanges, now.attempts);
    row.add(key::goodExchanges, now.good).add(key::retries, now.retries).add(key::givenUp, now.gaveUp());
    row.add(key::connectionsLost, now.linkLosses).add(key::bytesSent, now.bytesSent);
    row.add(key::bytesReceived, now.bytesReceived).add(key::dataBytes, now.dataBytes);
    row.add(key::latencyMedianUs, now.latency(0.5))
        .add(key::latency99Us, now.latency(0.99))
        .add(key::latencyMaxUs, now.latency(1));
    return row;
}

// One line a second, of that second alone.
void showSecond(Output& out, const Statistics_Figures& before, const Statistics_Figures& now) {
    const double time = now.seconds - before.seconds;
    Row row = figuresRow(now);
    const double exchanges = per(static_cast<double>(now.attempts - before.attempts), time);
    const double data = per(static_cast<double>(now.dataBytes - before.dataBytes), time);
    row.add(key::exchangesPerSecond, Value::number(fixedNumber(exchanges, 1)));
    out.row(row, fixedNumber(now.seconds, 0) + " s: " + fixedNumber(exchanges, 0) + " exchanges/s, " +
                     fixedNumber(data / 1000, 1) + " kB/s data, " + std::to_string(now.retries - before.retries) +
                     " retries, " + std::to_string(now.gaveUp() - before.gaveUp()) + " given up");
    out.flush();
}

std::string listText(const std::map<std::string, std::uint64_t>& counts) {
    std::string text;
    for (const auto& [name, count] : counts)
        text += (text.empty() ? "" : ", ") + name + " " + std::to_string(count);
    return text;
}

void showPacking(Output& out, const Workload& work, const Statistics_Figures& now) {
    const double good = static_cast<double>(now.good);
    const double wanted = static_cast<double>(work.bytesWanted) * now.rounds;
    out.text("packing: " + std::to_string(work.variables) + " variables of " + std::to_string(work.bytesWanted) +
             " bytes in " + std::to_string(work.requests) + " requests a round; a frame carried " +
             fixedNumber(per(static_cast<double>(now.itemsRead), good), 1) + " requests and " +
             fixedNumber(per(static_cast<double>(now.dataBytes), good), 1) + " data bytes, " +
             fixedNumber(100 * per(wanted, static_cast<double>(now.dataBytes)), 0) + " % of them wanted");
}

void showSummary(Output& out, const std::string& target, const Workload& work, const Statistics_Figures& now) {
    std::map<std::string, std::uint64_t> bands;
    for (const auto& [band, count] : now.giveUps)
        bands[bandText(band) + " (" + std::to_string(band) + ")"] = count;
    if (out.format != Output::Format::Text) {
        Row row = figuresRow(now);
        row.add(key::variables, static_cast<std::uint64_t>(work.variables)).add(key::bytesWanted, work.bytesWanted);
        row.add(key::requestsPerRound, work.requests).add(key::requestsRead, now.itemsRead);
        row.add(key::faultList, listText(now.faults)).add(key::giveUpList, listText(bands));
        return out.row(row, "");
    }
    out.text("--- " + target + " ---");
    out.text(std::to_string(now.attempts) + " exchanges in " + fixedNumber(now.seconds, 1) + " s (" +
             fixedNumber(per(static_cast<double>(now.attempts), now.seconds), 1) + "/s), " + std::to_string(now.good) +
             " good, " + std::to_string(now.retries) + " retries, " + std::to_string(now.gaveUp()) + " given up, " +
             std::to_string(now.linkLosses) + " connections lost");
    out.text("sent " + std::to_string(now.bytesSent) + " bytes, received " + std::to_string(now.bytesReceived) +
             ", data " + std::to_string(now.dataBytes) + "; " + std::to_string(now.rounds) + " rounds (" +
             fixedNumber(per(now.rounds, now.seconds), 1) + "/s)");
    if (!now.faults.empty()) out.text("faults: " + listText(now.faults));
    if (!bands.empty()) out.text("given up: " + listText(bands));
    out.text("latency p50 " + millisecondsText(now.latency(0.5)) + ", p99 " + millisecondsText(now.latency(0.99)) +
             ", max " + millisecondsText(now.latency(1)));
    showPacking(out, work, now);
}

Exit_Code stats(Tool& tool, Polled_Labels options) {
    options.labels = tool.takeRawLabels(options.labels);
    Watch_Events events;
    Online online(tool, Loss_Told::ByVerb);
    online.session.addObserver(events);
    const Workload work = startPolling(tool, online.session, options);
    const Steady_Time start = std::chrono::steady_clock::now();
    const std::chrono::duration<double> most(options.seconds > 0 ? options.seconds : 1e9);
    const Steady_Time end = start + std::chrono::duration_cast<Steady_Time::duration>(most);
    Steady_Time next = start + std::chrono::seconds(1);
    Statistics_Figures before;
    for (;;) {
        const Watch_News news = events.wait(std::min(next, end));
        const Statistics_Figures now = online.statistics.figures();
        const Steady_Time time = std::chrono::steady_clock::now();
        for (const Link_Change& change : news.linkChanges)
            tool.out.note(tool.out.time(change.at) + "  -- " + linkText(change));
        const bool enough = options.rounds > 0 && news.rounds >= options.rounds;
        if (news.interrupted || enough || time >= end) {
            showSummary(tool.out, online.session.target(), work, now);
            if (news.interrupted) return Exit_Code::Interrupted;
            return now.good > 0 ? Exit_Code::Ok : Exit_Code::GaveUp;
        }
        if (time < next) continue;
        showSecond(tool.out, before, now);
        before = now;
        next += std::chrono::seconds(1);
    }
}

}  // namespace

void addStatsVerb(Verbs& verbs) {
    const auto own = std::make_shared<Polled_Labels>();
    const Page page = {
        "Poll labels and measure the link",
        "Polls labels as fast as the controller answers, or at an interval, and tells exchanges, data, retries, "
        "give-ups by result code, latency and how the driver packed the requests: a line a second and a summary at the "
        "end, also after Ctrl-C.\n\nExit status 4 tells that no exchange was good.",
        {{"stats -l plant.json '*' -d 10", "Ten seconds over all labels."},
         {"stats -l plant.json Motors -i 100 -n 600", "A minute at the pace of a panel."},
         {"stats -l plant.json Speed -d 5 -o json", "An object a second, the last one the summary."}}};
    CLI::App& verb = verbs.add("stats", page, UsesLink | UsesSeveral, [own](Tool& tool) { return stats(tool, *own); });
    addLabelArguments(verb, own->labels);
    addDuration(verb, "-d,--duration", own->seconds, 0, 1e8, "End after so long; 0: go on.");
    addRoundsOption(verb, own->rounds);
    addIntervalOption(verb, own->interval);
    addNoWaitOption(verb, own->noWait);
    addIndexOptions(verb, own->index);
}

}  // namespace vornex
