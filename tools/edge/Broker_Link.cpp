#include "edge/Broker_Link.h"

#include <mosquitto.h>
#include <poll.h>

#include <chrono>
#include <stdexcept>

#include "text/Text.h"

namespace vornex::edge {

namespace {

const int KeepAliveSeconds = 10;
// The library's own queue has no end: a broker that reads nothing would take all memory.
const std::size_t MostWaiting = 4u << 20;
const int PacketsAtOnce = 100;

struct Library {
    Library() { mosquitto_lib_init(); }
    ~Library() { mosquitto_lib_cleanup(); }
};

}  // namespace

Broker_Link::Broker_Link(const Broker_Settings& brokerSettings, Broker_Events& brokerEvents)
    : settings(brokerSettings), events(brokerEvents) {
    static const Library library;
    client = mosquitto_new(settings.clientId.c_str(), true, this);
    if (!client) throw std::invalid_argument("the broker cannot be called as '" + settings.clientId + "'");
    try {
        setUp();
    } catch (...) {
        mosquitto_destroy(client);
        throw;
    }
}

Broker_Link::~Broker_Link() { mosquitto_destroy(client); }

void Broker_Link::require(int code, const char* what) const {
    if (code != MOSQ_ERR_SUCCESS) throw std::invalid_argument(std::string(what) + ": " + mosquitto_strerror(code));
}

void Broker_Link::setUp() {
    mosquitto_connect_callback_set(client, onConnect);
    mosquitto_message_callback_set(client, onMessage);
    mosquitto_unsubscribe_callback_set(client, onUnsubscribe);
    mosquitto_log_callback_set(client, onLog);
    if (!settings.user.empty())
        require(mosquitto_username_pw_set(client, settings.user.c_str(),
                                          settings.password.empty() ? nullptr : settings.password.c_str()),
                "user");
    if (settings.caFile.empty()) return;
    const auto orNone = [](const std::string& file) { return file.empty() ? nullptr : file.c_str(); };
    require(mosquitto_tls_set(client, settings.caFile.c_str(), nullptr, orNone(settings.certificate),
                              orNone(settings.key), nullptr),
            "TLS");
    if (settings.isUnverified) {
        require(mosquitto_tls_opts_set(client, 0, nullptr, nullptr), "TLS");
        require(mosquitto_tls_insecure_set(client, true), "TLS");
    }
}

// The library would connect again by itself with the will of before, so it is never asked to.
void Broker_Link::connect(const Message& will) {
    drop();
    mosquitto_will_clear(client);
    int code = mosquitto_will_set(client, will.topic.c_str(), static_cast<int>(will.payload.size()),
                                  will.payload.data(), will.qos, false);
    isOpen = true;
    if (code == MOSQ_ERR_SUCCESS)
        code = mosquitto_connect_async(client, settings.address.host.c_str(), settings.address.port, KeepAliveSeconds);
    if (code != MOSQ_ERR_SUCCESS) fail(code);
}

int Broker_Link::socket() const { return isOpen ? mosquitto_socket(client) : -1; }

short Broker_Link::wantedEvents() const {
    return static_cast<short>(POLLIN | (mosquitto_want_write(client) ? POLLOUT : 0));
}

void Broker_Link::service() {
    if (socket() >= 0) {
        pollfd ready = {socket(), wantedEvents(), 0};
        int code = MOSQ_ERR_SUCCESS;
        if (poll(&ready, 1, 0) > 0) {
            if (ready.revents & (POLLOUT | POLLERR | POLLHUP)) code = mosquitto_loop_write(client, PacketsAtOnce);
            if (code == MOSQ_ERR_SUCCESS && socket() >= 0 && ready.revents & (POLLIN | POLLERR | POLLHUP))
                code = mosquitto_loop_read(client, PacketsAtOnce);
        }
        if (code == MOSQ_ERR_SUCCESS) code = mosquitto_loop_misc(client);
        if (!mosquitto_want_write(client)) waiting = 0;
        if (code != MOSQ_ERR_SUCCESS) fail(code);
    }
    tellEvents();
}

// What comes about while these are told is told the next time.
void Broker_Link::tellEvents() {
    std::vector<std::function<void()>> now;
    now.swap(happened);
    for (const std::function<void()>& event : now)
        event();
}

bool Broker_Link::publish(const Message& message) {
    if (!isConnected || waiting + message.payload.size() > MostWaiting) return false;
    waiting += message.payload.size() + message.topic.size();
    return mosquitto_publish(client, nullptr, message.topic.c_str(), static_cast<int>(message.payload.size()),
                             message.payload.data(), message.qos, false) == MOSQ_ERR_SUCCESS;
}

void Broker_Link::subscribe(const std::string& topic, int qos) {
    mosquitto_subscribe(client, nullptr, topic.c_str(), qos);
}

int Broker_Link::mark(const std::string& unusedTopic) {
    int number = 0;
    if (!isConnected || mosquitto_unsubscribe(client, &number, unusedTopic.c_str()) != MOSQ_ERR_SUCCESS) return 0;
    return number;
}

void Broker_Link::leave(int patienceMs) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(patienceMs);
    isConnected = false;
    if (isOpen) mosquitto_disconnect(client);
    while (isOpen && socket() >= 0 && mosquitto_want_write(client) && std::chrono::steady_clock::now() < end) {
        pollfd ready = {socket(), POLLOUT, 0};
        if (poll(&ready, 1, 20) > 0 && mosquitto_loop_write(client, PacketsAtOnce) != MOSQ_ERR_SUCCESS) break;
    }
    drop();
}

