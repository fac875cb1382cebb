// Statistics over a million selected entries, against one plain pass over the values that they are made of.
#include "ZELKBenchData.h"
#include "ZELKEventGenerator.h"

#include "ZELKLWCLogEntryPowerStatus.h"
#include "ZELKLWCLogEntrySelection.h"

#include <benchmark/benchmark.h>

namespace {

using Selection = ZELKLWCLogEntrySelection;

constexpr int entryCount = 1000000;

Selection::Entries firstEntries(ZELKLWCLog &log)
{
    ZELKEventGenerator generator;
    while (log.count() < entryCount)
        log.addExternalEntries(generator.next(10000));
    return log.entry().mid(0, entryCount);
}

/// Date, state word, power source and percentage of each entry, as numbers.
double plainPass(const Selection::Entries &entries)
{
    double sum = 0.0;
    for (const ZELKLWCLogEntry *entry : entries) {
        sum += entry->date().timeIntervalSinceReferenceDate() + double(entry->pairRepresentsId());
        sum += double(entry->arena().properties().textId(entry->packedProperties(),
                                                         ZELKPackedProperties::PowerSourceState));
        if (entry->kind() == ZELKEntryKind::PowerStatus)
            sum += static_cast<const ZELKLWCLogEntryPowerStatus *>(entry)->percentageCharged();
    }
    return sum;
}

void statistics(benchmark::State &state, bool leavesOut)
{
    const auto log = std::make_unique<ZELKBench::Log>();
    Selection::Entries entries = firstEntries(log->log);
    if (leavesOut)
        entries.removeAt(1000);
    double limit = 0.0;
    double computing = 0.0;
    std::size_t sleeps = 0;
    benchmark::DoNotOptimize(plainPass(entries));
    for ([[maybe_unused]] const auto &step : state) {
        const double start = ZELKBench::cpuSeconds();
        benchmark::DoNotOptimize(plainPass(entries));
        const double middle = ZELKBench::cpuSeconds();
        const Selection selection(entries);
        const double end = ZELKBench::cpuSeconds();
        sleeps = selection.sleepCosts().sleeps().size();
        limit += middle - start;
        computing += end - middle;
        state.SetIterationTime(end - middle);
    }
    state.counters["ratio"] = computing / limit;
    state.counters["limit_ms"] = limit / double(state.iterations()) * 1e3;
    state.counters["sleeps"] = double(sleeps);
}
BENCHMARK_CAPTURE(statistics, all, false)->Iterations(20)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(statistics, picked, true)->Iterations(20)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
