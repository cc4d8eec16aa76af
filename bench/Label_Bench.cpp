// Labels: reading by cached label, resolving without the cache, rewriting templates.
#include <memory>
#include <stdexcept>
#include <thread>

#include "Bench.h"
#include "Scene.h"
#include "Straightforward.h"
#include "label/Label_Resolution.h"

namespace {

enum { ReadsInSlice = 1024 };

QHash<QString, Label_Type_Info> labelTable() {
    const Mutex_Lock lock(PLC_driver.labelMutex);
    return PLC_driver.labelTable;
}

// The labels in the order they are read: every one once, neighbours far apart, as strings of their own.
std::vector<QString> randomTags(int count) {
    std::vector<QString> tags;
    unsigned next = 1;
    for (int i = 0; i < ReadsInSlice; ++i) {
        next = next * 1664525U + 1013904223U;
        tags.push_back(scene::tag(static_cast<int>((next >> 8) % static_cast<unsigned>(count))));
    }
    return tags;
}

std::vector<Way> cachedReadWays(int count) {
    struct Plain {
        straightforward::Labels labels;
        straightforward::Image image;
        QMutex mutex;
        QByteArray out;
    };
    scene::reset();
    scene::passTags(count);
    const auto plain = std::make_shared<Plain>();
    plain->labels.pass(labelTable().values());
    const auto tags = std::make_shared<std::vector<QString>>(randomTags(count));
    return {{"driver",
             [=] {
                 auto tag = tags->begin();
                 return perStep(ReadsInSlice, [&] { GetRegisterData(*tag++, 0, QString(), 0, &plain->out, 2); });
             }},
            {"straightforward", [=] {
                 auto tag = tags->begin();
                 return perStep(ReadsInSlice, [&] {
                     straightforward::readValue(plain->labels, plain->image, plain->mutex, *tag++, &plain->out, 2);
                 });
             }}};
}

// Labels that the caches do not know, few enough to stay in the processor's.
struct Unknown_Labels {
    explicit Unknown_Labels(const char* label) {
        scene::reset();
        scene::passShapes();
        scene::passTags(1000);
        table = labelTable();
        plain.pass(table.values());
        for (int i = 0; i < scene::ShapeElements; ++i)
            labels.push_back(QString::fromLatin1(label).arg(i));
        nameSize = labels.front().indexOf(QLatin1Char('['));
        cache.reserve(table.size());
    }

    std::vector<QString> labels;
    int nameSize = 0;  // of the first name; -1: the label is the name
    QHash<QString, Label_Type_Info> table;
    QHash<QString, ControlInformationM> cache;
    straightforward::Labels plain;
};

// The step for each of the labels, once. A step returns 0 when all is well.
template <class Step>
double perLabel(const Unknown_Labels& unknown, Step step) {
    int failed = 0;
    auto label = unknown.labels.begin();
    const double each = perStep(scene::ShapeElements, [&] { failed += step(*label++); });
    if (failed != 0) throw std::runtime_error("a label was resolved otherwise than expected");
    return each;
}

double resolveByDriver(const Unknown_Labels& unknown) {
    {
        const Mutex_Lock lock(PLC_driver.labelMutex);
        for (const QString& label : unknown.labels)
            PLC_driver.labelCache.remove(label);
    }
    ControlInformationM info;
    return perLabel(unknown, [&](const QString& label) { return get_label_address(label, info); });
}

// The lookups that no resolution can do without: the cache does not hold the label, the table holds the definition of
// its first name, and the cache takes the label in. No lock. The table wants the first name as a text of its own.
double lookupsAlone(Unknown_Labels& unknown) {
    for (const QString& label : unknown.labels)
        unknown.cache.remove(label);
    return perLabel(unknown, [&](const QString& label) {
        if (unknown.cache.constFind(label) != unknown.cache.constEnd()) return 1;
        ControlInformationM info;
        info.address = unknown.table.constFind(unknown.nameSize < 0 ? label : label.left(unknown.nameSize))->address;
        unknown.cache.insert(label, info);
        return 0;
    });
}

double resolvePlainly(Unknown_Labels& unknown) {
    unknown.plain.forget();
    ControlInformationM info;
    return perLabel(unknown, [&](const QString& label) { return unknown.plain.resolve(label, info); });
}

std::vector<Way> resolveWays(const char* label) {
    const auto unknown = std::make_shared<Unknown_Labels>(label);
    return {{"driver", [=] { return resolveByDriver(*unknown); }},
            {"own_lookups", [=] { return lookupsAlone(*unknown); }},
            {"straightforward", [=] { return resolvePlainly(*unknown); }}};
}

std::vector<Way> templateWays() {
    scene::reset();
    scene::passShapes();
    const QString text = QString::fromLatin1(scene::Template);
    return {{"driver", [=] {
                 return perStep(200, [&] {
                     QString label = text;
                     if (get_label_address(label, 5) != LabelOk) throw std::runtime_error("a template that is none");
                 });
             }}};
}

// Time that passes for one read while so many threads read and another exchanges full groups over the same bytes.
double readBesideExchange(int readers) {
    enum { Reads = 5000 };
    bool stop = false;
    std::thread exchanger([&stop] {
        unpin();
        QByteArray reply = scene::replyTo(*ComCommunication());
        while (!__atomic_load_n(&stop, __ATOMIC_ACQUIRE))
            scene::exchange(reply, 1);
    });
    const double start = nanoseconds(CLOCK_MONOTONIC);
    std::vector<std::thread> threads;
    for (int i = 0; i < readers; ++i)
        threads.emplace_back([i] {
            unpin();
            const QString label = QString::fromLatin1("Block[%1]").arg(8 * i);
            QByteArray out;
            for (int read = 0; read < Reads; ++read)
                GetRegisterData(label, 0, QString(), 0, &out, 4);
        });
    for (std::thread& thread : threads)
        thread.join();
    const double passed = nanoseconds(CLOCK_MONOTONIC) - start;
    __atomic_store_n(&stop, true, __ATOMIC_RELEASE);
    exchanger.join();
    return passed / (Reads * readers);
}

std::vector<Way> besideExchangeWays(int readers) {
    scene::reset();
    scene::pollOneGroup();
    return {{"driver", [=] { return readBesideExchange(readers); }}};
}

}  // namespace

void addLabelGroups(Groups& groups) {
    // One label is the hot case.
    for (int count : {1, 1000, 10000, 100000})
        groups.push_back({"read_4/" + std::to_string(count), [=] { return cachedReadWays(count); }});
    groups.push_back({"resolve_plain", [] { return resolveWays(scene::PlainLabel); }});
    groups.push_back({"resolve_member", [] { return resolveWays(scene::MemberLabel); }});
    groups.push_back({"resolve_deep", [] { return resolveWays(scene::DeepLabel); }});
    groups.push_back({"template", templateWays});
    for (int readers : {1, 2, 4})
        groups.push_back(
            {"read_beside_exchange/" + std::to_string(readers), [=] { return besideExchangeWays(readers); }});
}
