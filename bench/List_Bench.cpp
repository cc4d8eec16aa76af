// Request lists: rebuilding the cyclic list, filling and draining the queues, going round a long cyclic list.
#include <algorithm>
#include <memory>
#include <stdexcept>

#include "Bench.h"
#include "Scene.h"
#include "Straightforward.h"
#include "lists/Address_Sort.h"
#include "lists/Func_Initi.h"

namespace {

// What no rebuild can do without: the labels' lookups, in the order of the definitions, and the sort of what they give.
// Warm, a label is found in the cache; cold, it is not, its definition is found in the table, and the cache takes it
// in.
class Least_Rebuild {
public:
    explicit Least_Rebuild(int count) {
        scene::reset();
        scene::passTags(count);
        definitions = scene::scatteredTags(count);
        ReCreatReadVarList(&definitions);  // fills the cache
        {
            const Mutex_Lock lock(PLC_driver.labelMutex);
            table_ = PLC_driver.labelTable;
            cache_.swap(PLC_driver.labelCache);
        }
        scene::forgetResolved();
        ReCreatReadVarList(&definitions);
    }

    void forget() {
        cache_ = Cache();
        cache_.reserve(table_.size());
    }

    int warm() {
        begin();
        const Cache& cache = cache_;
        for (int i = 0; i < definitions.size(); ++i)
            *end_++ = sortKey(cache.constFind(definitions.at(i).label)->address, i);
        return finish();
    }

    int cold() {
        begin();
        for (int i = 0; i < definitions.size(); ++i) {
            const QString& label = definitions.at(i).label;
            if (cache_.constFind(label) != cache_.constEnd()) throw std::runtime_error("a label was in the cache");
            ControlInformationM info;
            info.address = table_.constFind(label)->address;
            cache_.insert(label, info);
            *end_++ = sortKey(info.address, i);
        }
        return finish();
    }

    QList<HOST_VAR> definitions;

private:
    typedef QHash<QString, ControlInformationM> Cache;

    void begin() {
        keys_.resize(definitions.size());
        end_ = keys_.data();
    }
    int finish() {
        sortByAddress(keys_);
        return placeOf(keys_.at(0));
    }

