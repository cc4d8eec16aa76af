// Request lists: rebuilding the cyclic list, filling and draining the queues, going round a long cyclic list.
#include <benchmark/benchmark.h>

#include <utility>
#include <vector>

#include "Scene.h"
#include "Straightforward.h"
#include "lists/Func_Initi.h"

namespace {

void rebuildWarm(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    scene::reset();
    scene::passTags(count);
    QList<HOST_VAR> definitions = scene::scatteredTags(count);
    ReCreatReadVarList(&definitions);
    for (auto _ : state)
        benchmark::DoNotOptimize(ReCreatReadVarList(&definitions));
}

void rebuildCold(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    scene::reset();
    scene::passTags(count);
    QList<HOST_VAR> definitions = scene::scatteredTags(count);
    for (auto _ : state) {
        state.PauseTiming();
        scene::forgetResolved();
        state.ResumeTiming();
        benchmark::DoNotOptimize(ReCreatReadVarList(&definitions));
    }
}

BENCHMARK(rebuildWarm)->Name("rebuild_warm/driver")->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(rebuildCold)->Name("rebuild_cold/driver")->Arg(1000)->Arg(10000)->Arg(100000);

template <void Sort(QList<RW_VAR>&)>
void sortAlone(benchmark::State& state) {
    const QList<RW_VAR> requests = scene::scatteredRequests(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        QList<RW_VAR> list = requests;
        list.detach();
        state.ResumeTiming();
        Sort(list);
        state.PauseTiming();
        list = QList<RW_VAR>();
        state.ResumeTiming();
    }
}

void sortDriver(QList<RW_VAR>& list) { Bubble_Sort(&list); }

BENCHMARK_TEMPLATE(sortAlone, straightforward::sortByPairwiseSwaps)->Name("sort/pairwise_swaps")->Arg(1000);
BENCHMARK_TEMPLATE(sortAlone, straightforward::stableSort)
    ->Name("sort/stable_sort_of_copies")
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000);
BENCHMARK_TEMPLATE(sortAlone, sortDriver)->Name("sort/driver")->Arg(1000)->Arg(10000)->Arg(100000);

std::vector<RW_VAR> tagReads(int count) {
    std::vector<RW_VAR> reads;
    for (int i = 0; i < count; ++i)
        reads.push_back(scene::tagRead(i));
    return reads;
}

void fillOnceQueue(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    scene::reset();
    scene::passTags(count);
    std::vector<RW_VAR> reads = tagReads(count);
    for (RW_VAR& read : reads)
        AddListOnceReadVar(&read);  // fills the label cache, too
    for (auto _ : state) {
        state.PauseTiming();
        {
            const Mutex_Lock lock(PLC_driver.listMutex);
            PLC_driver.onceReadList.clear();
        }
        for (RW_VAR& read : reads)
            read.length = 4;
        state.ResumeTiming();
        for (RW_VAR& read : reads)
            AddListOnceReadVar(&read);
    }
}

void fillPlainQueue(benchmark::State& state) {
    std::vector<RW_VAR> reads = tagReads(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        QList<RW_VAR> queue;
        for (const RW_VAR& read : reads)
            straightforward::appendOnce(queue, read);
    }
}

BENCHMARK(fillOnceQueue)->Name("once_fill/driver")->Arg(512)->Arg(1024)->Arg(2048);
BENCHMARK(fillPlainQueue)->Name("once_fill/looks_at_every_entry")->Arg(512)->Arg(1024)->Arg(2048);

// Answers every queued request until nothing is left to send. The bursts' empty calls are part of it.
void drain(QByteArray& reply, const QList<RW_VAR>& queue) {
    while (!queue.isEmpty())
        scene::exchange(reply, 1);
}

const QList<RW_VAR>& onceQueue() NO_THREAD_SAFETY_ANALYSIS { return PLC_driver.onceReadList; }
const QList<RW_VAR>& writeQueue() NO_THREAD_SAFETY_ANALYSIS { return PLC_driver.writeList; }

void drainOnceQueue(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    scene::reset();
    scene::passTags(count);
    std::vector<RW_VAR> reads = tagReads(count);
    QByteArray reply;
    for (auto _ : state) {
        state.PauseTiming();
        for (RW_VAR& read : reads) {
            read.length = 4;
            AddListOnceReadVar(&read);
        }
        if (reply.isEmpty()) reply = scene::replyTo(*ComCommunication());
        state.ResumeTiming();
        drain(reply, onceQueue());
    }
}

void drainWriteQueue(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    scene::reset();
    scene::passTags(count);
    QByteArray reply;
    QByteArray value(4, '\1');
    for (auto _ : state) {
        state.PauseTiming();
        for (int i = 0; i < count; ++i)
            SetRegisterData(scene::tag(i), 0, QString(), 0, &value, 2, 3, i);
        if (reply.isEmpty()) reply = scene::replyTo(*ComCommunication());
        state.ResumeTiming();
        drain(reply, writeQueue());
    }
}

BENCHMARK(drainOnceQueue)->Name("once_drain/driver")->Arg(512)->Arg(1024)->Arg(2048);
BENCHMARK(drainWriteQueue)->Name("write_drain/driver")->Arg(512)->Arg(1024)->Arg(2048);

void fillWriteQueue(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    scene::reset();
    RW_VAR write = scene::tagRead(0);
    write.accessMode = 1;
    write.data = QByteArray(4, '\1');
    for (auto _ : state) {
        state.PauseTiming();
        {
            const Mutex_Lock lock(PLC_driver.listMutex);
            PLC_driver.writeList.clear();
        }
        state.ResumeTiming();
        for (int i = 0; i < count; ++i)
            AddListWriteVar(&write);
    }
}

BENCHMARK(fillWriteQueue)->Name("write_fill/driver")->Arg(512)->Arg(1024)->Arg(2048);

// One exchange of ten short requests out of a cyclic list of this length, long after its first full pass.
void cyclicRound(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    scene::reset(1);
    scene::passTags(count);
    QList<HOST_VAR> definitions = scene::scatteredTags(count);
    for (HOST_VAR& definition : definitions)
        definition.count = 50;
    ReCreatReadVarList(&definitions);
    QByteArray reply = scene::replyTo(*ComCommunication());
    scene::exchange(reply, count);
    for (auto _ : state)
        scene::exchange(reply, 1);
}

BENCHMARK(cyclicRound)->Name("cyclic_exchange/driver")->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000);

}  // namespace

BENCHMARK_MAIN();
