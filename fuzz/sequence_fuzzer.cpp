// Sequences over the entry points: rebuilds while a read is in flight, station switches, give-ups, remote area, full
// queues. A model beside the driver says what the image, the write queue and the notices must be after each step.
#include <algorithm>
#include <numeric>
#include <vector>

#include "Sequence_Model.h"

namespace {

// Of one read request: small pieces come from small settings, not from many of them.
const int MostPieces = 16;

// In the input: begin with an almost full queue of writes, or of one-shot reads. Costly, hence hard to stumble on,
// and only in every fourth of such inputs.
const quint32 QueueFiller = 0x4C4C5546;

std::vector<int> notices;  // since the last step: varId and state of each write's notice, one after the other
void onNotify(int, int varType, int varId, int state) {
    if (varType == 3) notices.insert(notices.end(), {varId, state});
}
void onFailure(QList<RW_VAR>*, int, int) {}

class Run {
public:
    Run(Fuzz_Input& bytes, bool mayFill) : input(bytes) {
        SetComInfo(&settings);
        RegistCallBackFuncIntf(onNotify, onFailure);
        settings.localAreaId = LocalArea;
        settings.maxBytesPerRequest = 1 + input.below(250);
        settings.retryLimit = input.below(3);
        settings.multiStation = input.chance();
        settings.writeMode = input.below(4) == 0 ? 0 : 2;
        define();
        if (input.take32() == QueueFiller && mayFill) input.chance() ? fillWrites() : fillOnceReads();
    }

    ~Run() { forgetEverything(); }

    void steps() {
        while (!input.isEmpty()) {
            step(input.below(16));
            REQUIRE(PLC_driver.writeList.size() <= QueueLimit && PLC_driver.onceReadList.size() <= QueueLimit);
            REQUIRE(PLC_driver.writeBurst <= 5 && PLC_driver.onceReadBurst <= 5);
            REQUIRE(notices == expectedNotices);
            notices.clear();
            expectedNotices.clear();
        }
        REQUIRE(image.equals(PLC_driver.dataImage));
    }

private:
    void step(int what) {
        if (what < 2) return write();
        if (what == 2) return read();
        if (what == 3) return rebuild();
        if (what == 4) return readOnce();
        if (what == 5) return EnableEthernet(input.below(4) - 1, input.below(3));
        if (what == 6) return change();
        if (what < 11) return communicate();
        answer(what);
    }

    void define() {
        static QList<Label_Type_Info> labels = {makeLabel("V", 5, 0x100), makeLabel("W", 3, 0x1000),
                                                makeLabel("Q", 8, 0xFFFFFFF8), makeLabel("B", 1, 0x400, {10, 0, 9})};
        PassVarName_2(&labels);
    }

    void fillOnceReads() {
        static const QList<RW_VAR> almostFull = [] {
            QList<RW_VAR> requests;
            for (int i = 0; i < QueueLimit - 2; ++i)
                requests.append(makeRequest(static_cast<quint32>(i), 4, 1000 + i / 2, i % 3));
            return requests;
        }();
        PLC_driver.onceReadList = almostFull;
    }

    void fillWrites() {
        static const QList<RW_VAR> almostFull = [] {
            QList<RW_VAR> requests;
            for (int i = 0; i < QueueLimit - 2; ++i) {
                requests.append(makeWrite(static_cast<quint32>(i), "x", 1000 + i / 2, i % 3));
                requests.last().varType = 3;
            }
            return requests;
        }();
        PLC_driver.writeList = almostFull;
        for (const RW_VAR& request : almostFull)
            writes.push_back(Model_Write{request.address, request.data, request.varId, request.station});
    }

    // --- host threads ---

    void write() {
        const Known_Label& label = Labels[input.below(4)];
        const int count = input.below(256) == 77 ? 500 + input.below(20) : input.below(9);
        QByteArray value = input.takeBytes(input.below(9));
        const int varId = input.below(6);
        const int station = input.below(3);
        QByteArray bytes = value.left(bytesOf(label, count));
        bytes.append(QByteArray(bytesOf(label, count) - bytes.size(), '\0'));
        SetRegisterData(label.name, 0, QString(), station, &value, count, 3, varId);
        if (settings.writeMode != 2 || failed) image.store(label.address, bytes);
        if (settings.writeMode != 2) return;
        for (int at = 0; at < bytes.size() && queuedWrites() < QueueLimit; at += 1000)
            writes.push_back(Model_Write{label.address + static_cast<quint32>(at), bytes.mid(at, 1000), varId,
                                         settings.multiStation ? station : settings.stationNo});
    }

