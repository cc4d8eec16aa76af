// A small host: loads the driver, polls three labels, writes one. docs/host-interface.md explains it piece by piece.
// Run: minimal_host LIBRARY PORT [ROUNDS [MS]], against vornex-sim -l examples/plant.json -p PORT.
#include <arpa/inet.h>
#include <dlfcn.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vornex_label_tcp/Entry_Points.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

#define ENTRY_POINTS(DO)       \
    DO(SetComInfo)             \
    DO(RegistCallBackFuncIntf) \
    DO(PassVarName_2) DO(ReCreatReadVarList) DO(ComCommunication) DO(DataCom) DO(GetRegisterData) DO(SetRegisterData)

struct Driver {
#define MEMBER(name) decltype(&::name) name;
    ENTRY_POINTS(MEMBER)
};
static Driver driver;

static bool load(const char* file) {
    void* const library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    bool complete = library != nullptr;
#define FIND(name)                                                                          \
    if (complete) driver.name = reinterpret_cast<decltype(&::name)>(dlsym(library, #name)); \
    complete = complete && driver.name != nullptr;
    ENTRY_POINTS(FIND)
    if (!complete) std::fprintf(stderr, "%s\n", dlerror());
    return complete;
}

// What the exchange thread and the others share. Nobody calls the driver while holding this mutex: the callback takes
// it inside DataCom.
struct Shared {
    std::mutex mutex;
    std::condition_variable changed;
    bool stop = false;
    bool wake = false;   // something was written: do not wait for the next round
    int rounds = 0;      // complete ones
    int writeState = 0;  // of the last write: 0 under way, 1 acknowledged, 2 given up
};
static Shared shared;

static void onFinished(int /*hostHandle*/, int /*varType*/, int /*varId*/, int state) {
    const std::lock_guard<std::mutex> lock(shared.mutex);
    shared.writeState = state;
    shared.changed.notify_all();
}

static ComInfo settings;

static Label_Type_Info label(const char* name, int typeCode, unsigned address) {
    Label_Type_Info info;
    info.name = QString::fromLatin1(name);
    info.typeFlags = quint16(typeCode);
    info.address = address;
    return info;
}

static HOST_VAR variable(const char* name, int count) {
    HOST_VAR polled;
    polled.label = QString::fromLatin1(name);
    polled.count = count;  // 16-bit words for these types
    return polled;
}

// Returns how many requests a round takes.
static int setUp() {
    settings.maxBytesPerRequest = 100;
    settings.retryLimit = 2;
    settings.writeMode = 2;  // writes go to the controller
    driver.SetComInfo(&settings);
    driver.RegistCallBackFuncIntf(onFinished, nullptr);
    QList<Label_Type_Info> labels;
    labels << label("Speed", 3, 100) << label("Setpoint", 4, 104) << label("State", 5, 1144);
    driver.PassVarName_2(&labels);
    QList<HOST_VAR> polled;
    polled << variable("Speed", 1) << variable("Setpoint", 1) << variable("State", 2);
    return driver.ReCreatReadVarList(&polled);
}

typedef std::chrono::steady_clock Clock;
typedef std::chrono::milliseconds Milliseconds;

struct Link {
    int port;
    int socket;
    Milliseconds away;  // the pause before the next try while the controller cannot be reached, else 0

    void close() {
        if (socket >= 0) ::close(socket);
        socket = -1;
    }

    // A connection on which no byte waits: a byte that nobody asked for belongs to an earlier request, or to another
    // client. A new connection is listened to for a moment.
    bool ready() {
        char surplus;
        if (socket >= 0 && (recv(socket, &surplus, 1, MSG_DONTWAIT) >= 0 || (errno != EAGAIN && errno != EINTR)))
            close();
        if (socket >= 0) return true;
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(uint16_t(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const timeval patience = {1, 0};
        socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);  // also ends connect
        setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        const bool connected = connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        pollfd quiet = {socket, POLLIN, 0};
        if (!connected || poll(&quiet, 1, 20) != 0) close();
        const Milliseconds longer = std::min(std::max(2 * away, Milliseconds(100)), Milliseconds(2000));
        away = socket >= 0 ? Milliseconds(0) : longer;
        return socket >= 0;
    }

    // Exactly the bytes that the reply must have, or none when they do not come in time.
    QByteArray exchange(const Protocol& request) {
        if (send(socket, request.frame.constData(), size_t(request.frameLength), MSG_NOSIGNAL) != request.frameLength)
            return QByteArray();
        QByteArray reply(request.replyLength, '\0');
        const ssize_t got = recv(socket, reply.data(), size_t(request.replyLength), MSG_WAITALL);
        return got == request.replyLength ? reply : QByteArray();
    }
};

static int wordAt(const QByteArray& bytes, int at) { return quint8(bytes.at(at)) | quint8(bytes.at(at + 1)) << 8; }

// Each item of the reply holds as many bytes as the frame asks for. Writes have no items.
static bool answers(const Protocol& request, const QByteArray& reply) {
    if (request.request.accessMode != 0) return true;
    int at = request.replyDataOffset;
    for (int asked = 8; asked < request.frameLength - 2; asked += 6) {
        if (wordAt(reply, at) != wordAt(request.frame, asked)) return false;
        at += 2 + wordAt(reply, at);
    }
    return true;
}

// Waits until then; shorter when the host stops and, if `wakes`, when something was written. False: the host stops.
static bool pauseUntil(Clock::time_point then, bool wakes) {
    std::unique_lock<std::mutex> lock(shared.mutex);
    shared.changed.wait_until(lock, then, [wakes] { return shared.stop || (wakes && shared.wake); });
    if (wakes) shared.wake = false;
    return !shared.stop;
}

static long exchanges = 0;  // of the exchange thread, as is `failed`
static long failed = 0;

enum Outcome { NothingToSend, Sent, RangesServed };

// One frame there and back. Takes the ranges of the cyclic list that it served, or gave up, off `open`.
static Outcome serveOne(Link& link, int& open) {
    const Protocol* const request = driver.ComCommunication();
    if (request == nullptr) return NothingToSend;
    const bool cyclic = request->request.varId == -1;
    const int ranges = (request->frameLength - 6) / 6;
    QByteArray reply = link.ready() ? link.exchange(*request) : QByteArray();
    const int length = reply.size();
    if (length != 0 && !answers(*request, reply)) reply.clear();  // the length stays: the driver counts a bad reply
    const int status = driver.DataCom(&reply, length)->status;    // from here on `request` may be gone
    ++exchanges;
    if (length == 0 || reply.isEmpty() || status != ResultGood) {
        ++failed;
        link.close();
    }
    if (!cyclic || status == ResultRetrying) return Sent;
    open -= ranges;
    return RangesServed;
}

// One round: what waits to be written, and each request of the cyclic list once.
static void serveRound(Link& link, int requests) {
    for (int open = requests;;) {
        const Outcome outcome = serveOne(link, open);
        if (outcome == NothingToSend || (outcome == RangesServed && open <= 0)) return;
        if (!pauseUntil(Clock::now() + link.away, false)) return;
    }
}

// The exchange thread. A slow round is followed by a whole pause too, never by a chase.
static void exchangeLoop(int port, int requests, Milliseconds interval) {
    Link link = {port, -1, Milliseconds(0)};
    for (Clock::time_point next = Clock::now(); pauseUntil(next, true); next = Clock::now() + interval) {
        serveRound(link, requests);
        const std::lock_guard<std::mutex> lock(shared.mutex);
        ++shared.rounds;
        shared.changed.notify_all();
    }
    link.close();
}

// Writes a 16-bit value. False when the label is unknown, which SetRegisterData itself does not tell.
static bool write(const char* name, int value) {
    const QString text = QString::fromLatin1(name);
    QByteArray bytes;
    if (driver.GetRegisterData(text, 0, QString(), 0, &bytes, 1) == 0) return false;
    bytes[0] = char(value & 0xFF);  // low byte first, as on the wire
    bytes[1] = char(value >> 8);
    driver.SetRegisterData(text, 0, QString(), 0, &bytes, 1, 4, 1);
    const std::lock_guard<std::mutex> lock(shared.mutex);
    shared.wake = true;
    shared.changed.notify_all();
    return true;
}

static bool show(const char* name) {
    QByteArray bytes;
    if (driver.GetRegisterData(QString::fromLatin1(name), 0, QString(), 0, &bytes, 1) == 0) return false;
    return std::printf("%s = %d\n", name, wordAt(bytes, 0)) > 0;
}

int main(int argc, char** argv) {
    if (argc < 3 || argc > 5) return std::fprintf(stderr, "usage: minimal_host LIBRARY PORT [ROUNDS [MS]]\n"), 1;
    const int rounds = argc > 3 ? std::atoi(argv[3]) : 10;
    const Milliseconds interval(argc > 4 ? std::atoi(argv[4]) : 100);
    if (!load(argv[1])) return 6;
    const int requests = setUp();
    std::thread exchangeThread(exchangeLoop, std::atoi(argv[2]), requests, interval);

    bool good = write("Setpoint", 1234);
    {
        std::unique_lock<std::mutex> lock(shared.mutex);
        shared.changed.wait(lock, [rounds] { return shared.rounds >= rounds && shared.writeState != 0; });
        good = good && shared.writeState == 1;
        shared.stop = true;
        shared.changed.notify_all();
    }
    exchangeThread.join();  // no call runs any more: the library could be unloaded now

    good = show("Speed") && show("Setpoint") && good;
    std::printf("%d rounds of %d requests, %ld exchanges, %ld failed\n", rounds, requests, exchanges, failed);
    return good ? 0 : 4;
}
