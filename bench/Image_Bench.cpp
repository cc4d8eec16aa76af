// Check values and the data image: the driver's byte work, beside the straightforward way and the bare hash.
#include <memory>

#include "Bench.h"
#include "Scene.h"
#include "Straightforward.h"
#include "protocol/Check_Functions.h"
#include "protocol/Func_DealData.h"

namespace {

enum { GroupAddress = 0x10000 };

typedef std::vector<unsigned char> Bytes;

Bytes countingBytes(int count) {
    Bytes bytes(static_cast<size_t>(count));
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(i * 37);
    return bytes;
}

std::vector<Way> checkWays(int size) {
    const auto bytes = std::make_shared<Bytes>(countingBytes(size));
    const auto count = static_cast<unsigned short>(size);
    const int times = 200000 / size;
    return {{"driver", [=] { return perStep(times, [&] { keep(CalCRC(bytes->data(), count)); }); }},
            {"256_entries", [=] { return perStep(times, [&] { keep(straightforward::crc(bytes->data(), count)); }); }}};
}

// A driver with one full group polled, the reply to it in flight, and images of others that hold the same bytes.
struct One_Group {
    One_Group() : bytes(countingBytes(scene::GroupBytes)) {
        scene::reset();
        scene::pollOneGroup();
        reply = scene::replyTo(*ComCommunication());
        scene::exchange(reply, 1);
        ComCommunication();
        for (straightforward::Image* image : {&alone, &twice})
            straightforward::storeAlone(*image, GroupAddress, bytes.data(), scene::GroupBytes);
    }

    const Bytes bytes;
    QByteArray reply;
    straightforward::Image alone;
    straightforward::Image twice;
    QByteArray out = QByteArray(scene::GroupBytes, '\0');
};

enum { TimesInSlice = 100 };

std::vector<Way> storeWays() {
    const auto group = std::make_shared<One_Group>();
    const auto driver = [=] {
        const Mutex_Lock lock(PLC_driver.dataMutex);
        SaveToLocalDataErea(&group->reply);
    };
    const auto alone = [=] {
        straightforward::storeAlone(group->alone, GroupAddress, group->bytes.data(), scene::GroupBytes);
    };
    const auto twice = [=] {
        straightforward::store(group->twice, GroupAddress, group->bytes.data(), scene::GroupBytes);
    };
    return {{"driver", [=] { return perStep(TimesInSlice, driver); }},
            {"hash_alone", [=] { return perStep(TimesInSlice, alone); }},
            {"two_lookups", [=] { return perStep(TimesInSlice, twice); }}};
}

std::vector<Way> readWays() {
    const auto group = std::make_shared<One_Group>();
    const QString label = QString::fromLatin1("Block[0]");
    const auto driver = [=] { GetRegisterData(label, 0, QString(), 0, &group->out, scene::GroupBytes); };
    const auto alone = [=] {
        straightforward::readAlone(group->alone, GroupAddress, group->out.data(), scene::GroupBytes);
    };
    const auto twice = [=] { keep(straightforward::read(group->twice, GroupAddress, scene::GroupBytes).constData()); };
    return {{"driver", [=] { return perStep(TimesInSlice, driver); }},
            {"hash_alone", [=] { return perStep(TimesInSlice, alone); }},
            {"two_lookups", [=] { return perStep(TimesInSlice, twice); }}};
}

// One whole exchange of a full group, without a socket; the other way makes and checks nothing but the check values.
std::vector<Way> exchangeWays() {
    const auto group = std::make_shared<One_Group>();
    const auto frame = std::make_shared<Bytes>(countingBytes(scene::GroupBytes + 8));
    const auto driver = [=] { scene::exchange(group->reply, 1); };
    const auto plain = [=] {
        keep(straightforward::crc(frame->data(), 10));
        keep(straightforward::crc(frame->data(), static_cast<unsigned short>(frame->size() - 2)));
        straightforward::store(group->twice, GroupAddress, frame->data() + 6, scene::GroupBytes);
    };
    return {{"driver", [=] { return perStep(TimesInSlice, driver); }},
            {"two_lookups_and_256_entries", [=] { return perStep(TimesInSlice, plain); }}};
}

}  // namespace

void addImageGroups(Groups& groups) {
    for (int size : {12, 256, 1012})
        groups.push_back({"check/" + std::to_string(size), [=] { return checkWays(size); }});
    groups.push_back({"store_999", storeWays});
    groups.push_back({"read_999", readWays});
    groups.push_back({"exchange_999", exchangeWays});
}
