// A small host: loads the driver, defines two labels, polls them, writes one. A panel does the same with the exchange
// on a thread of its own. Run: minimal_host LIBRARY PORT, against vornex-sim -l examples/plant.json -p PORT.
#include <arpa/inet.h>
#include <dlfcn.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vornex_label_tcp/Entry_Points.h>

#include <cstdio>
#include <cstdlib>

template <class Function>
Function* find(void* library, const char* name) {
    void* const symbol = library ? dlsym(library, name) : nullptr;
    if (!symbol) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(6);
    }
    return reinterpret_cast<Function*>(symbol);
}
#define ENTRY_POINT(name) auto* const name = find<decltype(::name)>(library, #name)

static int writeState = 0;  // 1 done, 2 given up
static void notify(int, int, int, int state) { writeState = state; }
static int connectTo(int port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(uint16_t(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int link = socket(AF_INET, SOCK_STREAM, 0);
    const timeval patience = {1, 0};
    setsockopt(link, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    if (connect(link, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) return link;
    std::perror("connect");
    std::exit(3);
}

// Exactly the bytes that the reply must have, or none when they do not come in time.
static QByteArray exchange(int link, const Protocol& request) {
    if (send(link, request.frame.constData(), size_t(request.frameLength), MSG_NOSIGNAL) < 0) return QByteArray();
    QByteArray reply(request.replyLength, '\0');
    const ssize_t got = recv(link, reply.data(), size_t(request.replyLength), MSG_WAITALL);
    return got == request.replyLength ? reply : QByteArray();
}

static Label_Type_Info label(const char* name, int typeCode, unsigned address) {
    Label_Type_Info info;
    info.name = QString::fromLatin1(name);
    info.typeFlags = quint16(typeCode);
    info.address = address;
    return info;
}

int main(int argc, char** argv) {
    if (argc != 3) return std::fprintf(stderr, "usage: minimal_host LIBRARY PORT\n"), 1;
    void* const library = dlopen(argv[1], RTLD_NOW);
    ENTRY_POINT(SetComInfo);
    ENTRY_POINT(RegistCallBackFuncIntf);
    ENTRY_POINT(PassVarName_2);
    ENTRY_POINT(ReCreatReadVarList);
    ENTRY_POINT(ComCommunication);
    ENTRY_POINT(DataCom);
    ENTRY_POINT(GetRegisterData);
    ENTRY_POINT(SetRegisterData);

    ComInfo settings;
    settings.maxBytesPerRequest = 240;
    settings.retryLimit = 2;
    settings.writeMode = 2;  // writes go to the controller
    SetComInfo(&settings);
    RegistCallBackFuncIntf(notify, nullptr);
    QList<Label_Type_Info> labels;
    labels << label("Speed", 3, 100) << label("Setpoint", 4, 104);
    PassVarName_2(&labels);
    QList<HOST_VAR> polled;
    HOST_VAR variable;
    variable.count = 1;  // 16-bit words
    for (const Label_Type_Info& info : labels) {
        variable.label = info.name;
        polled << variable;
    }
    ReCreatReadVarList(&polled);
    QByteArray value("\xD2\x04", 2);  // 1234, low byte first
    SetRegisterData(QString::fromLatin1("Setpoint"), 0, QString(), 0, &value, 1, 4, 1);

    int link = connectTo(std::atoi(argv[2]));
    // the write, then one round of the polled labels; finishFlag tells that every one of them has been read
    while (writeState == 0 || settings.finishFlag == 0) {
        QByteArray reply = exchange(link, *ComCommunication());  // never null while labels are polled
        // after a time-out a late reply would pass for the next one: start afresh
        if (reply.isEmpty()) close(link), link = connectTo(std::atoi(argv[2]));
        const int status = DataCom(&reply, reply.size())->status;
        if (status > 1) return std::fprintf(stderr, "gave up, code %d\n", status), 4;
    }
    for (const Label_Type_Info& info : labels) {
        GetRegisterData(info.name, 0, QString(), 0, &value, 1);
        std::printf("%s = %d\n", qPrintable(info.name), quint8(value.at(0)) | quint8(value.at(1)) << 8);
    }
    return close(link);
}
