#include "Hostile_Proxy.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "Tcp_Client.h"
#include "Test_Bytes.h"

namespace vornex::test {
namespace {

struct Turn {
    int host;
    Tcp_Client& controller;
    std::mt19937& chance;
    std::string request;
    std::string last;
    std::string reply;
    std::string greeting;
    bool open = true;
    bool refuses = false;
    bool isDead = false;

    // Somewhere from `first` on, before `end`.
    std::size_t at(std::size_t first, std::size_t end) { return first + chance() % (end - first); }
    std::string part() { return reply.substr(0, at(1, reply.size())); }
    bool isRead() const { return request[3] == 'A'; }
};

unsigned wordAt(const std::string& bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]) | static_cast<unsigned>(static_cast<unsigned char>(bytes[at + 1]))
                                                       << 8;
}

std::size_t replySize(const std::string& request) {
    std::size_t size = 6;
    for (std::size_t item = 8; request[3] == 'A' && item + 2 < request.size(); item += 6)
        size += 2 + wordAt(request, item);
    return size;
}

void pause(int ms) { ::poll(nullptr, 0, ms); }

void flip(std::string& bytes, std::size_t at, int mask) { bytes[at] = static_cast<char>(bytes[at] ^ mask); }

// The reply with these bytes changed, its check value right again.
std::string resealed(std::string bytes, std::size_t at, int mask) {
    flip(bytes, at, mask);
    return sealed(bytes.substr(0, bytes.size() - 2));
}

void send(const Turn& turn, const std::string& bytes) { sendTo(turn.host, bytes); }

void reset(Turn& turn) {
    const linger atOnce = {1, 0};
    ::setsockopt(turn.host, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    turn.open = false;
}

// In pieces, each so many ms after the other, for as long as the host has not gone.
void dribble(const Turn& turn, std::size_t piece, int ms) {
    for (std::size_t at = 0; at < turn.reply.size(); at += piece) {
        send(turn, turn.reply.substr(at, piece));
        pollfd gone = {turn.host, POLLIN, 0};
        if (::poll(&gone, 1, ms) > 0) return;
    }
}

}  // namespace

// What becomes of the reply, or with `atRequest` of the request: nothing has gone to the controller yet.
struct Hostile_Proxy::Kind {
    const char* name;
    bool mustFail;
    bool atRequest;
    void (*apply)(Turn&);
};

