#pragma once

#include "PropertyLists.h"
#include "ZELKLWAEvent.h"

#include <QStringList>
#include <QVariantMap>

#include <vector>

using namespace Qt::StringLiterals;

/// A battery as UPower tells of it.
const QVariantMap upowerBattery{
    {u"NativePath"_s, u"BAT0"_s}, {u"Model"_s, u"PRB-1"_s},  {u"Type"_s, 2U},
    {u"PowerSupply"_s, true},     {u"IsPresent"_s, true},    {u"State"_s, 2U},
    {u"Percentage"_s, 80.0},      {u"Energy"_s, 48.0},       {u"TimeToEmpty"_s, 19200LL},
    {u"TimeToFull"_s, 0LL},       {u"UpdateTime"_s, 1000ULL}};

inline QVariantMap with(QVariantMap map, const QVariantMap &others)
{
    map.insert(others);
    return map;
}

inline ZELKDate second(double sinceEpoch)
{
    return ZELKDate::fromSecondsSince1970(sinceEpoch);
}

/// The properties of an event, read again from their text.
inline ZELKDictionary propertiesOf(const ZELKLWAEvent &event)
{
    return listIn(event.properties.toUtf8());
}

/// What "Power state changed" says, in short: "PRB-1 80% charging on AC Power", "PRB-1 gone on AC Power".
inline QString powerLine(const ZELKLWAEvent &event)
{
    if (event.event != ZELKEventPowerStateChanged || event.monitor != ZELKMonitorPowerSource)
        return event.event + u" by "_s + event.monitor;
    const ZELKDictionary properties = propertiesOf(event);
    QString line = properties.string(ZELKPropertyName);
    if (!properties.value(ZELKPropertyIsPresent).toBool())
        line += u" gone"_s;
    else if (properties.contains(ZELKPropertyCurrentCapacity))
        line += u" %1%"_s.arg(properties.value(ZELKPropertyCurrentCapacity).toLongLong());
    if (properties.value(ZELKPropertyIsCharging).toBool())
        line += u" charging"_s;
    return line + u" on "_s + properties.string(ZELKPropertyPowerSourceState);
}

inline QStringList powerLines(const std::vector<ZELKLWAEvent> &events)
{
    QStringList lines;
    for (const ZELKLWAEvent &event : events)
        lines.append(powerLine(event));
    return lines;
}
