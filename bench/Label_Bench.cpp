// Labels: reading by cached label, resolving without the cache, rewriting templates.
#include <benchmark/benchmark.h>

#include <ctime>
#include <thread>
#include <vector>

#include "Scene.h"
#include "Straightforward.h"
#include "label/Label_Resolution.h"

namespace {

enum { ReadsInARow = 1024 };

// The labels in the order they are read: every one once, neighbours far apart, as strings of their own.
std::vector<QString> randomTags(int count) {
    std::vector<QString> tags;
    unsigned next = 1;
    for (int i = 0; i < ReadsInARow; ++i) {
        next = next * 1664525U + 1013904223U;
        tags.push_back(scene::tag(static_cast<int>((next >> 8) % static_cast<unsigned>(count))));
    }
    return tags;
}

void readCached(benchmark::State& state) {
    scene::reset();
    scene::passTags(static_cast<int>(state.range(0)));
    const std::vector<QString> tags = randomTags(static_cast<int>(state.range(0)));
    QByteArray out;
    size_t i = 0;
    for (auto _ : state)
        GetRegisterData(tags[i++ % ReadsInARow], 0, QString(), 0, &out, 2);
}

void readPlain(benchmark::State& state) {
    scene::reset();
    scene::passTags(static_cast<int>(state.range(0)));
    straightforward::Labels labels;
    {
        const Mutex_Lock lock(PLC_driver.labelMutex);
        labels.pass(PLC_driver.labelTable.values());
    }
    straightforward::Image image;
    QMutex mutex;
    const std::vector<QString> tags = randomTags(static_cast<int>(state.range(0)));
    QByteArray out;
    size_t i = 0;
    for (auto _ : state)
        straightforward::readValue(labels, image, mutex, tags[i++ % ReadsInARow], &out, 2);
}

// One label is the hot case.
BENCHMARK(readCached)->Name("read_4/driver")->Arg(1)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(readPlain)->Name("read_4/straightforward")->Arg(1)->Arg(1000)->Arg(10000)->Arg(100000);

// As many labels as are resolved between two looks at the clock. Each is unknown to the label cache, and they are few
// enough to stay in the processor's.
enum { LabelsInARow = 128 };

std::vector<QString> numbered(const char* label) {
    std::vector<QString> texts;
    for (int i = 0; i < LabelsInARow; ++i)
        texts.push_back(QString::fromLatin1(label).arg(i));
    return texts;
}

// Processor time of this thread: others on the machine do not count.
double now() {
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

template <class Step>
double secondsOf(const std::vector<QString>& labels, Step step) {
    const double start = now();
    for (const QString& label : labels)
        step(label);
    return (now() - start) / LabelsInARow;
}

void dropFromCache(const std::vector<QString>& labels) {
    const Mutex_Lock lock(PLC_driver.labelMutex);
    for (const QString& label : labels)
        PLC_driver.labelCache.remove(label);
}

void resolveDriver(benchmark::State& state, const char* label) {
    scene::reset();
    scene::passShapes();
    scene::passTags(1000);
    const std::vector<QString> labels = numbered(label);
    ControlInformationM info;
    int failed = 0;
    const auto step = [&](const QString& text) { failed += get_label_address(text, info); };
    secondsOf(labels, step);
    for (auto _ : state) {
        dropFromCache(labels);
        state.SetIterationTime(secondsOf(labels, step));
    }
    if (failed != 0) state.SkipWithError("a label did not resolve");
}

void resolvePlain(benchmark::State& state, const char* label) {
    scene::reset();
    scene::passShapes();
    scene::passTags(1000);
    straightforward::Labels plain;
    {
        const Mutex_Lock lock(PLC_driver.labelMutex);
        plain.pass(PLC_driver.labelTable.values());
    }
    const std::vector<QString> labels = numbered(label);
    ControlInformationM info;
    int failed = 0;
    for (auto _ : state) {
        plain.forget();
        state.SetIterationTime(secondsOf(labels, [&](const QString& text) { failed += plain.resolve(text, info); }));
    }
    if (failed != 0) state.SkipWithError("a label did not resolve");
}

// The unit of the others: finding one definition in the table.
void tableLookup(benchmark::State& state) {
    scene::reset();
    scene::passShapes();
    scene::passTags(1000);
    const std::vector<QString> names = numbered(scene::PlainLabel);
    QHash<QString, Label_Type_Info> table;
    {
        const Mutex_Lock lock(PLC_driver.labelMutex);
        table = PLC_driver.labelTable;
    }
    for (auto _ : state)
        state.SetIterationTime(
            secondsOf(names, [&](const QString& name) { benchmark::DoNotOptimize(table.constFind(name)->address); }));
}

BENCHMARK(tableLookup)->Name("resolve/table_lookup")->UseManualTime()->Iterations(400);
BENCHMARK_CAPTURE(resolveDriver, plain, scene::PlainLabel)
    ->Name("resolve_plain/driver")
    ->UseManualTime()
    ->Iterations(400);
BENCHMARK_CAPTURE(resolvePlain, plain, scene::PlainLabel)
    ->Name("resolve_plain/straightforward")
    ->UseManualTime()
    ->Iterations(400);
BENCHMARK_CAPTURE(resolveDriver, member, scene::MemberLabel)
    ->Name("resolve_member/driver")
    ->UseManualTime()
    ->Iterations(400);
BENCHMARK_CAPTURE(resolvePlain, member, scene::MemberLabel)
    ->Name("resolve_member/straightforward")
    ->UseManualTime()
    ->Iterations(400);
BENCHMARK_CAPTURE(resolveDriver, deep, scene::DeepLabel)->Name("resolve_deep/driver")->UseManualTime()->Iterations(400);
BENCHMARK_CAPTURE(resolvePlain, deep, scene::DeepLabel)
    ->Name("resolve_deep/straightforward")
    ->UseManualTime()
    ->Iterations(400);

void rewriteTemplate(benchmark::State& state) {
    scene::reset();
    scene::passShapes();
    const QString text = QLatin1String(scene::Template);
    int failed = 0;
    for (auto _ : state) {
        QString label = text;
        failed += get_label_address(label, 5);
    }
    if (failed != 0) state.SkipWithError("the template was not rewritten");
}

BENCHMARK(rewriteTemplate)->Name("template/driver");

// Readers on this many threads while another thread exchanges full groups over the same bytes.
void readBesideExchange(benchmark::State& state) {
    static std::thread exchanger;
    static bool stop;
    if (state.thread_index() == 0) {
        scene::reset();
        scene::pollOneGroup();
        stop = false;
        exchanger = std::thread([] {
            QByteArray reply = scene::replyTo(*ComCommunication());
            while (!__atomic_load_n(&stop, __ATOMIC_ACQUIRE))
                scene::exchange(reply, 1);
        });
    }
    const QString label = QString::fromLatin1("Block[%1]").arg(8 * state.thread_index());
    QByteArray out;
    for (auto _ : state)
        GetRegisterData(label, 0, QString(), 0, &out, 4);
    state.SetItemsProcessed(state.iterations());
    if (state.thread_index() != 0) return;
    __atomic_store_n(&stop, true, __ATOMIC_RELEASE);
    exchanger.join();
}

BENCHMARK(readBesideExchange)->Name("read_beside_exchange/driver")->Threads(1)->Threads(2)->Threads(4)->UseRealTime();

}  // namespace
