#pragma once

#include "ZELKEventVocabulary.h"
#include "ZELKLWCLog.h"
#include "ZELKPropertyList.h"
#include "ZELKRawEvent.h"

#include <QRandomGenerator>

using namespace Qt::StringLiterals;

inline QByteArray bytesOf(const ZELKRawEvent &event)
{
    return ZELKPropertyList::writeBinary(QVariant::fromValue(event)).bytes;
}

inline QList<QByteArray> serialised(const QList<ZELKRawEvent> &events)
{
    QList<QByteArray> bytes;
    for (const ZELKRawEvent &event : events)
        bytes.append(bytesOf(event));
    return bytes;
}

/// A history as a computer might have had it: bursts within a second, equal dates, long gaps. No event twice.
inline QList<ZELKRawEvent> history(int count)
{
    QRandomGenerator random(7);
    double seconds = 700'000'000.0;
    QList<ZELKRawEvent> events;
    while (events.size() < count) {
        constexpr double gaps[] = {0.0, 0.25, 0.75, 1.5, 61.0, 5000.125};
        seconds += gaps[random.bounded(6)];
        const QLatin1String names[] = {ZELKEventSystemWillSleep, ZELKEventSystemHasPoweredOn,
                                       ZELKEventPowerStateChanged, ZELKEventStartingMonitor,
                                       ZELKEventCanDevicePowerOff};
        const QLatin1String name = names[random.bounded(5)];
        QString properties = ZELKEventNoProperties;
        if (name == ZELKEventPowerStateChanged)
            properties = ZELKPropertiesText({{ZELKPropertyName, u"BAT\u00e9"_s},
                                             {ZELKPropertyIsPresent, true},
                                             {ZELKPropertyCurrentCapacity, qlonglong(random.bounded(100))},
                                             {ZELKPropertyMaxCapacity, 100LL},
                                             {ZELKPropertyPowerSourceState, QString(ZELKPowerSourceAC)}});
        const ZELKRawEvent event =
            ZELKMakeRawEvent(ZELKDate(seconds), name, ZELKMonitorPowerEvents, properties);
        if (!events.last(std::min<qsizetype>(events.size(), 20)).contains(event))
            events.append(event);
    }
    return events;
}

/// What can be seen of a log.
inline QStringList dump(const ZELKLWCLog &log)
{
    QStringList lines;
    for (const ZELKLWCLogEntry *entry : log.entry()) {
        const auto pair = log.indexOfEntry(entry->pair());
        lines.append(ZELKFormat("%lf %@ %@ %@ x%d pair %d",
                                {entry->date().timeIntervalSinceReferenceDate(), entry->event(),
                                 entry->monitor(), QVariant::fromValue(entry->properties()),
                                 entry->duplicates().size(), pair ? int(*pair) : -1}));
    }
    return lines;
}

inline QStringList dumpOf(const QList<ZELKRawEvent> &events)
{
    ZELKLWCLog log;
    log.addExternalEntries(events);
    return dump(log);
}
