// Statistics over a million selected entries, against one plain pass over the values that they are made of.
#include "ZELKBenchData.h"
#include "ZELKEventGenerator.h"

#include "ZELKLWCLogEntryPowerStatus.h"
#include "ZELKLWCLogEntrySelection.h"

#include <benchmark/benchmark.h>

#include <algorithm>

namespace {

using Selection = ZELKLWCLogEntrySelection;

constexpr int entryCount = 1000000;

/// As a table gives them out: all, as they are; with the latest first; all but one; without those that an
/// idle computer leaves, which a filter hides; and in the order of their summaries.
enum class Order { Ascending, Descending, Picked, Filtered, BySummary };

bool isShown(const ZELKLWCLogEntry &entry, Order order)
{
    return order != Order::Filtered || entry.kind() != ZELKEntryKind::IdleSleep;
}

/// A million of them, whatever is left out.
Selection::Entries selectedEntries(ZELKLWCLog &log, Order order)
{
    ZELKEventGenerator generator;
    Selection::Entries entries;
    for (int i = 0; entries.size() < entryCount; ++i) {
        if (i == log.count())
            log.addExternalEntries(generator.next(10000));
        if (isShown(*log.objectAtIndex(i), order))
            entries.append(log.objectAtIndex(i));
    }
    if (order == Order::Descending)
        std::reverse(entries.begin(), entries.end());
    if (order == Order::Picked)
        entries.removeAt(1000);
    if (order == Order::BySummary)
        std::stable_sort(entries.begin(), entries.end(),
                         [](const auto *a, const auto *b) { return a->summaryId() < b->summaryId(); });
    return entries;
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

void statistics(benchmark::State &state, Order order)
{
    const auto log = std::make_unique<ZELKBench::Log>();
    const Selection::Entries entries = selectedEntries(log->log, order);
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
#define STATISTICS(NAME, ORDER)                                                                              \
    BENCHMARK_CAPTURE(statistics, NAME, ORDER)->Iterations(20)->UseManualTime()->Unit(benchmark::kMillisecond)
STATISTICS(ascending, Order::Ascending);
STATISTICS(descending, Order::Descending);
STATISTICS(picked, Order::Picked);
STATISTICS(filtered, Order::Filtered);
STATISTICS(by_summary, Order::BySummary);

} // namespace
