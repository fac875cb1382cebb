#pragma once

#include "LogFixture.h"
#include "ZELKLWCLogEntrySelection.h"

#include <random>

using namespace Qt::StringLiterals;

using Selection = ZELKLWCLogEntrySelection;

/// A log written in words, "b0:80 s5 w65 b66:72": what happens, at which minute, and a battery's percentage.
/// b: BAT0 on battery; a: on mains; c: charging; r: removed; i, j: another inside the computer, on battery
/// and on mains; x: one outside, on battery; s: sleep; w: wake; u: startup; o: shutdown; m, n: recording
/// starts, stops; p: an event without a state.
struct StatisticsFixture : LogFixture
{
    static constexpr double minute = 60.0;
    static constexpr double farFuture = 1e9;

    explicit StatisticsFixture(const QString &script, double now = farFuture)
        : LogFixture(Texts::English)
        , later(at(now))
    {
        Events events;
        for (const QString &word : script.split(u' ', Qt::SkipEmptyParts))
            events.append(event(word));
        addAll(events);
    }

    static ZELKEnvironment at(double now)
    {
        ZELKEnvironment environment = environmentWith(Texts::English);
        environment.clock = std::make_shared<ZELKFixedClock>(ZELKDate(now));
        return environment;
    }

    static ZELKRawEvent event(const QString &word)
    {
        const double date = word.mid(1).section(u':', 0, 0).toDouble() * minute;
        const int percentage = word.section(u':', 1).toInt();
        const QString mains = ZELKPowerSourceAC;
        const ZELKDictionary::Item inside{ZELKPropertyTransportType, u"Internal"_s};
        const ZELKDictionary::Item second{ZELKPropertyName, u"BAT1"_s};
        switch (word.at(0).toLatin1()) {
        case 'b':
            return batteryEvent(date, reading(percentage, {inside}));
        case 'a':
            return batteryEvent(date, reading(percentage, {inside, {source, mains}}));
        case 'c':
            return batteryEvent(date, reading(percentage, {inside, {source, mains}, {charging, true}}));
        case 'r':
            return batteryEvent(date, reading(percentage, {inside, {present, false}}));
        case 'i':
            return batteryEvent(date, reading(percentage, {inside, second}));
        case 'j':
            return batteryEvent(date, reading(percentage, {inside, second, {source, mains}}));
        case 'x':
            return batteryEvent(date, reading(percentage, {{ZELKPropertyName, u"UPS"_s}}));
        case 's':
            return rawEvent(date, sleepEvent);
        case 'w':
            return rawEvent(date, wakeEvent);
        case 'u':
            return rawEvent(date, ZELKEventStartup);
        case 'o':
            return rawEvent(date, ZELKEventAccountingShutDown);
        case 'm':
            return rawEvent(date, ZELKEventStartingMonitor, {}, ZELKMonitorLullwatch);
        case 'n':
            return rawEvent(date, ZELKEventStoppingMonitor, {}, ZELKMonitorLullwatch);
        default:
            return plainAt(date);
        }
    }

    /// A life of some hours, with a little of everything.
    static QString randomScript(std::mt19937 &random)
    {
        QStringList words;
        double date = 0.0;
        int percentage = 90;
        for (int i = 5 + int(random() % 40); i > 0; --i) {
            date += 0.1 + (random() % 8 ? double(random() % 20) : double(random() % 100));
            percentage += random() % 9 ? -int(random() % 3) : 1;
            const char kind = "bbbbbbbbbbbbxxxxssssswwwwwwacrmnuop"[random() % 35];
            words.append(u"%1%2:%3"_s.arg(QLatin1Char(kind)).arg(date).arg(percentage));
        }
        return words.join(u' ');
    }

    /// Those at the given positions; all without any.
    Selection::Entries entries(const QList<int> &positions) const
    {
        if (positions.isEmpty())
            return log.entry();
        Selection::Entries entries;
        for (const int position : positions)
            entries.append(log.objectAtIndex(position));
        return entries;
    }

    ZELKEnvironmentScope later;
};

/// "Awake=60 Asleep=5", in minutes.
inline QString minutes(const ZELKDictionary &totals)
{
    QStringList words;
    for (const auto &[key, value] : totals)
        words.append(key + u'=' + QString::number(value.toDouble() / StatisticsFixture::minute));
    return words.join(u' ');
}

/// Each sleep by its costs ("8"; the name before it where it is not BAT0) or the first letter of why there is
/// none, then the sums as points/minutes asleep and awake.
inline QString inWords(const ZELKSleepCosts &costs)
{
    QStringList words;
    const auto amount = [](const ZELKSleepCosts::Drain &drain) {
        return u"%1/%2"_s.arg(drain.points).arg(drain.seconds / StatisticsFixture::minute);
    };
    for (std::size_t i = 0; i < costs.sleeps().size(); ++i) {
        QStringList known;
        for (const ZELKSleepCosts::Cost &cost : costs.costsOfSleep(i)) {
            const QString name = costs.batteries()[cost.battery].name;
            known.append((name == u"BAT0" ? QString() : name) + QString::number(cost.points));
        }
        const bool isKnown = costs.sleeps()[i].unknown == ZELKSleepCosts::Unknown::No;
        constexpr char letters[] = "?rsgc"; // reading, several, gap, charger
        words.append(isKnown ? known.join(u'+')
                             : QString(QLatin1Char(letters[int(costs.sleeps()[i].unknown)])));
    }
    for (const ZELKSleepCosts::Battery &battery : costs.batteries())
        words.append(battery.name + u':' + amount(battery.asleep) + u'|' + amount(battery.awake));
    return words.join(u' ');
}