namespace {

const Hostile_Proxy::Kind Kinds[] = {
    {"request swallowed", true, true, [](Turn&) {}},
    {"request cut", true, true,
     [](Turn& t) { t.open = !t.controller.send(t.request.substr(0, t.at(1, t.request.size()))); }},
    {"request damaged", true, true,
     [](Turn& t) {
         flip(t.request, t.at(3, t.request.size()), 1 << t.at(0, 8));
         t.controller.send(t.request);
     }},
    {"request doubled", false, true,
     [](Turn& t) {
         t.controller.send(t.request + t.request);
         send(t, t.controller.receive(2 * replySize(t.request)));
     }},
    {"request dribbled", false, true,
     [](Turn& t) {
         for (const char byte : t.request)
             t.controller.send(std::string(1, byte));
         send(t, t.controller.receive(replySize(t.request)));
     }},
    {"swallowed", true, false, [](Turn&) {}},
    {"delayed", false, false, [](Turn& t) { pause(3), send(t, t.reply); }},
    {"late", true, false, [](Turn& t) { waitForClose(t.host), send(t, t.reply), t.open = false; }},
    {"dribbled", false, false, [](Turn& t) { dribble(t, 8, 0); }},
    {"stopped in dribbling", true, false, [](Turn& t) { t.reply.pop_back(), dribble(t, 1, 1); }},
    {"cut", true, false, [](Turn& t) { send(t, t.part()); }},
    {"cut and closed", true, false, [](Turn& t) { send(t, t.part()), t.open = false; }},
    {"cut and half closed", true, false, [](Turn& t) { send(t, t.part()), ::shutdown(t.host, SHUT_WR); }},
    {"cut and reset", true, false, [](Turn& t) { send(t, t.part()), reset(t); }},
    {"closed instead", true, false, [](Turn& t) { t.open = false; }},
    {"whole and half closed", false, false, [](Turn& t) { send(t, t.reply), ::shutdown(t.host, SHUT_WR); }},
    {"whole and reset", false, false, [](Turn& t) { send(t, t.reply), reset(t); }},
    {"shortened, resealed", true, false, [](Turn& t) { send(t, sealed(t.reply.substr(0, t.reply.size() - 3))); }},
    {"prolonged", false, false, [](Turn& t) { send(t, t.reply + std::string(t.at(1, 40), '\x55')); }},
    {"prolonged, resealed", true, false,
     [](Turn& t) { send(t, sealed(t.reply.substr(0, t.reply.size() - 2) + '\x55')); }},
    {"doubled", false, false, [](Turn& t) { send(t, t.reply + t.reply); }},
    {"the one before first", false, false, [](Turn& t) { send(t, t.last + t.reply); }},
    {"the one before instead", false, false, [](Turn& t) { send(t, t.last); }},
    {"the one before to the next connection", true, false, [](Turn& t) { t.greeting = t.last; }},
    {"a byte behind it", false, false, [](Turn& t) { send(t, t.reply), pause(1), send(t, "X"); }},
    {"stuck at 0", true, false, [](Turn& t) { send(t, std::string(t.reply.size(), '\0')); }},
    {"stuck at 1", true, false, [](Turn& t) { send(t, std::string(t.reply.size(), '\xFF')); }},
    {"bit flipped", true, false,
     [](Turn& t) {
         flip(t.reply, t.at(0, t.reply.size()), 1 << t.at(0, 8));
         send(t, t.reply);
     }},
    {"16 bits flipped", true, false,
     [](Turn& t) {
         const std::size_t at = t.at(0, t.reply.size() - 1);
         flip(t.reply, at, 0xFF), flip(t.reply, at + 1, 0xFF);
         send(t, t.reply);
     }},
    {"header changed, resealed", false, false, [](Turn& t) { send(t, resealed(t.reply, t.at(0, 4), 0x5A)); }},
    {"item count changed, resealed", true, false,
     [](Turn& t) { send(t, t.isRead() ? resealed(t.reply, 4, 1 << t.at(0, 8)) : t.reply); }},
    {"next connection refused", true, false, [](Turn& t) { t.refuses = true; }},
    {"next connection dead", true, false, [](Turn& t) { t.isDead = true; }},
};

// One whole request; empty when the host has gone.
std::string nextRequest(int host) {
    std::string request;
    for (std::size_t wanted = 3; request.size() < wanted;) {
        char buffer[4096];
        const ssize_t got = ::recv(host, buffer, std::min(sizeof buffer, wanted - request.size()), 0);
        if (got <= 0) return "";
        request.append(buffer, static_cast<std::size_t>(got));
        if (request.size() == 3) wanted = 1 + 2 + 1 + wordAt(request, 1) + 2;
    }
    return request;
}

}  // namespace

std::size_t Hostile_Proxy::allKinds() { return std::size(Kinds); }

Hostile_Proxy::Hostile_Proxy(int controllerPort, unsigned period, const std::string& only)
    : controller(controllerPort), often(period) {
    for (const Kind& kind : Kinds)
        if (only.empty() || only == kind.name) kinds.push_back(&kind);
    listener.emplace([this](int host, int) { serve(host); });
}

void Hostile_Proxy::serve(int host) {
    if (std::exchange(refuses, false)) return;
    if (std::exchange(isDead, false)) return waitForClose(host);
    const std::string old = std::exchange(greeting, "");
    pollfd request = {host, POLLIN, 0};
    if (!old.empty() && (greetsLate || ::poll(&request, 1, 0) == 0)) ++greeted, sendTo(host, old);
    Tcp_Client client(controller);
    for (bool open = true; open;) {
        Turn now = {host, client, chance, nextRequest(host), last, "", ""};
        if (now.request.empty()) return;
        const Kind* const kind = chance() % often == 0 && !last.empty() ? kinds[turn++ % kinds.size()] : nullptr;
        if (kind == nullptr || !kind->atRequest) {
            client.send(now.request);
            now.reply = client.receive(replySize(now.request));
            if (now.reply.empty()) return;
            last = now.reply;
        }
        if (kind == nullptr) {
            sendTo(host, now.reply);
            continue;
        }
        ++counts[kind->name];
        withoutGoodReply += kind->mustFail ? 1 : 0;
        kind->apply(now);
        greeting = now.greeting;
        refuses = now.refuses;
        isDead = now.isDead;
        open = now.open;
    }
}

std::string Hostile_Proxy::summary() const {
    long faults = 0;
    std::string kindsSeen;
    for (const auto& [name, count] : counts) {
        faults += count;
        kindsSeen += (kindsSeen.empty() ? "" : ", ") + name + " " + std::to_string(count);
    }
    return std::to_string(faults) + " faults of " + std::to_string(counts.size()) + " kinds: " + kindsSeen;
}

}  // namespace vornex::test