void Broker_Link::drop() {
    isConnected = false;
    waiting = 0;
    happened.clear();
    if (!isOpen) return;
    isOpen = false;
    // the library has no call that ends a connection without a word: a new client does
    mosquitto_reinitialise(client, settings.clientId.c_str(), true, this);
    setUp();
}

void Broker_Link::fail(int code) {
    std::string reason = refusal.empty() ? mosquitto_strerror(code) : refusal;
    if (code == MOSQ_ERR_TLS && !lastMistake.empty()) reason = "TLS: " + lastMistake;
    refusal.clear();
    lastMistake.clear();
    drop();
    happened.push_back([this, reason] { events.brokerLost(reason); });
}

void Broker_Link::onConnect(struct mosquitto*, void* self, int code) {
    Broker_Link& link = *static_cast<Broker_Link*>(self);
    if (code != 0) link.refusal = mosquitto_connack_string(code);
    link.isConnected = code == 0;
    if (code == 0) link.happened.push_back([&link] { link.events.brokerConnected(); });
}

void Broker_Link::onMessage(struct mosquitto*, void* self, const struct mosquitto_message* message) {
    Broker_Link& link = *static_cast<Broker_Link*>(self);
    const auto length = static_cast<std::size_t>(message->payloadlen);
    const std::string payload(length > 0 ? static_cast<const char*>(message->payload) : "", length);
    link.happened.push_back([&link, topic = std::string(message->topic), payload, isRetained = message->retain] {
        link.events.brokerMessage(topic, payload, isRetained);
    });
}

// Only here does the library say what is wrong with a certificate, behind numbers: "error:0A000086:SSL
// routines::REASON".
void Broker_Link::onLog(struct mosquitto*, void* self, int level, const char* text) {
    if (level != MOSQ_LOG_ERR) return;
    const std::string mistake = trimmed(text);
    static_cast<Broker_Link*>(self)->lastMistake = mistake.substr(mistake.rfind(':') + 1);
}

void Broker_Link::onUnsubscribe(struct mosquitto*, void* self, int number) {
    Broker_Link& link = *static_cast<Broker_Link*>(self);
    link.happened.push_back([&link, number] { link.events.brokerReached(number); });
}

}  // namespace vornex::edge
