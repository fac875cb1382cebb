#pragma once

#include "ZELKDate.h"

class ZELKLWCLog;
class ZELKLWCLogEntry;

/// Steps from date to date through a log's visible entries, as a selection moved by keys takes them. Looks at
/// every entry each time, in whatever order they arrived. Null where there is no such entry.
class ZELKVisibleTimes
{
public:
    /// `log` must outlive this object.
    explicit ZELKVisibleTimes(const ZELKLWCLog &log)
        : m_log(log)
    {
    }

    /// Of several as near, the one that arrived first.
    const ZELKLWCLogEntry *nearestEntryToDate(ZELKDate date) const;
    /// The first one later than the date.
    const ZELKLWCLogEntry *firstEntryAfterDate(ZELKDate date) const;
    /// The last one earlier than the date.
    const ZELKLWCLogEntry *lastEntryBeforeDate(ZELKDate date) const;

private:
    const ZELKLWCLog &m_log;
};
