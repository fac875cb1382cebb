#pragma once

#include "ZELKDisplayListBuilder.h"
#include "ZELKEnvironment.h"
#include "ZELKEventVocabulary.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogEntryPowerStatus.h"
#include "ZELKUserDefaults.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

inline constexpr double hour = 3600.0;
/// 2024-03-05 00:00:00 UTC, the day that is shown; hours count from here.
inline constexpr ZELKDate dayStart(731289600.0);

inline ZELKDate at(double hours)
{
    return dayStart.addingTimeInterval(hours * hour);
}

inline ZELKEnvironment inUtc()
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.zone = QTimeZone::utc();
    environment.mainBundle = std::make_shared<ZELKBundle>(ZELKBundle::mainBundlePath({}), u"en"_s);
    return environment;
}

/// "b50" and "a50" are readings of a battery on battery and on mains power, "c50" of one that is charged,
/// "x50" of one that is away; "@NAME" makes it another battery's than BAT0's, a lone "@" one's without name.
inline ZELKRawEvent readingAt(double hours, const QString &word)
{
    const QString source = word[0] == u'a' || word[0] == u'c' ? ZELKPowerSourceAC : ZELKPowerSourceBattery;
    ZELKDictionary values{{ZELKPropertyIsPresent, word[0] != u'x'},
                          {ZELKPropertyIsCharging, word[0] == u'c'},
                          {ZELKPropertyCurrentCapacity, word.section(u'@', 0, 0).mid(1).toLongLong()},
                          {ZELKPropertyMaxCapacity, 100LL},
                          {ZELKPropertyPowerSourceState, source}};
    if (!word.endsWith(u'@'))
        values.insert(ZELKPropertyName, word.contains(u'@') ? word.section(u'@', 1) : u"BAT0"_s);
    return ZELKMakeRawEvent(at(hours), ZELKEventPowerStateChanged, ZELKMonitorPowerSource,
                            ZELKPropertiesText(values));
}

/// "HOURS:WORD": a short word for an event, or a reading.
inline ZELKRawEvent eventFrom(const QString &text)
{
    static const QHash<QString, QString> events{
        {u"sleep"_s, ZELKEventSystemWillSleep},  {u"wake"_s, ZELKEventSystemHasPoweredOn},
        {u"off"_s, ZELKEventAccountingShutDown}, {u"on"_s, ZELKEventStartup},
        {u"boot"_s, ZELKEventAccountingBoot},    {u"start"_s, ZELKEventStartingMonitor},
        {u"stop"_s, ZELKEventStoppingMonitor},   {u"plain"_s, ZELKEventSystemWillRestart}};
    const double hours = text.section(u':', 0, 0).toDouble();
    const QString word = text.section(u':', 1);
    return events.contains(word) ? ZELKMakeRawEvent(at(hours), events.value(word), ZELKMonitorPowerEvents)
                                 : readingAt(hours, word);
}

/// A log of such events that shows one day, on a chart with a point for each second and two for each percent.
struct GraphFixture
{
    ZELKEnvironmentScope scope{inUtc()};
    QTemporaryDir folder;
    ZELKUserDefaults defaults{folder.filePath(u"defaults.ini"_s)};
    ZELKLWCDateRangeController range{defaults};
    ZELKLWCLog log;
    ZELKChartScale scale{{10, 20, 86399, 200}, {}, 1.0};
    ZELKLWCEntriesViewDisplayList list = ZELKLWCEntriesViewDisplayList::displayList();

    explicit GraphFixture(const QString &events = {})
    {
        range.awakeFromNib();
        log.setDateRange(&range);
        log.awakeFromNib();
        QList<ZELKRawEvent> all;
        for (const QString &event : events.split(u' ', Qt::SkipEmptyParts))
            all.append(eventFrom(event));
        log.addExternalEntries(all);
        show(0, 1);
    }
    void show(int firstDay, int days)
    {
        range.setAbsoluteDuration(
            std::make_shared<ZELKLWCAbsoluteDuration>(at(24.0 * firstDay), 24.0 * hour * days - 1.0));
        scale.period = *range.absoluteDuration();
        list = ZELKLWCEntriesViewDisplayList::displayList();
        ZELKDisplayListBuilder(list, scale, log).prepareDisplayList();
    }
    QString place(const ZELKLWCLogEntry *entry) const
    {
        const auto index = log.indexOfEntry(entry);
        return index ? u"#%1"_s.arg(*index) : u"-"_s;
    }
};
