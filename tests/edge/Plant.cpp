#include "Plant.h"

#include <arpa/inet.h>
#include <mosquitto.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include <gtest/gtest.h>

#include "Tcp_Client.h"

namespace vornex::test {

namespace {

int freePort() {
    const int taken = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const bool isBound = bind(taken, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
                         getsockname(taken, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    close(taken);
    return isBound ? ntohs(address.sin_port) : 0;
}

}  // namespace

// Somebody else may take the port between its choice and the start.
Broker::Broker(const std::string& workFolder, const std::string& securedBy) : folder(workFolder), security(securedBy) {
    for (int i = 0; i < 5 && !process; ++i) {
        portNumber = freePort();
        if (!security.empty()) securedNumber = freePort();
        tryStart();
    }
    EXPECT_TRUE(process) << "no broker";
}

bool Broker::tryStart() {
    const std::string file = folder + "/broker.conf";
    std::ofstream text(file);
    text << "per_listener_settings true\nlog_type error\nlistener " << portNumber
         << " 127.0.0.1\nallow_anonymous true\n";
    if (!security.empty()) text << "listener " << securedNumber << " 127.0.0.1\n" << security;
    text.close();
    auto started = std::make_unique<Process>(std::vector<std::string>{MOSQUITTO, "-c", file});
    for (const double end = clockMs() + WaitLimit; clockMs() < end; usleep(1000)) {
        siginfo_t state = {};
        const bool hasEnded =
            waitid(P_PID, static_cast<id_t>(started->id()), &state, WEXITED | WNOHANG | WNOWAIT) != 0 ||
            state.si_pid != 0;
        if (hasEnded) return false;
        if (!Tcp_Client(portNumber).isConnected()) continue;
        process = std::move(started);
        return true;
    }
    return false;
}

void Broker::kill() {
    process->signal(SIGKILL);
    process->finish(false);
    process.reset();
}

void Broker::start() {
    for (int i = 0; i < 5 && !process; ++i)
        tryStart();
    EXPECT_TRUE(process) << "no broker at the same port";
}

std::string Heard::type() const {
    const std::size_t begin = topic.find('/', topic.find('/') + 1) + 1;
    return topic.substr(begin, topic.find('/', begin) - begin);
}

const edge::Metric* Heard::find(const std::string& name) const {
    for (const edge::Metric& metric : payload.metrics) {
        if (metric.name == name) return &metric;
    }
    return nullptr;
}

Plant_Host::Plant_Host(int port) {
    mosquitto_lib_init();
    client = mosquitto_new(nullptr, true, this);
    mosquitto_message_callback_set(client, [](struct mosquitto*, void* self, const struct mosquitto_message* message) {
        const auto length = static_cast<std::size_t>(message->payloadlen);
        const std::string bytes(length > 0 ? static_cast<const char*>(message->payload) : "", length);
        static_cast<Plant_Host*>(self)->heard.push_back(
            std::make_unique<Heard>(Heard{message->topic, edge::decode(bytes)}));
    });
    bool isReady = false;
    mosquitto_user_data_set(client, &isReady);
    mosquitto_subscribe_callback_set(
        client, [](struct mosquitto*, void* ready, int, int, const int*) { *static_cast<bool*>(ready) = true; });
    EXPECT_EQ(mosquitto_connect(client, "127.0.0.1", port, 60), MOSQ_ERR_SUCCESS);
    mosquitto_subscribe(client, nullptr, "spBv1.0/#", 1);
    for (const double end = clockMs() + WaitLimit; !isReady && clockMs() < end;)
        mosquitto_loop(client, 50, 1);
    EXPECT_TRUE(isReady) << "no subscription";
    mosquitto_user_data_set(client, this);
}

Plant_Host::~Plant_Host() { mosquitto_destroy(client); }

const Heard* Plant_Host::waitFor(const std::string& type, const Right& right) {
    const double end = clockMs() + WaitLimit;
    for (;;) {
        for (; next < heard.size(); ++next) {
            const Heard& candidate = *heard[next];
            if (candidate.type() == type && (!right || right(candidate))) return heard[next++].get();
        }
        if (clockMs() > end || mosquitto_loop(client, 50, 1) != MOSQ_ERR_SUCCESS) return nullptr;
    }
}

void Plant_Host::command(const std::string& topic, const std::string& name, edge::Wire_Value value) {
    edge::Metric metric;
    metric.name = name;
    metric.value = std::move(value);
    const std::string bytes = edge::encode({1, {metric}, {}});
    mosquitto_publish(client, nullptr, topic.c_str(), static_cast<int>(bytes.size()), bytes.data(), 1, false);
}

std::vector<std::string> brokenRules(const std::vector<std::unique_ptr<Heard>>& heard) {
    std::vector<std::string> broken;
    std::uint64_t seq = 0, birthNumber = 0;
    bool isBorn = false, isDeviceBorn = false;
    const auto rule = [&](bool isKept, const char* id, const Heard& message) {
        if (!isKept) broken.push_back(std::string(id) + " by message of type " + message.type());
    };
    for (const std::unique_ptr<Heard>& each : heard) {
        const Heard& message = *each;
        const std::string type = message.type();
        if (type == "DCMD" || type == "NCMD") continue;
        const edge::Metric* const number = message.find("bdSeq");
        if (type == "NBIRTH") {
            rule(message.payload.seq == 0u, "tck-id-topics-nbirth-seq-num", message);
            rule(number && message.find("Node Control/Rebirth"), "tck-id-topics-nbirth-rebirth-metric", message);
            if (number) birthNumber = std::get<std::uint64_t>(number->value);
            isBorn = true;
            isDeviceBorn = false;
        } else if (type == "NDEATH") {
            rule(!message.payload.seq, "tck-id-payloads-ndeath-seq", message);
            rule(number && number->value == edge::Wire_Value(birthNumber), "tck-id-payloads-ndeath-bdseq", message);
            isBorn = isDeviceBorn = false;
            continue;
        } else {
            rule(message.payload.seq == (seq + 1) % 256, "tck-id-payloads-sequence-num-incrementing", message);
            rule(isBorn, "tck-id-payloads-dbirth-order", message);
            rule(isDeviceBorn || type == "DBIRTH", "tck-id-topics-dbirth-metrics", message);
            isDeviceBorn = type != "DDEATH";
        }
        rule(message.payload.time.has_value(), "tck-id-payloads-timestamp-in-UTC", message);
        seq = message.payload.seq.value_or(0);
    }
    return broken;
}

}  // namespace vornex::test
