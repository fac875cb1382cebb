#pragma once

#include "TableFixture.h"
#include "ZELKEventVocabulary.h"

/// A log, and where it is exported to. Its times are counted from 2024-03-05 00:00:00 UTC.
struct ExportFixture : TableFixture
{
    static ZELKRawEvent event(double seconds, const QString &name, const ZELKDictionary &properties = {})
    {
        return ZELKMakeRawEvent(ZELKDate(logStart + seconds), name, ZELKMonitorPowerEvents,
                                ZELKPropertiesText(properties));
    }
    void add(double seconds, const QString &name) { log.addExternalEntries({event(seconds, name)}); }
    /// A sleep recorded twice and the waking from it, a battery, and what kept the computer awake.
    void addNight()
    {
        log.addExternalEntries(
            {event(0.0, ZELKEventSystemWillSleep), event(1.0, ZELKEventSystemWillSleep),
             event(7200.0, ZELKEventSystemHasPoweredOn),
             event(7230.0, ZELKEventPowerStateChanged,
                   {{ZELKPropertyName, u"BAT0"_s},
                    {ZELKPropertyIsPresent, true},
                    {ZELKPropertyCurrentCapacity, 80LL},
                    {ZELKPropertyMaxCapacity, 100LL},
                    {ZELKPropertyTimeToEmpty, 90LL},
                    {ZELKPropertyPowerSourceState, ZELKPowerSourceBattery}}),
             event(7260.0, ZELKEventSystemWillNotSleep,
                   {{ZELKPropertyProcesses, QVariantList{u"backup <1>"_s, u"Пример 🔋 שלום"_s}}})});
    }
    QString path(const QString &name) const { return folder.filePath(name); }
};
