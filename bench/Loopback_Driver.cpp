// The host loop with the real library, loaded as a panel loads it, and what lies beneath it.
#include <dlfcn.h>
#include <unistd.h>

#include "Loopback_Contender.h"
#include "Loopback_Socket.h"
#include "Straightforward.h"
#include "vornex_label_tcp/Entry_Points.h"

namespace {

template <class Function>
Function* entryPoint(void* library, const char* name, Function*) {
    void* const found = dlsym(library, name);
    if (found == nullptr) fail(std::string("no entry point ") + name);
    return reinterpret_cast<Function*>(found);
}
#define ENTRY_POINT(library, name) entryPoint(library, #name, &name)

class Driver_Host : public Contender {
public:
    Driver_Host(const char* path, int port) : socket_(connectTo(port)) {
        void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) fail(dlerror());
        next_ = ENTRY_POINT(library, ComCommunication);
        answer_ = ENTRY_POINT(library, DataCom);
        settings_.maxBytesPerRequest = BlockBytes;
        ENTRY_POINT(library, SetComInfo)(&settings_);

        Label_Type_Info block;
        block.name = QString::fromLatin1("Block");
        block.typeFlags = 1 | LabelIsArray;
        block.address = 0x1000;
        block.dimensionCount = 1;
        block.dimensions << 10 << 0 << BlockBytes;
        QList<Label_Type_Info> labels;
        labels << block;
        ENTRY_POINT(library, PassVarName_2)(&labels);
        HOST_VAR polled;
        polled.label = QString::fromLatin1("Block[0]");
        polled.count = BlockBytes;
        QList<HOST_VAR> definitions;
        definitions << polled;
        if (ENTRY_POINT(library, ReCreatReadVarList)(&definitions) != 1) fail("the block gives no request");
    }
    ~Driver_Host() override { close(socket_); }

    int bytes() const override { return BlockBytes; }

    void exchange(int times) override {
        for (int i = 0; i < times; ++i) {
            const Protocol* const request = next_();
            if (request == nullptr) fail("nothing to send");
            sendAll(socket_, request->frame.constData(), request->frameLength);
            reply_.resize(request->replyLength);
            receiveAll(socket_, reply_.data(), reply_.size());
            if (answer_(&reply_, reply_.size())->status != ResultGood) fail("bad reply");
        }
    }

private:
    const int socket_;
    ComInfo settings_;
    QByteArray reply_;
    Protocol* (*next_)();
    RW_VAR* (*answer_)(QByteArray*, int);
};

class Ping_Pong : public Contender {
public:
    explicit Ping_Pong(int port) : socket_(connectTo(port)) {}
    ~Ping_Pong() override { close(socket_); }

    int bytes() const override { return BlockBytes; }

    void exchange(int times) override {
        const char request[RequestBytes] = {};
        char reply[ReplyBytes];
        for (int i = 0; i < times; ++i) {
            sendAll(socket_, request, RequestBytes);
            if (!receiveAll(socket_, reply, ReplyBytes)) fail("closed");
        }
    }

private:
    const int socket_;
};

class Floor : public Contender {
public:
    Floor(const char* path, int port) : socket_(connectTo(port)) {
        void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) fail(dlerror());
        check_ = reinterpret_cast<Check>(dlsym(library, "_Z6CalCRCPht"));
        if (check_ == nullptr) fail("no entry point CalCRC");
    }
    ~Floor() override { close(socket_); }

    int bytes() const override { return BlockBytes; }

    void exchange(int times) override {
        enum { CheckBytes = 2, ItemAt = 6 };
        unsigned char request[RequestBytes] = {};
        unsigned char reply[ReplyBytes];
        for (int i = 0; i < times; ++i) {
            const unsigned asked = check_(request, RequestBytes - CheckBytes);
            request[RequestBytes - CheckBytes] = static_cast<unsigned char>(asked);
            request[RequestBytes - 1] = static_cast<unsigned char>(asked >> 8);
            sendAll(socket_, reinterpret_cast<const char*>(request), RequestBytes);
            if (!receiveAll(socket_, reinterpret_cast<char*>(reply), ReplyBytes)) fail("closed");
            const unsigned answered = check_(reply, ReplyBytes - CheckBytes);
            if (answered != (reply[ReplyBytes - 2] | static_cast<unsigned>(reply[ReplyBytes - 1]) << 8))
                fail("bad reply");
            straightforward::storeAlone(image_, 0x1000, reply + ItemAt, BlockBytes);
        }
    }

private:
    typedef unsigned short (*Check)(unsigned char*, unsigned short);

    const int socket_;
    Check check_;
    straightforward::Image image_;
};

}  // namespace

std::unique_ptr<Contender> makeFloor(const char* library, int port) {
    return std::unique_ptr<Contender>(new Floor(library, port));
}

std::unique_ptr<Contender> makeDriverHost(const char* library, int port) {
    return std::unique_ptr<Contender>(new Driver_Host(library, port));
}

std::unique_ptr<Contender> makePingPong(int port) { return std::unique_ptr<Contender>(new Ping_Pong(port)); }
