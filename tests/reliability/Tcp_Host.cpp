#include "Tcp_Host.h"

#include <unistd.h>

#include "vornex_label_tcp/Entry_Points.h"

using vornex::test::Tcp_Client;

namespace {

unsigned wordAt(const std::string& bytes, std::size_t at) {
    const auto low = static_cast<unsigned char>(bytes[at]);
    const auto high = static_cast<unsigned char>(bytes[at + 1]);
    return low | static_cast<unsigned>(high) << 8;
}

// Each item of the reply has the length that the frame asked for.
bool countsAgree(const std::string& frame, const std::string& reply) {
    std::size_t at = 4;
    for (std::size_t item = 8; item + 2 <= frame.size() - 2; item += 6) {
        if (at + 2 > reply.size() || wordAt(reply, at) != wordAt(frame, item)) return false;
        at += 2 + wordAt(frame, item);
    }
    return true;
}

}  // namespace

int Tcp_Host::exchange() {
    const Protocol* const protocol = ComCommunication();
    if (protocol == nullptr) return -1;
    ++exchanges;
    std::string reply;
    const bool linked = connect();
    if (!linked) ::usleep(2000);  // back-off: the controller is away
    if (!linked || !collect(*protocol, reply)) reply.clear();
    const int length = static_cast<int>(reply.size());
    if (length > 0) spoil(reply);
    const std::string frame(protocol->frame.constData(), static_cast<std::size_t>(protocol->frame.size()));
    if (rules.checkCounts && protocol->request.accessMode == 0 && !countsAgree(frame, reply)) reply.clear();
    if (reply.empty()) {
        ++failures;
        if (rules.startAfresh) client.reset();
    }
    QByteArray bytes(reply.data(), static_cast<int>(reply.size()));
    return DataCom(&bytes, length)->status;  // a refused reply keeps its length: it is a bad one, not a missing one
}

bool Tcp_Host::connect() {
    if (client && rules.startAfresh && client->somethingWaits()) client.reset();  // surplus, or the connection's end
    if (client) return true;
    client = std::make_unique<Tcp_Client>(port, patience);
    const bool unwanted = client->isConnected() && rules.settleMs >= 0 && client->somethingWaits(rules.settleMs);
    unasked += unwanted ? 1 : 0;
    if (unwanted || !client->isConnected()) client.reset();
    return client != nullptr;
}

void Tcp_Host::spoil(std::string& reply) {
    ++replies;
    if (zerosEvery == 0 || replies % zerosEvery != 0) return;
    reply.assign(reply.size(), '\0');
    ++zeroed;
}

// Exactly the bytes that the reply must have. False when they do not come in time.
bool Tcp_Host::collect(const Protocol& protocol, std::string& reply) {
    const auto replySize = static_cast<std::size_t>(protocol.replyLength);
    if (client->send(std::string(protocol.frame.constData(), static_cast<std::size_t>(protocol.frameLength))))
        reply = client->receive(replySize);
    if (client->end() != Tcp_Client::End::Open) client.reset();
    return reply.size() == replySize;
}
