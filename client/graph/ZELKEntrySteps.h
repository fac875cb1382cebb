#pragma once

#include "ZELKDate.h"

#include <functional>

class ZELKLWCLog;
class ZELKLWCLogEntry;

/// Entries in whatever order: a table's rows, or what a log shows. What they come from must outlive them.
struct ZELKListedEntries
{
    std::function<int()> count;
    std::function<const ZELKLWCLogEntry *(int index)> entryAtIndex;

    static ZELKListedEntries visibleEntries(const ZELKLWCLog &log);
};

/// Steps from date to date through entries, as a selection moved by keys takes them. Looks at every entry
/// each time. Null where there is no such entry.
class ZELKEntrySteps
{
public:
    /// `entries` must outlive this object.
    explicit ZELKEntrySteps(const ZELKListedEntries &entries)
        : m_entries(entries)
    {
    }

    /// The entry that a date stands for; of two as far from it the later one.
    const ZELKLWCLogEntry *nearestEntryToDate(ZELKDate date) const;
    /// The first one later than the date.
    const ZELKLWCLogEntry *firstEntryAfterDate(ZELKDate date) const;
    /// The last one earlier than the date.
    const ZELKLWCLogEntry *lastEntryBeforeDate(ZELKDate date) const;

private:
    const ZELKListedEntries &m_entries;
};
