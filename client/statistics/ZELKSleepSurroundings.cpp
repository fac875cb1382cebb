#include "ZELKSleepSurroundings.h"

#include "ZELKLWCLog.h"
#include "ZELKSleepCostTracker.h"

#include <algorithm>
#include <utility>

namespace {

using Entries = ZELKSleepSurroundings::Entries;

const ZELKLWCLog *logOf(const ZELKLWCLogEntry &entry)
{
    const auto container = entry.container();
    const auto *log = std::get_if<ZELKLWCLog *>(&container);
    return log ? *log : nullptr;
}

/// When the sleep began that goes on at the first of the entries; else the first's own date.
ZELKDate beginning(const Entries &entries)
{
    const ZELKDate first = entries.constFirst()->date();
    const auto isState = [](const ZELKLWCLogEntry *entry) {
        return entry->kind() == ZELKEntryKind::PowerState;
    };
    const auto found = std::find_if(entries.begin(), entries.end(), isState);
    const ZELKLWCLogEntry *older = found == entries.end() ? nullptr : (*found)->next();
    const bool isAsleep = older && older->pairRepresentsId() == ZELKEntryWords::Asleep;
    return isAsleep ? std::min(first, older->date()) : first;
}

/// Of the log's entries, those at `from` and on towards the end or, with a step of -1, the beginning, as long
/// as they lie no further away than `limit`.
Entries near(const ZELKLWCLog &log, int from, int step, ZELKDate limit)
{
    Entries entries;
    for (int i = from; i >= 0 && i < log.count(); i += step) {
        ZELKLWCLogEntry *entry = log.objectAtIndex(i);
        if (step < 0 ? entry->date() < limit : entry->date() > limit)
            break;
        entries.append(entry);
    }
    std::sort(entries.begin(), entries.end(), ZELKSleepSurroundings::isOlder);
    return entries;
}

} // namespace

bool ZELKSleepSurroundings::isOlder(const ZELKLWCLogEntry *a, const ZELKLWCLogEntry *b)
{
    return a->date() < b->date() || (a->date() == b->date() && a->handle() < b->handle());
}

ZELKSleepSurroundings ZELKSleepSurroundings::of(const Entries &entries)
{
    constexpr double silence = ZELKSleepCostTracker::longestSilence;
    ZELKSleepSurroundings around{{}, entries, {}};
    const ZELKLWCLog *log = logOf(*entries.constFirst());
    const auto first = log ? log->indexOfEntry(entries.constFirst()) : std::nullopt;
    const auto last = log ? log->indexOfEntry(entries.constLast()) : std::nullopt;
    if (!first || !last)
        return around;
    const auto [low, high] = std::minmax({int(*first), int(*last)});
    around.before = near(*log, low - 1, -1, beginning(entries).addingTimeInterval(-silence));
    around.behind = near(*log, high + 1, 1, entries.constLast()->date().addingTimeInterval(silence));
    if (high - low + 1 == entries.size())
        return around;
    around.all.clear();
    around.all.reserve(high - low + 1);
    for (int i = low; i <= high; ++i)
        around.all.append(log->objectAtIndex(i));
    return around;
}
