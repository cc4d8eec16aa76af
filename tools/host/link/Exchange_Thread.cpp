#include "host/link/Exchange_Thread.h"

#include <algorithm>

#include "wire/Check_Value.h"
#include "wire/Frame_Reader.h"

namespace vornex {

namespace {

const Milliseconds FirstBackOff{100};
const Milliseconds LongestBackOff{2000};
const int MoreConnections = 3;
const Milliseconds SilenceMargin{5000};  // for a machine that is short of time
const int VarIdOfCyclicReads = -1;

Steady_Time now() { return std::chrono::steady_clock::now(); }

}  // namespace

Exchange_Thread::Exchange_Thread(const Driver_Library& library, const Host_Settings& hostSettings,
                                 const Host_Port& controller)
    : driver(library), settings(hostSettings), target(controller), link(waiting) {
    const Milliseconds step(2 * settings.timeoutMs + settings.settleMs);
    completions.allowSilence(step + LongestBackOff + SilenceMargin);
}

Exchange_Thread::~Exchange_Thread() { stop(); }

void Exchange_Thread::interrupt() {
    interruptSeen = true;
    waiting.stop();
    completions.interrupt();
}

std::string Exchange_Thread::connect() {
    Link_Fault fault = readyLink();
    for (int more = MoreConnections; fault.unasked && more > 0; --more)
        fault = readyLink();
    return fault.reason;
}

void Exchange_Thread::start() {
    thread = std::thread([this] { run(); });
}

void Exchange_Thread::stop() {
    waiting.stop();
    if (thread.joinable()) thread.join();
}

void Exchange_Thread::tell(const std::function<void(Exchange_Observer&)>& what) {
    for (Exchange_Observer* observer : observers)
        what(*observer);
}

void Exchange_Thread::run() {
    while (!waiting.stopped()) {
        completions.signOfLife();
        if (paused()) continue;
        const int mark = completions.mark();
        Exchange exchange;
        // A null answer also ends the driver's burst counts: only the second one in a row says that all is done.
        if (nextFrame(exchange) || nextFrame(exchange)) {
            // The driver turns to the cyclic list in between, but twice in a row only when its queues are empty.
            if (exchange.cyclic && exchange.attempt == 1 && cyclicBefore) completions.loseUpTo(mark);
            serve(exchange);
        } else {
            completions.loseUpTo(mark);
            rest(Steady_Time::max());
        }
    }
    if (interruptSeen) tell([](Exchange_Observer& observer) { observer.interrupted(); });
}

// Between two rounds only writes and one-shot reads are served.
bool Exchange_Thread::paused() {
    Steady_Time until;
    {
        const std::lock_guard<std::mutex> lock(paceMutex);
        until = nextRound;
    }
    if (until <= now() || completions.anyQueued()) return false;
    rest(until);
    return true;
}

void Exchange_Thread::rest(Steady_Time until) {
    if (const Link_Fault fault = link.rest(until)) dropLink(fault);
}

bool Exchange_Thread::nextFrame(Exchange& exchange) {
    const std::lock_guard<std::mutex> lock(sequenceMutex);
    const Protocol* protocol = driver.ComCommunication();
    if (!protocol) {
        tell([](Exchange_Observer& observer) { observer.nothingToSend(); });
        return false;
    }
    exchange.frame.assign(protocol->frame.constData(), static_cast<std::size_t>(protocol->frameLength));
    exchange.replyLength = protocol->replyLength;
    exchange.cyclic = protocol->request.accessMode == 0 && protocol->request.varId == VarIdOfCyclicReads;
    exchange.request = readRequest(exchange.frame).value_or(Request());
    attempts = exchange.frame == lastFrame ? attempts + 1 : 1;
    lastFrame = exchange.frame;
    exchange.attempt = attempts;
    exchange.plan = currentPlan();
    exchange.sentAt = std::chrono::system_clock::now();
    tell([&exchange](Exchange_Observer& observer) { observer.frameGiven(exchange); });
    return true;
}

void Exchange_Thread::serve(Exchange& exchange) {
    exchange.transfer.reason = readyLink().reason;
    if (exchange.transfer.reason.empty()) {
        const Steady_Time sent = now();
        const std::size_t expected = static_cast<std::size_t>(std::max(exchange.replyLength, 0));
        exchange.sentAt = std::chrono::system_clock::now();
        exchange.transfer = link.exchange(exchange.frame, expected, Milliseconds(settings.timeoutMs));
        exchange.latency = std::chrono::duration_cast<std::chrono::microseconds>(now() - sent);
    }
    if (waiting.stopped()) return;  // what was cut short is nobody's failure
    exchange.repliedAt = std::chrono::system_clock::now();
    // Bytes with a wrong check value are noise, and the driver sees that by itself.
    if (exchange.transfer.state == Transfer_State::Complete && checkIsRight(exchange.transfer.reply)) {
        const std::optional<Reply> reply = readReply(exchange.transfer.reply, exchange.request.items.size());
        exchange.countsDiffer = reply && !answers(*reply, exchange.request);
    }
    handBack(exchange);
    conclude(exchange);
}

void Exchange_Thread::handBack(Exchange& exchange) {
    QByteArray reply;
    int length = 0;
    handOver(exchange, reply, length);
    const std::lock_guard<std::mutex> lock(sequenceMutex);
    notices.clear();
    exchange.status = driver.DataCom(&reply, length)->status;
    if (exchange.status != 0) lastFrame.clear();  // finished: the same frame later is a new one
    tell([&exchange](Exchange_Observer& observer) { observer.exchangeDone(exchange); });
}

void Exchange_Thread::conclude(const Exchange& exchange) {
    if (exchange.good()) {
        backOffTime = Milliseconds(0);
        if (!exchange.request.isWrite) {
            for (const Memory_Range& item : exchange.request.items)
                known.fill(item.address, item.bytes);
        }
    } else {
        dropLink({exchange.fault()});
    }
    for (const Notice& notice : notices) {
        Completion completion;
        completion.state = notice.state == 1 ? Completion::State::Good : Completion::State::GaveUp;
        completion.code = exchange.status;
        completion.fault = exchange.fault();
        completions.finish(notice.varId, completion);
    }
    if (exchange.status == 0) return;
    cyclicBefore = exchange.cyclic;
    if (exchange.cyclic) countRound(exchange);
}

void Exchange_Thread::countRound(const Exchange& exchange) {
    int done = 0;
    {
        const std::lock_guard<std::mutex> lock(paceMutex);
        if (exchange.plan != plans) return;
        roundServed += static_cast<int>(exchange.request.items.size());
        if (roundServed < roundEntries) return;
        roundServed = 0;
        if (!everConnected) return beginRound();  // nothing was polled yet
        done = ++rounds;
        const bool goesOn = !roundPlan.oneByOne && (roundPlan.rounds == 0 || done < roundPlan.rounds);
        if (goesOn)
            beginRound();
        else
            nextRound = Steady_Time::max();  // until roundTaken(), or for good
    }
    tell([done](Exchange_Observer& observer) { observer.roundDone(done); });
}

int Exchange_Thread::currentPlan() {
    const std::lock_guard<std::mutex> lock(paceMutex);
    return plans;
}

void Exchange_Thread::beginRound() { roundStart = nextRound = std::max(roundStart + roundPlan.interval, now()); }

void Exchange_Thread::roundTaken() {
    {
        const std::lock_guard<std::mutex> lock(paceMutex);
        if (roundPlan.rounds == 0 || rounds < roundPlan.rounds) beginRound();
    }
    wake();
}

void Exchange_Thread::pace(int cyclicEntries, const Poll_Plan& plan) {
    const std::lock_guard<std::mutex> lock(paceMutex);
    ++plans;
    roundEntries = cyclicEntries;
    roundServed = rounds = 0;
    roundPlan = plan;
    roundStart = nextRound = now();
}

// A connection on which a frame may be sent; without one, the reason.
Link_Fault Exchange_Thread::readyLink() {
    if (link.isOpen()) {
        const Link_Fault fault = link.unfit();
        if (!fault) return {};
        dropLink(fault);
    }
    if (!backOff()) return {"interrupted"};
    Link_Fault fault = link.open(target, Milliseconds(settings.timeoutMs), Milliseconds(settings.settleMs));
    if (!waiting.stopped()) tellLink(fault ? Link_Change::State::StillDown : Link_Change::State::Up, fault);
    return fault;
}

// Waits before an attempt to connect: the first one after a good reply comes at once, then 100 ms, doubled up to 2 s.
bool Exchange_Thread::backOff() {
    waiting.through(now() + backOffTime);
    backOffTime = std::clamp(backOffTime * 2, FirstBackOff, LongestBackOff);
    return !waiting.stopped();
}

void Exchange_Thread::dropLink(const Link_Fault& fault) {
    if (!link.isOpen()) return;
    link.close();
    known.age();
    tellLink(Link_Change::State::Down, fault);
}

void Exchange_Thread::tellLink(Link_Change::State state, const Link_Fault& fault) {
    everConnected = everConnected || state == Link_Change::State::Up;
    const Link_Change change = {fault, state, std::chrono::system_clock::now()};
    tell([&change](Exchange_Observer& observer) { observer.linkChanged(change); });
}

}  // namespace vornex
