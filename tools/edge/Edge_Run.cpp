#include "edge/Edge_Run.h"

#include <algorithm>
#include <chrono>

namespace vornex::edge {

namespace {

const std::size_t ValuesPerMessage = 100;
const std::size_t KeptAtOnce = 10;     // records that are sent before the broker has had them
const std::uint64_t KeptEveryMs = 20;  // so that 50,000 values a second are made up for at most
const std::uint64_t AnswerMs = 10000;  // that a broker has for its yes
const std::uint64_t ShortestPauseMs = 200, LongestPauseMs = 5000;
const std::uint64_t LossMs = 500;  // a retry of the link is no death of the controller
const int LeaveMs = 2000;

Moment momentNow() {
    using namespace std::chrono;
    const auto wall = duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    const auto steady = duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
    return {static_cast<std::uint64_t>(wall), static_cast<std::uint64_t>(steady)};
}

}  // namespace

Edge_Run::Edge_Run(const Run_Settings& runSettings, Session& controllerSession, Published_Labels& publishedLabels,
                   Wait_Point& waitPoint, Tell tellWords)
    : settings(runSettings),
      session(controllerSession),
      labels(publishedLabels),
      waiting(waitPoint),
      tellOthers(std::move(tellWords)),
      store(settings.stateFolder, settings.storeBytes),
      birthNumber(settings.stateFolder + "/bdseq"),
      node(settings.node, *this),
      link(settings.broker, *this) {
    for (std::size_t i = 0; i < settings.node.metrics.size(); ++i)
        byName.emplace(settings.node.metrics[i].name, i);
    const Store_Counts& counts = store.counts();
    if (counts.records > 0) tellOthers(std::to_string(counts.records) + " records of values wait to be sent");
    if (counts.tornBytes > 0) tellOthers(std::to_string(counts.tornBytes) + " bytes of the store were no whole record");
}

void Edge_Run::run() {
    session.addObserver(events);
    session.addObserver(*this);
    std::vector<Label_Range> ranges;
    for (const Watched& watched : labels.watched())
        ranges.push_back(watched.variable.range);
    session.connect(First_Connection::MayFollow);
    session.poll(ranges, {Milliseconds(labels.intervalMs()), 0, true});
    while (!waiting.stopped()) {
        step();
        const auto longest = std::chrono::steady_clock::now() + Milliseconds(50);
        waiting.until(longest, link.socket(), link.socket() >= 0 ? link.wantedEvents() : short(0));
    }
    now = momentNow();
    node.end(now);
    keepUnconfirmed();
    session.stop();
}

void Edge_Run::step() {
    now = momentNow();
    connectBroker();
    link.service();
    takeNews();
    doWrites();
    sendKept();
    node.tick(now);
    if (mark == 0 && !unconfirmed.empty()) {
        mark = link.mark(node.topics().nodeDeath + "/none");
        marked = unconfirmed.size();
    }
    syncStore();
}

void Edge_Run::connectBroker() {
    if (brokerAnswered || now.steadyMs < brokerDeadlineMs) return;
    if (brokerWanted) {
        link.drop();
        return brokerLost("no answer");
    }
    brokerWanted = true;
    brokerDeadlineMs = now.steadyMs + AnswerMs;
    const int number = birthNumber.next();
    const std::string problem = birthNumber.takeProblem();
    if (!problem.empty()) tell(problem);
    link.connect(node.will(number, now));
}

void Edge_Run::brokerConnected() {
    brokerAnswered = true;
    pauseMs = 0;
    tell("connected to the broker");
    node.connected(now);
}

void Edge_Run::brokerLost(const std::string& reason) {
    tell("no connection to the broker: " + reason);
    node.disconnected();
    keepUnconfirmed();
    brokerAnswered = brokerWanted = false;
    pauseMs = std::min(std::max(pauseMs * 2, ShortestPauseMs), LongestPauseMs);
    brokerDeadlineMs = now.steadyMs + pauseMs;
}

void Edge_Run::leave() {
    link.leave(LeaveMs);
    brokerLost("it was left");
}

void Edge_Run::brokerMessage(const std::string& topic, const std::string& payload, bool isRetained) {
    node.received(topic, payload, isRetained, now);
}

// MQTT answers in order: what was published before the mark has arrived.
void Edge_Run::brokerReached(int number) {
    if (mark == 0 || number != mark) return;
    for (; marked > 0; --marked) {
        // the store dropped its oldest meanwhile: rather twice than never
        const bool isSame = store.counts().overwritten == overwrittenBefore;
        if (const std::size_t records = unconfirmed.front().records) {
            if (isSame) store.take(records);
            keptUnderWay = false;
        }
        unconfirmed.pop_front();
    }
    mark = 0;
}

void Edge_Run::keepUnconfirmed() {
    for (const Batch& batch : unconfirmed)
        keep(batch.samples);
    unconfirmed.clear();
    marked = 0;
    mark = 0;
    keptUnderWay = false;
}

// A record is a payload of names: another run may have other metrics.
void Edge_Run::keep(const std::vector<Sample>& samples) {
    if (samples.empty()) return;
    Payload payload;
    for (const Sample& sample : samples) {
        Metric metric;
        metric.name = settings.node.metrics[sample.metric].name;
        metric.type = settings.node.metrics[sample.metric].type;
        metric.time = sample.time;
        metric.value = sample.value;
        payload.metrics.push_back(std::move(metric));
    }
    const std::uint64_t before = store.counts().overwritten;
    if (!store.append(encode(payload)) && keptFailed++ == 0)
        tell("values are lost: the store in " + settings.stateFolder + " takes no more");
    if (before == 0 && store.counts().overwritten > 0) tell("values are lost: the store is full, the oldest go first");
}

void Edge_Run::sendKept() {
    if (keptUnderWay || store.isEmpty() || !node.isLive() || now.steadyMs - keptMs < KeptEveryMs) return;
    keptMs = now.steadyMs;
    overwrittenBefore = store.counts().overwritten;
    Batch batch;
    for (const std::string& record : store.oldest(KeptAtOnce)) {
        std::vector<Sample> samples;
        for (const Metric& metric : decode(record).metrics) {
            const auto found = byName.find(metric.name);
            if (found == byName.end() || settings.node.metrics[found->second].type != metric.type) continue;
            samples.push_back({found->second, metric.value, metric.time.value_or(0)});
        }
        if (!samples.empty() && !node.send(samples, true, now)) break;
        ++batch.records;
    }
    if (batch.records == 0) return;
    keptUnderWay = true;
    unconfirmed.push_back(batch);
}

void Edge_Run::syncStore() {
    if (now.steadyMs - syncMs < 1000) return;
    syncMs = now.steadyMs;
    store.sync();
}

void Edge_Run::takeNews() {
    const Watch_News news = events.wait(std::chrono::steady_clock::now());
    for (const Link_Change& change : news.linkChanges)
        takeLinkChange(change);
    if (news.newRound) takeRound();
    if (isUp && downMs && now.steadyMs - *downMs >= LossMs) {
        isUp = false;
        tell("the controller is lost");
        node.deviceDown(now);
    }
}

void Edge_Run::takeLinkChange(const Link_Change& change) {
    const bool isDown = change.state != Link_Change::State::Up;
    if (!isDown) downMs.reset();
    if (isDown && !downMs) downMs = now.steadyMs;
}

void Edge_Run::takeRound() {
    refresh(session, labels.watched());
    if (labels.areFresh() && !isUp) {
        isUp = true;
        tell("the controller answers");
        node.deviceUp(labels.all(now.steadyMs, now.wallMs), now);
    } else if (labels.areFresh()) {
        sendAll(labels.changes(now.steadyMs, now.wallMs));
    }
    session.roundTaken();
}

void Edge_Run::sendAll(const std::vector<Sample>& samples) {
    for (std::size_t from = 0; from < samples.size(); from += ValuesPerMessage) {
        const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(from);
        const auto count = std::min(ValuesPerMessage, samples.size() - from);
        const std::vector<Sample> some(begin, begin + static_cast<std::ptrdiff_t>(count));
        if (node.send(some, false, now)) {
            unconfirmed.push_back({some, 0});
        } else {
            keep(some);
        }
    }
}

// One after the other, each with its answer: the value that the controller holds now.
void Edge_Run::doWrites() {
    for (; !writes.empty(); writes.pop_front()) {
        const std::size_t metric = writes.front().metric;
        const std::string& name = settings.node.metrics[metric].name;
        Watched& watched = labels.watched()[metric];
        try {
            writeVerified(session, watched.variable, writes.front().value);
            tell("'" + name + "' is written and read back");
        } catch (const std::invalid_argument& reason) {
            tell("the command for '" + name + "' is refused: " + reason.what());
            continue;
        } catch (const Host_Error& error) {
            tell("the command for '" + name + "' failed: " + error.what());
            continue;
        }
        now = momentNow();
        refresh(session, labels.watched());
        sendAll({labels.sampleOf(metric, now.steadyMs, now.wallMs)});
    }
}

}  // namespace vornex::edge