    void read() {
        const Known_Label& label = Labels[input.below(4)];
        const int count = input.below(9);
        QByteArray out;
        static const QString index = text("2");
        REQUIRE(GetRegisterData(label.nameInTemplate, 0, index, 0, &out, count) == 1 &&
                out.size() == bytesOf(label, count));
        for (int i = 0; i < out.size(); ++i)
            REQUIRE(byteAt(out, i) == image.show(label.address + static_cast<quint32>(i)));
    }

    void readOnce() {
        const Known_Label& label = Labels[input.below(4)];
        const int length = qMin(input.below(200), MostPieces * settings.maxBytesPerRequest);
        RW_VAR request = makeRequest(0, length, input.below(3), input.below(3));
        request.label = label.name;
        AddListOnceReadVar(&request);
    }

    void rebuild() {
        QList<HOST_VAR> definitions;
        QList<int> chosen;
        for (int i = input.below(6); i > 0; --i) {
            HOST_VAR definition;
            chosen << input.below(4);
            definition.label = Labels[chosen.last()].name;
            definition.count = input.below(64) == 0 ? 600 : input.below(40);
            definition.count = qMin(definition.count, MostPieces * settings.maxBytesPerRequest / 2);
            definition.station = static_cast<quint8>(input.below(3));
            definitions << definition;
        }
        REQUIRE(ReCreatReadVarList(&definitions) == PLC_driver.readList.size());
        for (const RW_VAR& entry : PLC_driver.readList)
            REQUIRE(settings.maxBytesPerRequest == 1 ||
                    (entry.length > 0 && entry.length <= settings.maxBytesPerRequest));
        for (int i = 0; i < chosen.size(); ++i)
            checkCovered(Labels[chosen.at(i)], definitions.at(i).count);
    }

    void checkCovered(const Known_Label& label, int count) const {
        // Entries are in the order of signed addresses: go forward through the bytes as far as each entry reaches.
        qint64 at = static_cast<qint32>(label.address);
        const qint64 end = at + bytesOf(label, count);
        for (const RW_VAR& entry : PLC_driver.readList) {
            const qint64 start = static_cast<qint32>(entry.address);
            if (start <= at && start + entry.length > at) at = start + entry.length;
        }
        REQUIRE(at >= end);
    }

    // What the host changes on the exchange thread between two calls.
    void change() {
        const int what = input.below(8);
        if (what == 0) settings.remoteMode = input.chance();
        if (what == 1) settings.localAreaId = input.chance() ? LocalArea : RemoteArea;
        if (what == 2) settings.maxBytesPerRequest = 1 + input.below(250);
        if (what == 3) settings.writeMode = input.chance() ? 2 : 0;
        if (what == 4) define();
    }

    // --- exchange thread ---

    void communicate() {
        const bool resent = !sent.isEmpty();
        const Protocol* const protocol = ComCommunication();
        if (resent) {
            REQUIRE(protocol != nullptr && protocol->frame == sent);
            return;
        }
        forgetDropped();
        if (protocol == nullptr) {
            REQUIRE(settings.finishFlag == 1 && PLC_driver.writeBurst == 0);
            return;
        }
        sent = protocol->frame;
        REQUIRE(sent.size() == protocol->frameLength && sealed(sent.left(sent.size() - 2)) == sent);
        isWrite = sent.at(3) == 0x40;
        if (isWrite)
            checkWriteFrame();
        else
            checkReadFrame(*protocol);
    }

    // Writes for stations that are off leave the head of the queue without a notice.
    void forgetDropped() {
        auto kept = writes.begin();
        for (; writes.end() - kept > PLC_driver.writeList.size(); ++kept)
            REQUIRE(PLC_driver.stationMap.contains(kept->station));
        writes.erase(writes.begin(), kept);
        REQUIRE(queuedWrites() == PLC_driver.writeList.size());
    }

