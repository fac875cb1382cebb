#pragma once

#include "ZELKLWCLog.h"
#include "ZELKLWCLogEntryPowerStatus.h"
#include "ZELKValue.h"

#include <QStringList>

/// Everything that can be seen of a log, as texts that can be compared.
namespace LogDump {

inline QString exact(const QString &text)
{
    return text.isNull() ? QStringLiteral("nil") : QLatin1Char('"') + text + QLatin1Char('"');
}

/// Value with its type, keys in their order.
inline QString exact(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<ZELKDictionary>()) {
        QStringList items;
        for (const auto &[key, item] : value.value<ZELKDictionary>())
            items.append(QStringLiteral("\"%1\"=%2").arg(key, exact(item)));
        return QLatin1Char('{') + items.join(QLatin1Char(',')) + QLatin1Char('}');
    }
    if (value.typeId() == QMetaType::QVariantList) {
        QStringList items;
        for (const QVariant &item : value.toList())
            items.append(exact(item));
        return QLatin1Char('(') + items.join(QLatin1Char(',')) + QLatin1Char(')');
    }
    if (value.userType() == qMetaTypeId<ZELKDate>())
        return QString::number(value.value<ZELKDate>().timeIntervalSinceReferenceDate(), 'g', 17);
    if (value.typeId() == QMetaType::QString)
        return QStringLiteral("text:") + exact(value.toString());
    const QString type = QString::fromLatin1(value.isValid() ? value.typeName() : "nothing");
    return QStringLiteral("%1:\"%2\"").arg(type, ZELKValue::description(value));
}

inline QString exact(const ZELKDictionary &dictionary)
{
    return exact(QVariant::fromValue(dictionary));
}

inline QString place(const ZELKLWCLog &log, const ZELKLWCLogEntry *entry)
{
    if (!entry)
        return QStringLiteral("none");
    const auto index = log.indexOfEntry(entry);
    return index ? QString::number(*index) : QStringLiteral("elsewhere");
}

inline QString raw(const ZELKLWCLogEntry &entry)
{
    return QStringList{QString::number(int(entry.kind())),
                       exact(QVariant::fromValue(entry.date())),
                       exact(entry.event()),
                       exact(entry.monitor()),
                       exact(entry.group()),
                       exact(entry.properties()),
                       entry.objectSpecifier(),
                       QString::number(entry.visible())}
        .join(QLatin1Char('|'));
}

inline QStringList entry(const ZELKLWCLog &log, ZELKLWCLogEntry &entry)
{
    QStringList lines{raw(entry)};
    for (const ZELKLWCLogEntry *duplicate : entry.duplicates())
        lines.append(QStringLiteral("  duplicate ") + raw(*duplicate));
    lines.append(QStringLiteral("  past %1 next %2 previous %3 pair %4")
                     .arg(place(log, entry.past()), place(log, entry.next()), place(log, entry.previous()),
                          place(log, entry.pair())));
    lines.append(QStringLiteral("  represents %1 here %2 source %3 tip %4 after %5")
                     .arg(exact(entry.pairRepresents()), ZELKLWCLogEntry::pairRepresentsAtTimeOfEntry(&entry),
                          ZELKLWCLogEntry::powerSourceAtTimeOfEntry(&entry), exact(entry.stringForToolTip()))
                     .arg(entry.pairTimeInterval()));
    lines.append(QStringLiteral("  final %1 summary %2")
                     .arg(exact(QVariant::fromValue(entry.finalDate())), exact(entry.summary())));
    lines.append(QStringLiteral("  attributes %1 = %2")
                     .arg(entry.attributes().join(QLatin1Char(';')), exact(entry.attributeValues())));
    lines.append(QStringLiteral("  text ") + entry.stringValue());
    if (entry.kind() == ZELKEntryKind::PowerStatus) {
        const auto &status = static_cast<const ZELKLWCLogEntryPowerStatus &>(entry);
        lines.append(QStringLiteral("  change %1 at %2 connected %3 charging %4")
                         .arg(status.change())
                         .arg(status.percentageCharged())
                         .arg(status.connected())
                         .arg(status.charging()));
    }
    return lines;
}

inline QStringList of(const ZELKLWCLog &log)
{
    QStringList lines{QStringLiteral("final %1 visible %2+%3 past %4")
                          .arg(exact(QVariant::fromValue(log.finalDate())))
                          .arg(log.visibleRange().location)
                          .arg(log.visibleRange().length)
                          .arg(place(log, log.pastEntry()))};
    for (const QString &group : log.groups())
        lines.append(QStringLiteral("group %1: %2")
                         .arg(exact(group), place(log, log.finalGroupEntries().value(group))));
    for (const QString &battery : log.batteryEnumerator())
        lines.append(QStringLiteral("battery %1: %2").arg(exact(battery), place(log, log.battery(battery))));
    for (ZELKLWCLogEntry *item : log.entry())
        lines.append(entry(log, *item));
    return lines;
}

} // namespace LogDump
