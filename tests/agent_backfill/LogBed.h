#pragma once

#include "BackfillFixture.h"
#include "ZELKAccountingRecords.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKRawEvent.h"

#include <algorithm>
#include <set>

/// What the application's log makes of the running boot's events and the accounting file's.
struct LogBed
{
    int boots = 0;          ///< entries for a boot
    int bootOfStartup = -1; ///< which of them is or holds the startup

    LogBed(std::vector<ZELKLWAEvent> events, const QList<Record> &wtmp)
    {
        const QByteArray bytes = accounting(wtmp);
        for (const auto &record :
             ZELKAccountingRecords::read({bytes.constData(), std::size_t(bytes.size())}, ZELKDate(1e9))
                 .records)
            if (std::find(events.begin(), events.end(), record.event()) == events.end())
                events.push_back(record.event());
        std::stable_sort(events.begin(), events.end(),
                         [](const ZELKLWAEvent &a, const ZELKLWAEvent &b) { return a.date < b.date; });
        QList<ZELKRawEvent> raw;
        for (const ZELKLWAEvent &event : events)
            raw.append(ZELKMakeRawEvent(event.date, event.event, event.monitor, event.properties));
        log.addExternalEntries(raw);
        count();
    }

private:
    void count()
    {
        for (ZELKLWCLogEntry *entry : log.entry()) {
            if (entry->event() == ZELKEventAccountingShutDown)
                continue;
            ++boots;
            const auto duplicates = entry->duplicates();
            if (entry->event() == ZELKEventStartup ||
                std::any_of(duplicates.begin(), duplicates.end(),
                            [](const auto &duplicate) { return duplicate->event() == ZELKEventStartup; }))
                bootOfStartup = boots - 1;
        }
    }

    ZELKLWCLog log;
};
