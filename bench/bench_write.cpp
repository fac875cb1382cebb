// Writing a fetched array of 10,000 events, against the same events in a transaction each. Both WAL and
// synchronous FULL, on the same disk.
#include "ZELKBenchData.h"
#include "ZELKEventGenerator.h"

#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

constexpr int fetched = 10000;
constexpr int single = 500;

void write(benchmark::State &state)
{
    const QTemporaryDir folder(QDir::current().filePath(QStringLiteral("bench-write-XXXXXX")));
    ZELKLWCStore store(ZELKBench::world(folder.filePath(QStringLiteral("cache.lullwatch-events"))));
    ZELKEventGenerator generator;
    double together = 0.0;
    double apart = 0.0;
    for ([[maybe_unused]] const auto &step : state) {
        const QList<ZELKRawEvent> alone = generator.next(single);
        const double start = ZELKBench::wallSeconds();
        for (const ZELKRawEvent &event : alone)
            store.cacheEvent(event);
        const double middle = ZELKBench::wallSeconds();
        const QList<ZELKRawEvent> batch = generator.next(fetched);
        const double batchStart = ZELKBench::wallSeconds();
        store.cacheEvents(batch);
        const double end = ZELKBench::wallSeconds();
        apart += middle - start;
        together += end - batchStart;
        state.SetIterationTime(end - batchStart);
    }
    const auto rounds = double(state.iterations());
    const double rateTogether = fetched * rounds / together;
    const double rateApart = single * rounds / apart;
    state.counters["ratio"] = rateTogether / rateApart;
    state.counters["rows/s"] = rateTogether;
    state.counters["rows/s_single"] = rateApart;
    store.applicationWillTerminate();
}
BENCHMARK(write)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
