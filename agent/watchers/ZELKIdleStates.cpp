#include "ZELKIdleStates.h"

#include "ZELKDictionary.h"
#include "ZELKRawEvent.h"

#include <cmath>

namespace {

qlonglong idleSeconds(const ZELKIdleHint &hint)
{
    const double seconds = std::floor(hint.date.timeIntervalSinceDate(hint.since));
    return seconds > 0.0 ? qlonglong(seconds) : 0;
}

} // namespace

bool ZELKInhibitor::holdsSleepOff() const
{
    const QStringList locks = what.split(QLatin1Char(':'));
    return mode.startsWith(QLatin1String("block")) &&
           (locks.contains(QLatin1String("idle")) || locks.contains(QLatin1String("sleep")));
}

QString ZELKInhibitor::text() const
{
    return QStringLiteral("%1 (%2): %3 (%4, %5)").arg(who, QString::number(pid), why, what, mode);
}

void ZELKIdleStates::begin(bool isIdle)
{
    m_isIdle = isIdle;
    m_asked.reset();
}

ZELKIdleStates::Events ZELKIdleStates::hint(const ZELKIdleHint &hint)
{
    const bool begins = hint.isIdle && !m_isIdle;
    m_isIdle = hint.isIdle;
    if (!begins)
        return {};
    m_asked = hint;
    const ZELKDictionary properties{{ZELKPropertyIdleSeconds, idleSeconds(hint)}};
    return {{hint.date, ZELKEventCanSystemSleep, ZELKMonitorPowerEvents, ZELKPropertiesText(properties)}};
}

/// The answer's order is logind's hash table's; sorted, the same locks read the same.
ZELKIdleStates::Events ZELKIdleStates::inhibitors(const std::vector<ZELKInhibitor> &inhibitors,
                                                  quint32 ownPid)
{
    if (!m_asked)
        return {};
    const ZELKIdleHint hint = *m_asked;
    m_asked.reset();
    QStringList holders;
    for (const ZELKInhibitor &inhibitor : inhibitors)
        if (inhibitor.holdsSleepOff() && inhibitor.pid != ownPid)
            holders.append(inhibitor.text());
    if (holders.isEmpty())
        return {};
    holders.sort();
    const ZELKDictionary properties{{ZELKPropertyIdleSeconds, idleSeconds(hint)},
                                    {ZELKPropertyProcesses, QVariantList(holders.begin(), holders.end())}};
    return {{hint.date.addingTimeInterval(1e-6), ZELKEventSystemWillNotSleep, ZELKMonitorPowerEvents,
             ZELKPropertiesText(properties)}};
}
