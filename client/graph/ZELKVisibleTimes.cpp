#include "ZELKVisibleTimes.h"

#include "ZELKLWCLog.h"

#include <cmath>

namespace {

/// The visible entry with the smallest of what `distance` gives; entries with a negative one are not asked
/// for.
template <typename Distance>
const ZELKLWCLogEntry *closest(const ZELKLWCLog &log, Distance &&distance)
{
    const ZELKLWCLogEntry *best = nullptr;
    double least = 0.0;
    for (std::uint64_t i = 0; i < log.countOfVisibleEntries(); ++i) {
        const ZELKLWCLogEntry *entry = log.objectInVisibleEntriesAtIndex(i);
        const double seconds = distance(*entry);
        if (seconds >= 0.0 && (!best || seconds < least)) {
            best = entry;
            least = seconds;
        }
    }
    return best;
}

} // namespace

const ZELKLWCLogEntry *ZELKVisibleTimes::nearestEntryToDate(ZELKDate date) const
{
    return closest(m_log, [date](const ZELKLWCLogEntry &entry) {
        return std::abs(entry.timeIntervalDistanceFrom(date));
    });
}

const ZELKLWCLogEntry *ZELKVisibleTimes::firstEntryAfterDate(ZELKDate date) const
{
    return closest(m_log, [date](const ZELKLWCLogEntry &entry) {
        return entry.after(date) ? entry.timeIntervalDistanceFrom(date) : -1.0;
    });
}

const ZELKLWCLogEntry *ZELKVisibleTimes::lastEntryBeforeDate(ZELKDate date) const
{
    return closest(m_log, [date](const ZELKLWCLogEntry &entry) {
        return entry.before(date) ? -entry.timeIntervalDistanceFrom(date) : -1.0;
    });
}
