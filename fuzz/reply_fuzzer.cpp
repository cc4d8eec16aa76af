// Reply bytes against a prepared frame in flight. In half of the inputs the check value is repaired, so that the code
// behind it is reached. What the image must hold afterwards is worked out here, from the frame that was sent.
#include "Driver_Records.h"
#include "Fuzz_Input.h"

namespace {

typedef QHash<unsigned int, unsigned char> Image;

struct Round {
    QByteArray frame;  // as sent
    bool isWrite = false;
    bool isLocal = true;
    bool isStored = true;  // a good read reply goes into the image
    int expected = 0;      // reply length
};

unsigned byteAt(const QByteArray& bytes, int at) { return static_cast<unsigned char>(bytes.at(at)); }

// Whether the items of the reply stay in front of its check value; with `image`, puts them there.
bool walkItems(const QByteArray& frame, const QByteArray& reply, Image* image) {
    int at = 4;
    for (int item = 4; item + 6 <= frame.size() - 2; item += 6) {
        const unsigned address = byteAt(frame, item) | byteAt(frame, item + 1) << 8 | byteAt(frame, item + 2) << 16 |
                                 byteAt(frame, item + 3) << 24;
        if (at + 2 > reply.size() - 2) return false;
        const int count = static_cast<int>(byteAt(reply, at) | byteAt(reply, at + 1) << 8);
        at += 2;
        if (at + count > reply.size() - 2) return false;
        for (int i = 0; i < count && image != nullptr; ++i)
            (*image)[address + static_cast<unsigned>(i)] = static_cast<unsigned char>(reply.at(at + i));
        at += count;
    }
    return true;
}

bool isGood(const Round& round, const QByteArray& reply, int length) {
    if (length != round.expected || reply.size() < 6) return false;
    if (sealed(reply.left(reply.size() - 2)) != reply) return false;
    return round.isWrite || walkItems(round.frame, reply, nullptr);
}

void queueRequests(Fuzz_Input& input, int kind, int areaId, int remoteStore) {
    const int requests = 1 + input.below(6);
    for (int i = 0; i < requests; ++i) {
        const int length = input.chance() ? input.below(40) : input.below(256);
        RW_VAR request = makeRequest(input.chance() ? input.take32() : input.take8(), length, 1 + i % 2);
        request.varType = input.below(14) - 1;
        request.areaId = areaId;
        request.remoteStore = remoteStore;
        if (kind == 1) {
            request.accessMode = 1;
            request.data = input.takeBytes(length);
            AddListWriteVar(&request);
        } else if (kind == 2) {
            PLC_driver.onceReadList.append(request);
        } else {
            AddListReadVar(&request);
        }
    }
}

QByteArray takeReply(Fuzz_Input& input, const Round& round) {
    const unsigned shape = input.take8();
    QByteArray reply = input.takeBytes(shape & 8 ? input.below(64) : round.expected);
    if (shape & 2) reply.append(QByteArray(qMax(0, round.expected - reply.size()), '\0'));
    if (shape & 4) {  // honest counts in front of whatever the data are
        int at = 4;
        for (int item = 8; item + 2 <= round.frame.size() - 2 && at + 2 <= reply.size(); item += 6) {
            reply.replace(at, 2, round.frame.mid(item, 2));
            at += 2 + static_cast<int>(byteAt(round.frame, item) | byteAt(round.frame, item + 1) << 8);
        }
    }
    if (shape & 1 && reply.size() >= 2) reply = sealed(reply.left(reply.size() - 2));
    return reply;
}

// One reply to the frame in flight, and what it may have done.
void answerOnce(Fuzz_Input& input, const Round& round, Image& image) {
    QByteArray reply = takeReply(input, round);
    const int length = input.below(16) == 0 ? static_cast<int>(input.take16()) - 3 : reply.size();
    const bool good = isGood(round, reply, length);
    const int entries = PLC_driver.readList.size();
    const QByteArray before = reply;

    const int status = DataCom(&reply, length)->status;

    REQUIRE(reply == before && PLC_driver.readList.size() == entries);
    REQUIRE(good == (status == ResultGood || status == ResultGoodRemote));
    if (good && !round.isWrite && round.isStored) walkItems(round.frame, reply, &image);
    REQUIRE(PLC_driver.dataImage == image);
    REQUIRE((status == ResultRetrying) == !PLC_driver.protocolList.isEmpty());
    REQUIRE(status != ResultRetrying || PLC_driver.protocolList.first().frame == round.frame);
    if (good || status == ResultRetrying) return;
    REQUIRE(round.isLocal ? status >= 11 && status <= 82 : status >= 111 && status <= 182);
}

void answerAll(Fuzz_Input& input, Image& image) {
    for (int i = 0; i < 6 && !input.isEmpty(); ++i) {
        const Protocol* const protocol = ComCommunication();
        if (protocol == nullptr) continue;
        Round round;
        round.frame = protocol->frame;
        round.isWrite = protocol->request.accessMode != 0;
        round.isLocal = protocol->request.areaId == LocalArea;
        round.isStored = round.isLocal || protocol->request.remoteStore == -1;
        round.expected = protocol->replyLength;
        image = PLC_driver.dataImage;  // a write frame has brought it up to date
        answerOnce(input, round, image);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz_Input input(data, size);
    forgetEverything();
    ComInfo settings;
    SetComInfo(&settings);
    settings.localAreaId = LocalArea;
    settings.maxBytesPerRequest = 200;
    settings.retryLimit = input.below(3);
    settings.multiStation = input.chance();
    const int kind = input.below(3);
    queueRequests(input, kind, input.chance() ? LocalArea : RemoteArea, input.chance() ? -1 : 0);
    Image image;
    answerAll(input, image);
    return 0;
}
