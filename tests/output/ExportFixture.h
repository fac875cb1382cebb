#pragma once

#include "ZELKEnvironment.h"
#include "ZELKEventVocabulary.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKRawEvent.h"
#include "ZELKUserDefaults.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

/// The real main bundle; Sunday, 2024-03-31, 10:00 in Berlin, the day on which summer time began.
inline ZELKEnvironment exportEnvironment()
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.zone = QTimeZone("Europe/Berlin");
    environment.clock = std::make_shared<ZELKFixedClock>(
        ZELKDate::fromDateTime(QDateTime(QDate(2024, 3, 31), QTime(10, 0), environment.zone)));
    environment.mainBundle = std::make_shared<ZELKBundle>(ZELKBundle::mainBundlePath({}));
    return environment;
}

// 2024-03-05 12:00:00 in Berlin
inline constexpr ZELKDate exportStart(731329200.0);

/// A log on a date range.
struct ExportFixture
{
    ZELKEnvironmentScope scope{exportEnvironment()};
    QTemporaryDir folder;
    ZELKUserDefaults defaults{folder.filePath(u"defaults.ini"_s)};
    ZELKLWCDateRangeController range{defaults};
    ZELKLWCLog log;

    ExportFixture()
    {
        range.awakeFromNib();
        log.setDateRange(&range);
        log.awakeFromNib();
        range.setSelectionTag(8);
    }
    static ZELKRawEvent event(double seconds, const QString &name, const ZELKDictionary &properties = {})
    {
        return ZELKMakeRawEvent(exportStart.addingTimeInterval(seconds), name, ZELKMonitorPowerEvents,
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
    void addMany(int count)
    {
        QList<ZELKRawEvent> events;
        for (int i = 0; i < count; ++i)
            events.append(ZELKMakeRawEvent(exportStart.addingTimeInterval(10000.0 + i), u"event %1"_s.arg(i),
                                           ZELKMonitorPowerEvents));
        log.addExternalEntries(events);
    }
    QString path(const QString &name) const { return folder.filePath(name); }
};
