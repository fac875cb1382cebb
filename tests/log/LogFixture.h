#pragma once

#include "ConsoleLines.h"
#include "LogDump.h"
#include "NamedRows.h"
#include "ZELKEnvironment.h"
#include "ZELKEventVocabulary.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKRawEvent.h"
#include "ZELKUserDefaults.h"

#include <QTemporaryDir>

using Events = QList<ZELKRawEvent>;

constexpr double oneDay = 86400.0;
inline const QString sleepEvent = ZELKEventSystemWillSleep;
inline const QString wakeEvent = ZELKEventSystemHasPoweredOn;
inline const QString idleEvent = ZELKEventCanSystemSleep;
inline const QString plainEvent = ZELKEventSystemWillRestart;
inline const QString charging = ZELKPropertyIsCharging;
inline const QString present = ZELKPropertyIsPresent;
inline const QString source = ZELKPropertyPowerSourceState;
inline const QString toEmpty = ZELKPropertyTimeToEmpty;
inline const QString processes = ZELKPropertyProcesses;

/// Which texts an entry finds in the main bundle: none (keys are shown), those of English, or invented ones
/// that show whether a key was looked up at all.
enum class Texts { Keys, English, Invented };

inline ZELKEnvironment environmentWith(Texts texts, const QByteArray &zone = "UTC")
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.clock = std::make_shared<ZELKFixedClock>(ZELKDate(0.0));
    environment.zone = QTimeZone(zone);
    environment.locale = QLocale::c();
    if (texts == Texts::English)
        environment.mainBundle = std::make_shared<ZELKBundle>(qEnvironmentVariable("ZELK_MAIN_BUNDLE"));
    if (texts == Texts::Invented)
        environment.mainBundle = std::make_shared<ZELKBundle>(QStringLiteral(LOG_TEST_BUNDLE));
    return environment;
}

inline ZELKRawEvent rawEvent(double seconds, const QString &event, const ZELKDictionary &properties = {},
                             const QString &monitor = ZELKMonitorPowerEvents)
{
    return ZELKMakeRawEvent(ZELKDate(seconds), event, monitor,
                            properties.isEmpty() ? QString(ZELKEventNoProperties)
                                                 : ZELKPropertiesText(properties));
}

inline ZELKRawEvent plainAt(double seconds)
{
    return rawEvent(seconds, plainEvent);
}

/// What a power source says of itself; `others` replace or add to it.
inline ZELKDictionary reading(int percentage, const ZELKDictionary &others = {})
{
    ZELKDictionary values{{ZELKPropertyName, QStringLiteral("BAT0")},
                          {ZELKPropertyIsPresent, true},
                          {ZELKPropertyIsCharging, false},
                          {ZELKPropertyCurrentCapacity, qlonglong(percentage)},
                          {ZELKPropertyMaxCapacity, 100LL},
                          {ZELKPropertyPowerSourceState, QString(ZELKPowerSourceBattery)}};
    for (const auto &[key, value] : others)
        value.isValid() ? values.insert(key, value) : values.remove(key);
    return values;
}

inline ZELKRawEvent batteryEvent(double seconds, const ZELKDictionary &properties)
{
    return rawEvent(seconds, ZELKEventPowerStateChanged, properties, ZELKMonitorPowerSource);
}

/// A log with a date range, in an environment of its own.
struct LogFixture
{
    explicit LogFixture(Texts texts = Texts::Keys, const QByteArray &zone = "UTC")
        : scope(environmentWith(texts, zone))
        , defaults(folder.filePath(QStringLiteral("defaults.ini")))
        , range(defaults)
    {
        log.setDateRange(&range);
        log.awakeFromNib();
    }

    ZELKLWCLogEntry *add(const ZELKRawEvent &event)
    {
        log.addExternalEntries({event});
        return log.pastEntry();
    }
    ZELKLWCLogEntryPowerStatus *addReading(double seconds, const ZELKDictionary &properties)
    {
        return static_cast<ZELKLWCLogEntryPowerStatus *>(add(batteryEvent(seconds, properties)));
    }
    void addAll(const Events &events) { log.addExternalEntries(events); }
    ZELKLWCLogEntry *at(int index) const { return log.objectAtIndex(index); }
    QString placeOf(const ZELKLWCLogEntry *entry) const { return LogDump::place(log, entry); }
    /// Shows those days alone.
    void show(ZELKDate from, ZELKDate to)
    {
        range.setAbsoluteDuration(std::make_shared<ZELKLWCAbsoluteDuration>(
            ZELKLWCAbsoluteDuration::absoluteDurationFromDate(from, to)));
    }

    ZELKEnvironmentScope scope;
    QTemporaryDir folder;
    ZELKUserDefaults defaults;
    ZELKLWCDateRangeController range;
    ZELKLWCLog log;
};
