#pragma once

#include "ZELKAssertion.h"
#include "ZELKEventVocabulary.h"
#include "ZELKLWCLog.h"
#include "ZELKPropertyList.h"
#include "ZELKRawEvent.h"

#include <QRandomGenerator>

/// The console's lines while it lives.
class Console
{
public:
    Console()
        : m_before(qInstallMessageHandler(
              [](QtMsgType, const QMessageLogContext &, const QString &line) { kept().append(line); }))
    {
        kept().clear();
    }
    ~Console() { qInstallMessageHandler(m_before); }

    QStringList lines() const { return kept(); }
    int count(const char *part) const
    {
        return int(kept().filter(QString::fromUtf8(part), Qt::CaseSensitive).size());
    }
    void clear() { kept().clear(); }

private:
    static QStringList &kept()
    {
        static QStringList lines;
        return lines;
    }
    QtMessageHandler m_before;
};

/// The message that `action` raises; empty when it raises none.
template <typename Action>
QString raised(const Action &action)
{
    try {
        action();
    } catch (const ZELKAssertionFailure &failure) {
        return failure.message();
    }
    return {};
}

inline QByteArray bytesOf(const ZELKRawEvent &event)
{
    return ZELKPropertyList::writeBinary(QVariant::fromValue(event)).bytes;
}

/// A history as a computer might have had it: bursts within a second, equal dates, long gaps. No event twice.
inline QList<ZELKRawEvent> history(int count, quint32 seed = 7)
{
    QRandomGenerator random(seed);
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
            properties = ZELKPropertiesText({{ZELKPropertyName, QStringLiteral("BAT\u00e9")},
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

inline QList<QByteArray> serialised(const QList<ZELKRawEvent> &events)
{
    QList<QByteArray> bytes;
    for (const ZELKRawEvent &event : events)
        bytes.append(bytesOf(event));
    return bytes;
}
