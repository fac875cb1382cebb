#pragma once

#include "ZELKLWCLog.h"
#include "ZELKLWCLogEntryPowerStatus.h"
#include "ZELKValue.h"

#include <QDebug>

/// What can be seen of a log, as texts that can be compared.
namespace LogDump {

inline QString exact(const QString &text)
{
    return text.isNull() ? QStringLiteral("nil") : QLatin1Char('"') + text + QLatin1Char('"');
}

/// Value with its type, keys in their order.
inline QString exact(const QVariant &value)
{
    QString text = QLatin1String(value.isValid() ? value.typeName() : "nothing") + QLatin1Char('(');
    if (value.userType() == qMetaTypeId<ZELKDictionary>()) {
        for (const auto &[key, item] : value.value<ZELKDictionary>())
            text += exact(key) + QLatin1Char('=') + exact(item) + QLatin1Char(',');
    } else if (value.typeId() == QMetaType::QVariantList) {
        for (const QVariant &item : value.toList())
            text += exact(item) + QLatin1Char(',');
    } else if (value.userType() == qMetaTypeId<ZELKDate>()) {
        text += QString::number(value.value<ZELKDate>().timeIntervalSinceReferenceDate(), 'g', 17);
    } else {
        text += exact(ZELKValue::description(value));
    }
    return text + QLatin1Char(')');
}

template <typename T>
QString exact(const T &value)
{
    return exact(QVariant::fromValue(value));
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
    QString text;
    QDebug(&text).noquote() << int(entry.kind()) << exact(entry.date()) << exact(entry.event())
                            << exact(entry.monitor()) << exact(entry.group()) << exact(entry.properties())
                            << entry.objectSpecifier() << entry.visible();
    return text;
}

inline QStringList of(const ZELKLWCLog &log, ZELKLWCLogEntry &entry)
{
    QStringList lines{raw(entry)};
    for (const ZELKLWCLogEntry *duplicate : entry.duplicates())
        lines.append(QStringLiteral("duplicate ") + raw(*duplicate));
    QString text;
    QDebug line(&text);
    line.noquote() << "past" << place(log, entry.past()) << "next" << place(log, entry.next()) << "previous"
                   << place(log, entry.previous()) << "pair" << place(log, entry.pair())
                   << entry.pairTimeInterval() << "represents" << exact(entry.pairRepresents()) << "final"
                   << exact(entry.finalDate()) << entry.stringValue();
    return lines << text;
}

inline QStringList of(const ZELKLWCLog &log)
{
    QString text;
    QDebug line(&text);
    line.noquote() << "final" << exact(log.finalDate()) << "visible" << log.visibleRange().location
                   << log.visibleRange().length << "past" << place(log, log.pastEntry());
    for (const QString &group : log.groups())
        line << "group" << exact(group) << place(log, log.finalGroupEntries().value(group));
    for (const QString &battery : log.batteryEnumerator())
        line << "battery" << exact(battery) << place(log, log.battery(battery));
    QStringList lines{text};
    for (ZELKLWCLogEntry *item : log.entry())
        lines += of(log, *item);
    return lines;
}

} // namespace LogDump
