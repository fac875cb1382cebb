// A hundred new events reaching a log that is large, against one that is small; the table's model follows
// both.
#include "ZELKBenchData.h"
#include "ZELKEventGenerator.h"

#include "ZELKLWCLogTableModel.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <map>

namespace {

constexpr int appended = 100;

/// Appends to a log of that many events, several times over; the CPU seconds of one append, as the best run
/// took.
double secondsToAppend(int count, int &resets)
{
    ZELKBench::Log log;
    ZELKLWCStore store(ZELKBench::world(ZELKBench::cacheWithEvents(count)));
    store.setLogController(&log.log);
    store.syncWithLocalCache();
    ZELKLWCLogTableModel model(log.log);
    QObject::connect(&model, &ZELKLWCLogTableModel::modelReset, [&resets] { ++resets; });
    ZELKEventGenerator generator;
    generator.moveTo(log.log.finalDate().addingTimeInterval(2.0));
    double best = 1.0;
    for (int round = 0; round < 50; ++round) {
        QList<ZELKRawEvent> events;
        for (int i = 0; i < appended; ++i)
            events.append(generator.next());
        const double start = ZELKBench::cpuSeconds();
        log.log.addExternalEntries(events);
        best = std::min(best, ZELKBench::cpuSeconds() - start);
    }
    store.applicationWillTerminate();
    return best;
}

void append(benchmark::State &state)
{
    double small = 0.0;
    double large = 0.0;
    int resets = 0;
    for ([[maybe_unused]] const auto &step : state) {
        small += secondsToAppend(1000, resets);
        const double seconds = secondsToAppend(1000000, resets);
        large += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["ratio"] = large / small;
    state.counters["us_small"] = small / double(state.iterations()) * 1e6;
    state.counters["model_resets"] = resets;
}
BENCHMARK(append)->Iterations(3)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const ZELKEnvironmentScope scope(ZELKBench::environment());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
