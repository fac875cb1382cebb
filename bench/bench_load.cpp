// Start-up load of a cache: how many times the plain SELECT it costs, how that grows, and what it keeps in
// memory.
#include "ZELKBenchData.h"

#include <benchmark/benchmark.h>

namespace {

/// One load and, before it, one pass over the same rows; the loaded log is thrown away.
void load(benchmark::State &state)
{
    const auto count = int(state.range(0));
    const QString file = ZELKBench::cacheWithEvents(count);
    double limit = 0.0;
    double loading = 0.0;
    double growth = 0.0;
    int entries = 0;
    ZELKBench::sumOfSelectedBytes(file); // the file's pages are in memory for both
    for ([[maybe_unused]] const auto &step : state) {
        const double start = ZELKBench::cpuSeconds();
        benchmark::DoNotOptimize(ZELKBench::sumOfSelectedBytes(file));
        const double middle = ZELKBench::cpuSeconds();
        const double before = ZELKBench::residentBytes();
        auto log = std::make_unique<ZELKBench::Log>();
        ZELKLWCStore store(ZELKBench::world(file));
        store.setLogController(&log->log);
        const double loadStart = ZELKBench::cpuSeconds();
        store.syncWithLocalCache();
        const double end = ZELKBench::cpuSeconds();
        limit += middle - start;
        loading += end - loadStart;
        growth = std::max(growth, ZELKBench::residentBytes() - before);
        entries = log->log.count();
        store.applicationWillTerminate();
        state.SetIterationTime(end - loadStart);
    }
    state.counters["ratio"] = loading / limit;
    state.counters["ns/event"] = loading / double(state.iterations()) / count * 1e9;
    state.counters["limit_ns/event"] = limit / double(state.iterations()) / count * 1e9;
    state.counters["bytes/event"] = growth / count;
    state.counters["entries"] = entries;
}
BENCHMARK(load)->Arg(1000000)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(load)->Arg(100000)->Iterations(20)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
