#include "ZELKIdleStates.h"

#include "ZELKDictionary.h"
#include "ZELKRawEvent.h"

#include <cmath>
#include <string>
#include <utility>

namespace {

ZELKDictionary idleSeconds(const ZELKIdleHint &hint)
{
    const double seconds = std::floor(hint.date.timeIntervalSinceDate(hint.since));
    ZELKDictionary properties;
    if (seconds > 0.0)
        properties.insert(ZELKPropertyIdleSeconds, qlonglong(seconds));
    return properties;
}

/// On one line, without what no text has: any program may choose it.
QString printable(const QString &text)
{
    std::u32string characters = text.simplified().toStdU32String();
    std::erase_if(characters, [](char32_t character) {
        return !QChar::isPrint(character) || character == QChar::ReplacementCharacter;
    });
    return QString::fromStdU32String(characters);
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
    return QStringLiteral("%1 (%2): %3 (%4, %5)")
        .arg(printable(who), QString::number(pid), printable(why), what, mode);
}

bool ZELKIdleStates::change(bool isIdle)
{
    const bool wasIdle = std::exchange(m_isIdle, isIdle);
    return isIdle && !wasIdle;
}

ZELKIdleStates::Events ZELKIdleStates::idles(const ZELKIdleHint &hint)
{
    m_asked = hint;
    const ZELKDictionary properties = idleSeconds(hint);
    return {{hint.date, ZELKEventCanSystemSleep, ZELKMonitorPowerEvents,
             properties.isEmpty() ? ZELKEventNoProperties : ZELKPropertiesText(properties)}};
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
    ZELKDictionary properties = idleSeconds(hint);
    properties.insert(ZELKPropertyProcesses, QVariantList(holders.begin(), holders.end()));
    return {{hint.date.addingTimeInterval(1e-6), ZELKEventSystemWillNotSleep, ZELKMonitorPowerEvents,
             ZELKPropertiesText(properties)}};
}
