// What views ask the log for: the run of visible entries, and the searches of graph and statistics.
#include "LogFixture.h"

#include <QSignalSpy>

#include <random>

using namespace Qt::StringLiterals;

namespace {

constexpr std::int64_t none = ZELKLWCLog::notFound;

/// The visible run as it is defined: a walk over all entries.
ZELKVisibleRange walkedRun(const ZELKLWCLog &log)
{
    ZELKVisibleRange run;
    for (int i = 0; i < log.count(); ++i) {
        if (log.dateRange()->absoluteDuration()->contains(log.objectAtIndex(i)->date())) {
            if (run.length++ == 0)
                run.location = std::uint64_t(i);
        } else if (run.length > 0) {
            break;
        }
    }
    return run;
}

std::int64_t walkedEntryBefore(const ZELKLWCLog &log, ZELKDate date)
{
    if (log.count() == 0 || !(log.objectAtIndex(0)->date() < date))
        return none;
    for (int i = 0; i < log.count(); ++i)
        if (log.objectAtIndex(i)->date() > date)
            return i;
    return log.count() - 1;
}

} // namespace

class TestSearches : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstRunAloneIsVisible()
    {
        LogFixture fixture;
        // On day 5 stand the entries 3 to 7, from its first moment to its last, and, out of order, 9.
        Events events;
        for (const double day : {1.0, 2.0, 5.0 - 1e-6, 5.0, 5.1, 5.2, 5.3, 6.0 - 1 / oneDay, 6.0, 5.5, 9.0})
            events.append(plainAt(day * oneDay));
        fixture.addAll(events);
        fixture.show(ZELKDate(5 * oneDay), ZELKDate(6 * oneDay - 1));
        QCOMPARE(fixture.log.visibleRange(), (ZELKVisibleRange{3, 5}));
        QCOMPARE(fixture.log.objectInVisibleEntriesAtIndex(4), fixture.at(7));
        QCOMPARE(fixture.log.visibleEntriesArray(), fixture.log.entry().mid(3, 5));
        fixture.show(ZELKDate(7 * oneDay), ZELKDate(8 * oneDay - 1));
        QCOMPARE(fixture.log.visibleRange(), ZELKVisibleRange());
    }

    void tellsOfTheRunAlsoWhenNothingChanged()
    {
        LogFixture fixture;
        QSignalSpy before(&fixture.log, &ZELKLWCLog::visibleEntriesWillChange);
        QSignalSpy after(&fixture.log, &ZELKLWCLog::visibleEntriesDidChange);
        ZELKVisibleRange duringWill{9, 9};
        connect(&fixture.log, &ZELKLWCLog::visibleEntriesWillChange, this,
                [&] { duringWill = fixture.log.visibleRange(); });
        fixture.addAll({plainAt(0), plainAt(60)});
        fixture.show(ZELKDate(0), ZELKDate(oneDay - 1));
        QCOMPARE(duringWill, ZELKVisibleRange());
        QCOMPARE(after.last().at(1).value<ZELKVisibleRange>(), (ZELKVisibleRange{0, 2}));
        const qsizetype told = after.count();
        fixture.log.updateVisibleEntries();
        QCOMPARE(before.count(), told + 1);
        QCOMPARE(after.count(), told + 1);
        QCOMPARE(after.last().at(0), after.last().at(1));
        fixture.addAll({});
        QVERIFY(after.count() > told + 1);
    }

    /// In order and out of order, searches find what a walk finds.
    void findWhatAWalkFinds_data()
    {
        const NamedRows<int> row("disorder"); // of ten events, so many are put anywhere
        for (const int disorder : {0, 1, 5, 10})
            row(qPrintable(u"%1 of ten"_s.arg(disorder)), disorder);
    }

    void findWhatAWalkFinds()
    {
        QFETCH(int, disorder);
        std::mt19937 random(20240305U + unsigned(disorder));
        const auto upTo = [&](int most) { return int(random() % unsigned(most + 1)); };
        for (int round = 0; round < 40; ++round) {
            LogFixture fixture;
            double now = 0;
            for (int batch = 0; batch < 3; ++batch) {
                Events events;
                for (int i = upTo(12); i > 0; --i) {
                    now += upTo(2) * oneDay / 4;
                    events.append(plainAt(upTo(9) < disorder ? upTo(40) * oneDay / 4 - 5 * oneDay : now));
                }
                fixture.addAll(events);
            }
            if (fixture.log.count() == 0)
                continue;
            for (int i = 0; i < 10; ++i) {
                const int from = upTo(12) - 6;
                fixture.show(ZELKDate(from * oneDay), ZELKDate((from + 1 + upTo(4)) * oneDay - 1));
                QCOMPARE(fixture.log.visibleRange(), walkedRun(fixture.log));
            }
            for (int quarter = -21; quarter < 60; ++quarter) {
                const ZELKDate date(quarter * oneDay / 8);
                QCOMPARE(fixture.log.entryBeforeDate(date), walkedEntryBefore(fixture.log, date));
            }
        }
        QCOMPARE(LogFixture().log.entryBeforeDate(ZELKDate(0)), none);
    }

    void findsTheNextState()
    {
        LogFixture fixture;
        QVERIFY(!fixture.log.nextPairRepresentsAfter(0));
        fixture.addAll({plainAt(0), rawEvent(10, sleepEvent), plainAt(20), rawEvent(30, sleepEvent),
                        rawEvent(40, wakeEvent), plainAt(50)});
        const auto next = [&](const QString &word, std::int64_t index) {
            return fixture.placeOf(fixture.log.pairRepresentsChangesNextAfter(word, index));
        };
        QCOMPARE(next(u"Asleep"_s, 0), u"4"_s);
        QCOMPARE(next(u"Awake"_s, 0), u"1"_s);
        QCOMPARE(next(u"Awake"_s, 2), u"3"_s);
        QCOMPARE(next(u"Awake"_s, 4), u"none"_s);
        QCOMPARE(next(u"never heard"_s, 4), u"4"_s);
        for (const std::int64_t index : {std::int64_t(5), std::int64_t(6), none, std::int64_t(-1)})
            QVERIFY(!fixture.log.nextPairRepresentsAfter(index));
        QCOMPARE(fixture.log.nextPairRepresentsAfter(1), fixture.at(1));
        QCOMPARE(fixture.log.nextPairRepresentsAfter(2), fixture.at(3));
    }

    void findsTheReadingsOfABattery()
    {
        LogFixture fixture;
        const ZELKDictionary second{{ZELKPropertyName, u"BAT1"_s}};
        fixture.addAll({batteryEvent(0, reading(50)), batteryEvent(10, reading(60, second)), plainAt(20),
                        batteryEvent(30, reading(51)), batteryEvent(31, reading(51)),
                        rawEvent(40, u"Plugged"_s, reading(1)), batteryEvent(50, reading(61, second))});
        const auto around = [&](const QString &battery, const ZELKLWCLogEntry *entry) {
            return fixture.placeOf(fixture.log.powerEventForBatteryBefore(battery, entry)) + u' ' +
                   fixture.placeOf(fixture.log.powerEventForBatteryAfter(battery, entry));
        };
        QCOMPARE(around(u"BAT0"_s, fixture.at(2)), u"0 3"_s);
        QCOMPARE(around(u"BAT1"_s, fixture.at(2)), u"1 5"_s);
        // The entry itself counts for neither, nor an entry of another kind with the same name.
        QCOMPARE(around(u"BAT0"_s, fixture.at(0)), u"none 3"_s);
        QCOMPARE(around(u"BAT0"_s, fixture.at(3)), u"0 none"_s);
        // No name, no such name, and entries that do not stand in the log.
        QCOMPARE(around(QString(), fixture.at(2)), u"none none"_s);
        QCOMPARE(around(u"BAT2"_s, fixture.at(2)), u"none none"_s);
        QCOMPARE(around(u"BAT0"_s, fixture.at(3)->duplicates().at(0)), u"none none"_s);
        QCOMPARE(around(u"BAT0"_s, nullptr), u"none none"_s);
        QCOMPARE(fixture.log.battery(u"BAT0"_s), fixture.at(3)); // the entry, not what merged into it
    }

    void interpolates()
    {
        const auto between = [](double seconds, int percentage, double date) {
            LogFixture fixture;
            const auto *from = fixture.addReading(0, reading(50));
            const auto *to = fixture.addReading(seconds, reading(percentage, {{charging, true}}));
            return ZELKLWCLog::interpolatePercentageChargedForDate(ZELKDate(date), *from, *to);
        };
        QCOMPARE(between(100, 40, 75), 42.5F);
        QCOMPARE(between(100, 60, -1000), -50.0F);
        QCOMPARE(between(100, 60, 1000), 150.0F);
        QCOMPARE(between(100, 50, 70), 50.0F);
        QCOMPARE(between(0, 60, 70), 50.0F);     // at one time
        QCOMPARE(between(-100, 60, -50), 50.0F); // turned in time
    }
};

QTEST_GUILESS_MAIN(TestSearches)
#include "tst_searches.moc"