    QHash<QString, Label_Type_Info> table_;
    Cache cache_;
    QVector<quint64> keys_;
    quint64* end_ = nullptr;
};

std::vector<Way> warmWays(int count) {
    const auto least = std::make_shared<Least_Rebuild>(count);
    const int times = std::max(20000 / count, 1);
    return {{"driver", [=] { return perStep(times, [&] { keep(ReCreatReadVarList(&least->definitions)); }); }},
            {"least", [=] { return perStep(times, [&] { keep(least->warm()); }); }}};
}

std::vector<Way> coldWays(int count) {
    const auto least = std::make_shared<Least_Rebuild>(count);
    return {{"driver",
             [=] {
                 scene::forgetResolved();
                 return perStep(1, [&] { keep(ReCreatReadVarList(&least->definitions)); });
             }},
            {"least", [=] {
                 least->forget();
                 return perStep(1, [&] { keep(least->cold()); });
             }}};
}

template <class Sort>
Slice sortSlice(const QList<RW_VAR>& requests, Sort sort) {
    return [=] {
        QList<RW_VAR> list = requests;
        list.detach();
        return perStep(1, [&] { sort(list); });
    };
}

std::vector<Way> sortWays(int count) {
    const QList<RW_VAR> requests = scene::scatteredRequests(count);
    std::vector<Way> ways = {{"driver", sortSlice(requests, [](QList<RW_VAR>& list) { Bubble_Sort(&list); })},
                             {"stable_sort_of_copies", sortSlice(requests, straightforward::stableSort)}};
    if (count <= 1000) ways.push_back({"pairwise_swaps", sortSlice(requests, straightforward::sortByPairwiseSwaps)});
    return ways;
}

std::vector<RW_VAR> tagReads(int count) {
    std::vector<RW_VAR> reads;
    for (int i = 0; i < count; ++i)
        reads.push_back(scene::tagRead(i));
    return reads;
}

void queueOnce(std::vector<RW_VAR>& reads) {
    for (RW_VAR& read : reads) {
        read.length = 4;
        AddListOnceReadVar(&read);
    }
}

void clearOnce() {
    const Mutex_Lock lock(PLC_driver.listMutex);
    PLC_driver.onceReadList.clear();
}

// The second of two fills: the first one leaves the heap as this one needs it, whatever was measured before.
double fillOnce(std::vector<RW_VAR>& reads) {
    clearOnce();
    queueOnce(reads);
    clearOnce();
    return perStep(1, [&] { queueOnce(reads); });
}

std::vector<Way> onceFillWays(int count) {
    scene::reset();
    scene::passTags(count);
    const auto reads = std::make_shared<std::vector<RW_VAR>>(tagReads(count));
    const auto quarter = std::make_shared<std::vector<RW_VAR>>(reads->begin(), reads->begin() + count / 4);
    queueOnce(*reads);  // fills the label cache, too
    return {{"driver", [=] { return fillOnce(*reads); }},
            {"quarter", [=] { return fillOnce(*quarter); }},
            {"looks_at_every_entry", [=] {
                 return perStep(1, [&] {
                     QList<RW_VAR> queue;
                     for (const RW_VAR& read : *reads)
                         straightforward::appendOnce(queue, read);
                 });
             }}};
}

std::vector<Way> writeFillWays(int count) {
    scene::reset();
    RW_VAR write = scene::tagRead(0);
    write.accessMode = 1;
    write.data = QByteArray(4, '\1');
    return {{"driver", [=]() mutable {
                 {
                     const Mutex_Lock lock(PLC_driver.listMutex);
                     PLC_driver.writeList.clear();
                 }
                 return perStep(1, [&] {
                     for (int i = 0; i < count; ++i)
                         AddListWriteVar(&write);
                 });
             }}};
}

const QList<RW_VAR>& onceQueue() NO_THREAD_SAFETY_ANALYSIS { return PLC_driver.onceReadList; }
const QList<RW_VAR>& writeQueue() NO_THREAD_SAFETY_ANALYSIS { return PLC_driver.writeList; }

// Answers every queued request until nothing is left to send. The bursts' empty calls are part of it.
double drain(const QList<RW_VAR>& queue) {
    const Protocol* frame = ComCommunication();
    while (frame == nullptr)  // a burst of the drain before ended here
        frame = ComCommunication();
    QByteArray reply = scene::replyTo(*frame);
    return perStep(1, [&] {
        while (!queue.isEmpty())
            scene::exchange(reply, 1);
    });
}

std::vector<Way> onceDrainWays(int count) {
    scene::reset();
    scene::passTags(count);
    const auto reads = std::make_shared<std::vector<RW_VAR>>(tagReads(count));
    return {{"driver", [=] {
                 queueOnce(*reads);
                 return drain(onceQueue());
             }}};
}

std::vector<Way> writeDrainWays(int count) {
    scene::reset();
    scene::passTags(count);
    return {{"driver", [=] {
                 QByteArray value(4, '\1');
                 for (int i = 0; i < count; ++i)
                     SetRegisterData(scene::tag(i), 0, QString(), 0, &value, 2, 3, i);
                 return drain(writeQueue());
             }}};
}

// One exchange of short requests out of a cyclic list of this length, after its first full pass.
std::vector<Way> cyclicWays(int count) {
    enum { RequestBytes = 100 };
    scene::reset(1);
    scene::passTags(count);
    {
        QList<HOST_VAR> definitions = scene::scatteredTags(count);
        for (HOST_VAR& definition : definitions)
            definition.count = RequestBytes / 2;
        ReCreatReadVarList(&definitions);
    }
    const auto reply = std::make_shared<QByteArray>(scene::replyTo(*ComCommunication()));
    scene::exchange(*reply, count / (scene::GroupBytes / RequestBytes) + 1);
    return {{"driver", [=] { return perStep(200, [&] { scene::exchange(*reply, 1); }); }}};
}

void add(Groups& groups, const char* name, std::vector<Way> (*ways)(int), const std::vector<int>& counts) {
    for (int count : counts)
        groups.push_back({name + ("/" + std::to_string(count)), [=] { return ways(count); }});
}

}  // namespace

void addListGroups(Groups& groups) {
    add(groups, "rebuild_warm", warmWays, {1000, 10000, 100000});
    add(groups, "rebuild_cold", coldWays, {1000, 10000, 100000});
    add(groups, "sort", sortWays, {1000, 10000, 100000});
    add(groups, "once_fill", onceFillWays, {512, 1024, 2048});
    add(groups, "write_fill", writeFillWays, {512, 1024, 2048});
    add(groups, "once_drain", onceDrainWays, {512, 1024, 2048});
    add(groups, "write_drain", writeDrainWays, {512, 1024, 2048});
    add(groups, "cyclic_exchange", cyclicWays, {100, 10000, 1000000});
}