    int queuedWrites() const { return static_cast<int>(writes.size()); }

    void checkWriteFrame() {
        REQUIRE(!writes.empty());
        const Model_Write& head = writes.front();
        REQUIRE(wordAt(sent, 4) == head.address && sent.mid(10, sent.size() - 12) == head.data);
        REQUIRE(!PLC_driver.stationMap.contains(head.station));
        if (!failed) image.store(head.address, head.data);
    }

    void checkReadFrame(const Protocol& protocol) {
        int bytes = 0;
        const int ranges = (sent.size() - 6) / 6;
        for (int i = 0; i < ranges; ++i)
            bytes += static_cast<int>(byteAt(sent, 8 + 6 * i) | byteAt(sent, 9 + 6 * i) << 8);
        REQUIRE(ranges == 1 || bytes <= 999);
        REQUIRE(protocol.replyLength == 6 + 2 * ranges + bytes);
    }

    // A controller's honest reply: data from the input, repeated.
    QByteArray goodReply() {
        QByteArray reply("HEAD");
        const unsigned seed = input.take8();
        for (int item = 4; !isWrite && item + 6 <= sent.size() - 2; item += 6) {
            reply.append(sent.mid(item + 4, 2));
            const unsigned count = byteAt(sent, item + 4) | byteAt(sent, item + 5) << 8;
            for (unsigned i = 0; i < count; ++i)
                reply.append(static_cast<char>(seed + i * 7));
        }
        return sealed(reply);
    }

    void answer(int what) {
        QByteArray reply = sent.isEmpty() ? QByteArray("HEAD") : goodReply();
        if (what == 15) reply = input.takeBytes(input.below(12));
        if (what == 14) reply[input.below(qMin(reply.size(), 256))] = static_cast<char>(input.take8());
        const bool wasInFlight = !sent.isEmpty();
        const bool local = wasInFlight && PLC_driver.protocolList.first().request.areaId == settings.localAreaId;
        const int status = DataCom(&reply, reply.size())->status;
        if (!wasInFlight) {
            REQUIRE(status == ResultGood);
        } else if (status == ResultGood || status == ResultGoodRemote) {
            finish(true, local, reply);
        } else if (status != ResultRetrying) {
            finish(false, local, reply);
        }
    }

    void finish(bool good, bool local, const QByteArray& reply) {
        failed = !good;
        if (good && !isWrite && local) storeItems(reply);
        if (isWrite) finishWrite(good);
        sent.clear();
        REQUIRE(PLC_driver.protocolList.isEmpty());
    }

    // A variable is reported once: with its last piece, or with the piece that failed.
    void finishWrite(bool good) {
        const Model_Write head = writes.front();
        writes.erase(writes.begin());
        const auto isPieceOfIt = [&](const Model_Write& write) { return write.varId == head.varId; };
        const bool more = std::any_of(writes.begin(), writes.end(), isPieceOfIt);
        const auto isGivenUp = [&](const Model_Write& write) {
            return isPieceOfIt(write) && (!settings.multiStation || write.station == head.station);
        };
        if (!good) writes.erase(std::remove_if(writes.begin(), writes.end(), isGivenUp), writes.end());
        if (!good || !more) expectedNotices = {head.varId, good ? 1 : 2};
        REQUIRE(queuedWrites() == PLC_driver.writeList.size());
    }

    void storeItems(const QByteArray& reply) {
        int at = 4;
        for (int item = 4; item + 6 <= sent.size() - 2; item += 6) {
            const int count = static_cast<int>(byteAt(reply, at) | byteAt(reply, at + 1) << 8);
            image.store(wordAt(sent, item), reply.mid(at + 2, count));
            at += 2 + count;
        }
    }

    Fuzz_Input& input;
    ComInfo settings;
    Image_Model image;
    std::vector<Model_Write> writes;
    std::vector<int> expectedNotices;
    QByteArray sent;  // the frame in flight
    bool isWrite = false;
    bool failed = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz_Input input(data, size);
    const bool mayFill = std::accumulate(data, data + size, 0u) % 4 == 0;
    Run(input, mayFill).steps();
    return 0;
}
