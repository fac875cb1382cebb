#include "ZELKEntrySteps.h"

#include "ZELKLWCLog.h"

#include <cmath>

namespace {

/// The entry with the smallest of what `distance` gives, the latest of several; entries with a negative one
/// are not asked for.
template <typename Distance>
const ZELKLWCLogEntry *closest(const ZELKListedEntries &entries, Distance &&distance)
{
    const ZELKLWCLogEntry *best = nullptr;
    double least = 0.0;
    const int count = entries.count();
    for (int i = 0; i < count; ++i) {
        const ZELKLWCLogEntry *entry = entries.entryAtIndex(i);
        const double seconds = distance(*entry);
        if (seconds < 0.0 || (best && seconds > least))
            continue;
        if (best && seconds == least && entry->date() <= best->date())
            continue;
        best = entry;
        least = seconds;
    }
    return best;
}

} // namespace

ZELKListedEntries ZELKListedEntries::visibleEntries(const ZELKLWCLog &log)
{
    return {[&log] { return int(log.countOfVisibleEntries()); },
            [&log](int index) { return log.objectInVisibleEntriesAtIndex(std::uint64_t(index)); }};
}

const ZELKLWCLogEntry *ZELKEntrySteps::nearestEntryToDate(ZELKDate date) const
{
    return closest(m_entries, [date](const ZELKLWCLogEntry &entry) {
        return std::abs(entry.timeIntervalDistanceFrom(date));
    });
}

const ZELKLWCLogEntry *ZELKEntrySteps::firstEntryAfterDate(ZELKDate date) const
{
    return closest(m_entries, [date](const ZELKLWCLogEntry &entry) {
        return entry.after(date) ? entry.timeIntervalDistanceFrom(date) : -1.0;
    });
}

const ZELKLWCLogEntry *ZELKEntrySteps::lastEntryBeforeDate(ZELKDate date) const
{
    return closest(m_entries, [date](const ZELKLWCLogEntry &entry) {
        return entry.before(date) ? -entry.timeIntervalDistanceFrom(date) : -1.0;
    });
}
