#pragma once

#include "TableWindow.h"
#include "ZELKEventVocabulary.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKLWCLogSlice.h"

inline constexpr double hour = 3600.0;

/// On one of four recorded days, of which the first is 2024-03-05 in UTC.
inline ZELKDate at(int recordedDay, double hours)
{
    return ZELKDate(logStart + recordedDay * day + hours * hour);
}

/// A slice of four days, of which the last is today; on each the computer sleeps from 2 to 8 o'clock.
struct SliceFixture : Table
{
    SliceFixture()
        : Table(0, 3.5)
    {
        graph.setLog(&log);
        graph.setDateRange(&range);
        graph.awakeFromNib();
        graph.resize(400, 200);
    }
    void record()
    {
        QList<ZELKRawEvent> events;
        const auto add = [&events](ZELKDate date, QLatin1String name) {
            events.append(ZELKMakeRawEvent(date, name, ZELKMonitorPowerEvents));
        };
        for (int recordedDay = 0; recordedDay < 4; ++recordedDay) {
            add(at(recordedDay, 2), ZELKEventSystemWillSleep);
            add(at(recordedDay, 8), ZELKEventSystemHasPoweredOn);
        }
        add(at(3, 8.001), ZELKEventSystemHasPoweredOn);
        log.addExternalEntries(events);
        range.setSelectionTag(8);
    }

    ZELKLWCEntriesView graph;
    ZELKLWCLogSlice slice{{range, graph, log}};
};
