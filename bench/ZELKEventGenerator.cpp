#include "ZELKEventGenerator.h"

#include "ZELKEventVocabulary.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double meanSecondsBetween = 150.0;

} // namespace

ZELKEventGenerator::ZELKEventGenerator()
    : m_sources{{{QStringLiteral("BAT0"), QStringLiteral("Internal"), 4522083, 80},
                 {QStringLiteral("Office UPS"), QStringLiteral("USB"), 61734, 97},
                 {QStringLiteral("Jürgen’s Bank"), QStringLiteral("USB"), 88121, 55}}}
{
}

ZELKDate ZELKEventGenerator::advance()
{
    const double unit = (double(m_random()) + 1.0) / 4294967297.0;
    m_time += std::floor(-meanSecondsBetween * std::log(unit) * 1e6 + 1.0) / 1e6;
    return ZELKDate(m_time);
}

ZELKRawEvent ZELKEventGenerator::next()
{
    const int kind = below(1000);
    if (kind < 750)
        return powerEvent();
    if (kind < 860)
        return idleEvent(kind >= 810);
    if (kind < 980)
        return sleepEvent();
    return accountingEvent();
}

QList<ZELKRawEvent> ZELKEventGenerator::next(int count)
{
    QList<ZELKRawEvent> events;
    for (int i = 0; i < count; ++i)
        events.append(next());
    return events;
}

ZELKDictionary ZELKEventGenerator::readingOf(Source &source)
{
    const int toEmpty = source.charging ? 0 : source.percent * 3 + below(25);
    const int toFull = source.charging ? (100 - source.percent) * 3 / 2 + below(9) : 0;
    return {
        {ZELKPropertyCurrentCapacity, qlonglong(source.percent)},
        {ZELKPropertyIsCharging, source.charging},
        {ZELKPropertyIsPresent, source.present},
        {ZELKPropertyLowWarnLevel, qlonglong(10)},
        {ZELKPropertyMaxCapacity, qlonglong(100)},
        {ZELKPropertyName, source.name},
        {ZELKPropertyPowerSourceID, qlonglong(source.identifier)},
        {ZELKPropertyPowerSourceState, QString(source.charging ? ZELKPowerSourceAC : ZELKPowerSourceBattery)},
        {ZELKPropertyShutdownLevel, qlonglong(5)},
        {ZELKPropertyTimeToEmpty, qlonglong(toEmpty)},
        {ZELKPropertyTimeToFullCharge, qlonglong(toFull)},
        {ZELKPropertyTransportType, source.transport}};
}

ZELKRawEvent ZELKEventGenerator::powerEvent()
{
    const int choice = below(100);
    Source &source = m_sources[choice < 93 ? 0 : choice < 98 ? 1 : 2];
    if (below(100) < 2)
        source.charging = !source.charging;
    else if (below(1000) < 2)
        source.present = !source.present;
    else if (below(100) >= 40) // the others change nothing but the time estimates
        source.percent = std::clamp(source.percent + (source.charging ? 1 : -1), 3, 100);
    if (source.percent == 100 || source.percent <= 4)
        source.charging = source.percent <= 4;
    return ZELKMakeRawEvent(advance(), ZELKEventPowerStateChanged, ZELKMonitorPowerSource,
                            ZELKPropertiesText(readingOf(source)));
}

ZELKRawEvent ZELKEventGenerator::idleEvent(bool vetoed)
{
    ZELKDictionary properties{{ZELKPropertyIdleSeconds, qlonglong(60 * (1 + below(60)))}};
    if (vetoed) {
        QVariantList processes;
        for (int i = 1 + below(3); i > 0; --i)
            processes.append(QStringLiteral("worker-%1 (%2)").arg(below(40)).arg(100 + below(60000)));
        properties.insert(ZELKPropertyProcesses, processes);
    }
    return ZELKMakeRawEvent(advance(), vetoed ? ZELKEventSystemWillNotSleep : ZELKEventCanSystemSleep,
                            ZELKMonitorPowerEvents, ZELKPropertiesText(properties));
}

ZELKRawEvent ZELKEventGenerator::sleepEvent()
{
    m_asleep = !m_asleep;
    return ZELKMakeRawEvent(advance(), m_asleep ? ZELKEventSystemWillSleep : ZELKEventSystemHasPoweredOn,
                            ZELKMonitorPowerEvents);
}

ZELKRawEvent ZELKEventGenerator::accountingEvent()
{
    const int kind = below(20);
    if (kind < 10) {
        m_monitored = !m_monitored;
        return ZELKMakeRawEvent(advance(), m_monitored ? ZELKEventStartingMonitor : ZELKEventStoppingMonitor,
                                ZELKMonitorLullwatch);
    }
    if (kind < 15)
        return ZELKMakeRawEvent(advance(), ZELKEventSystemWillPowerOn, ZELKMonitorPowerEvents);
    const std::array names{ZELKEventStartup, ZELKEventAccountingBoot, ZELKEventAccountingShutDown};
    return ZELKMakeRawEvent(advance(), names[std::size_t(m_boots++ % 3)], ZELKMonitorSystemAccounting);
}
