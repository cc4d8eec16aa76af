#include "Exchange_Thread.h"

#include <algorithm>
#include <csignal>

#include <asio/post.hpp>

#include "Check_Value.h"

namespace vornex {

namespace {

const Milliseconds FirstBackOff{100};
const Milliseconds LongestBackOff{2000};
const int VarIdOfCyclicReads = -1;

Steady_Time now() { return std::chrono::steady_clock::now(); }

}  // namespace

Exchange_Thread::Exchange_Thread(const Driver_Library& library, const Exchange_Settings& exchangeSettings,
                                 Completions& hostCompletions, Known_Bytes& knownBytes)
    : driver(library),
      settings(exchangeSettings),
      completions(hostCompletions),
      known(knownBytes),
      work(asio::make_work_guard(context)),
      signals(context, SIGINT, SIGTERM),
      link(context, stopping) {
    watchSignals();
}

Exchange_Thread::~Exchange_Thread() { stop(); }

void Exchange_Thread::watchSignals() {
    signals.async_wait([this](asio::error_code error, int) {
        if (error) return;
        interruptSeen = true;
        stopping = true;
        completions.interrupt();
        tell([](Exchange_Observer& observer) { observer.interrupted(); });
    });
}

std::string Exchange_Thread::connect() {
    std::string reason;
    linkReady(reason);
    return reason;
}

void Exchange_Thread::start() {
    thread = std::thread([this] { run(); });
}

void Exchange_Thread::stop() {
    stopping = true;
    wake();
    if (thread.joinable()) thread.join();
}

void Exchange_Thread::wake() {
    asio::post(context, [] {});
}

void Exchange_Thread::tell(const std::function<void(Exchange_Observer&)>& what) {
    for (Exchange_Observer* observer : observers)
        what(*observer);
}

void Exchange_Thread::run() {
    while (!stopping) {
        if (paused()) continue;
        const int mark = completions.mark();
        Exchange exchange;
        // A null answer also ends the driver's burst counts: only the second one in a row says that all is done.
        if (nextFrame(exchange) || nextFrame(exchange)) {
            serve(exchange);
        } else {
            completions.loseUpTo(mark);
            waitForWork(Steady_Time::max());
        }
    }
    // Ctrl-C may have come while nobody ran the context: let its handler run.
    context.poll();
}

// Between two rounds only writes and one-shot reads are served.
bool Exchange_Thread::paused() {
    Steady_Time until;
    {
        const std::lock_guard<std::mutex> lock(paceMutex);
        until = nextRound;
    }
    if (until <= now() || completions.anyPending()) return false;
    waitForWork(until);
    return true;
}

void Exchange_Thread::waitForWork(Steady_Time until) {
    if (until == Steady_Time::max())
        context.run_one();
    else
        context.run_one_until(until);
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
    exchange.request = viewRequest(exchange.frame).value_or(Request_View());
    attempts = exchange.frame == lastFrame ? attempts + 1 : 1;
    lastFrame = exchange.frame;
    exchange.attempt = attempts;
    exchange.sentAt = std::chrono::system_clock::now();
    tell([&exchange](Exchange_Observer& observer) { observer.frameGiven(exchange); });
    return true;
}

void Exchange_Thread::serve(Exchange& exchange) {
    if (linkReady(exchange.transfer.reason)) {
        const Steady_Time sent = now();
        const std::size_t expected = static_cast<std::size_t>(std::max(exchange.replyLength, 0));
        exchange.sentAt = std::chrono::system_clock::now();
        exchange.transfer = link.exchange(exchange.frame, expected, settings.timeout);
        exchange.latency = std::chrono::duration_cast<std::chrono::microseconds>(now() - sent);
    }
    if (stopping) return;  // what was cut short is nobody's failure
    exchange.repliedAt = std::chrono::system_clock::now();
    // Bytes with a wrong check value are noise, and the driver sees that by itself.
    exchange.countsDiffer = exchange.transfer.state == Transfer_State::Complete &&
                            checkIsRight(exchange.transfer.reply) &&
                            !viewReply(exchange.request, exchange.transfer.reply);
    handBack(exchange);
    settle(exchange);
}

void Exchange_Thread::handBack(Exchange& exchange) {
    QByteArray reply;
    int length = 0;
    handOver(exchange, reply, length);
    const std::lock_guard<std::mutex> lock(sequenceMutex);
    notices.clear();
    const RW_VAR* result = driver.DataCom(&reply, length);
    exchange.status = result->status;
    exchange.varType = result->varType;
    exchange.varId = result->varId;
    if (exchange.status != 0) lastFrame.clear();  // finished: the same frame later is a new one
    tell([&exchange](Exchange_Observer& observer) { observer.exchangeDone(exchange); });
}

void Exchange_Thread::settle(const Exchange& exchange) {
    if (exchange.good()) {
        backOffTime = Milliseconds(0);
        if (exchange.request.command == Request_View::Command::Read) {
            for (const Frame_Item& item : exchange.request.items)
                known.fill(item.address, item.length);
        }
    } else {
        dropLink(exchange.fault());
    }
    for (const Notice& notice : notices) {
        Completion completion;
        completion.state = notice.state == 1 ? Completion::State::Good : Completion::State::GaveUp;
        completion.code = exchange.status;
        completion.fault = exchange.fault();
        completions.finish(notice.varId, completion);
    }
    if (exchange.cyclic && exchange.status != 0) countRound(exchange);
}

void Exchange_Thread::countRound(const Exchange& exchange) {
    int done = 0;
    {
        const std::lock_guard<std::mutex> lock(paceMutex);
        roundServed += static_cast<int>(exchange.request.items.size());
        if (roundServed < roundEntries) return;
        roundServed = 0;
        done = ++rounds;
        nextRound = std::max(roundStart + roundInterval, now());
        roundStart = nextRound;
    }
    tell([done](Exchange_Observer& observer) { observer.roundDone(done); });
}

void Exchange_Thread::pace(int cyclicEntries, Milliseconds interval) {
    {
        const std::lock_guard<std::mutex> lock(paceMutex);
        roundEntries = cyclicEntries;
        roundServed = rounds = 0;
        roundInterval = interval;
        roundStart = nextRound = now();
    }
    wake();
}

bool Exchange_Thread::linkReady(std::string& reason) {
    if (link.isOpen()) {
        const std::string trouble = link.unfit();
        if (trouble.empty()) return true;
        dropLink(trouble);
    }
    reason = "interrupted";
    if (!backOff()) return false;
    reason = link.open(settings.host, settings.port, settings.timeout);
    if (stopping) return false;
    Link_Change change;
    change.at = std::chrono::system_clock::now();
    change.reason = reason;
    change.state = reason.empty() ? Link_Change::State::Up : Link_Change::State::StillDown;
    tell([&change](Exchange_Observer& observer) { observer.linkChanged(change); });
    return reason.empty();
}

// Waits before an attempt to connect: the first one after a good reply comes at once, then 100 ms, doubled up to 2 s.
bool Exchange_Thread::backOff() {
    const Steady_Time until = now() + backOffTime;
    while (!stopping && now() < until)
        context.run_one_until(until);
    backOffTime = std::clamp(backOffTime * 2, FirstBackOff, LongestBackOff);
    return !stopping;
}

void Exchange_Thread::dropLink(const std::string& reason) {
    if (!link.isOpen()) return;
    link.close();
    known.age();
    Link_Change change;
    change.state = Link_Change::State::Down;
    change.at = std::chrono::system_clock::now();
    change.reason = reason;
    tell([&change](Exchange_Observer& observer) { observer.linkChanged(change); });
}

}  // namespace vornex
