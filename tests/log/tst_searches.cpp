// What graph and statistics ask the log for.
#include "LogDump.h"
#include "LogFixture.h"

#include <QtTest>

#include <limits>
#include <random>

using namespace Qt::StringLiterals;

namespace {

constexpr std::int64_t none = ZELKLWCLog::notFound;
const QString sleepEvent = ZELKEventSystemWillSleep;
const QString wakeEvent = ZELKEventSystemHasPoweredOn;

ZELKRawEvent plainAt(double seconds)
{
    return rawEvent(seconds, ZELKEventSystemWillRestart);
}

std::int64_t walked(const ZELKLWCLog &log, ZELKDate date)
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
    void findsTheEntryThatFollowsADate_data()
    {
        QTest::addColumn<double>("date");
        QTest::addColumn<qint64>("index");
        QTest::newRow("between 4 and 5") << 45.0 << qint64(5);
        QTest::newRow("at 4, strictly after") << 40.0 << qint64(5);
        QTest::newRow("just after the first") << 0.5 << qint64(1);
        QTest::newRow("at the first") << 0.0 << qint64(none);
        QTest::newRow("before the first") << -1.0 << qint64(none);
        QTest::newRow("at the last") << 90.0 << qint64(9);
        QTest::newRow("after the last") << 91.0 << qint64(9);
    }

    void findsTheEntryThatFollowsADate()
    {
        QFETCH(double, date);
        LogFixture fixture;
        QCOMPARE(fixture.log.entryBeforeDate(ZELKDate(date)), none);
        for (int i = 0; i < 10; ++i)
            fixture.add(plainAt(i * 10));
        QTEST(qint64(fixture.log.entryBeforeDate(ZELKDate(date))), "index");
    }

    void findsTheSameOutOfOrder()
    {
        QCOMPARE(none, std::numeric_limits<qint64>::max());
        std::mt19937 random(7);
        for (int round = 0; round < 100; ++round) {
            LogFixture fixture;
            QList<ZELKRawEvent> events;
            for (int i = 0; i < 12; ++i)
                events.append(plainAt(double(random() % (round % 2 ? 30 : 3)) + i * (round % 3)));
            fixture.log.addExternalEntries(events);
            for (int at = -1; at < 45; ++at)
                QCOMPARE(fixture.log.entryBeforeDate(ZELKDate(at)), walked(fixture.log, ZELKDate(at)));
        }
    }

    void findsTheNextState()
    {
        LogFixture fixture;
        QVERIFY(!fixture.log.nextPairRepresentsAfter(0));
        fixture.log.addExternalEntries({plainAt(0), rawEvent(10, sleepEvent), plainAt(20),
                                        rawEvent(30, sleepEvent), rawEvent(40, wakeEvent), plainAt(50)});
        const auto changes = [&](const QString &word, std::int64_t index) {
            return LogDump::place(fixture.log, fixture.log.pairRepresentsChangesNextAfter(word, index));
        };
        QCOMPARE(changes(u"Asleep"_s, 0), u"4"_s);
        QCOMPARE(changes(u"Awake"_s, 0), u"1"_s);
        QCOMPARE(changes(u"Awake"_s, 2), u"3"_s);
        QCOMPARE(changes(u"Awake"_s, 4), u"none"_s);
        QCOMPARE(changes(u"never heard"_s, 4), u"4"_s);
        for (const std::int64_t index : {std::int64_t(6), none, std::int64_t(-1)}) {
            QCOMPARE(changes(u"Asleep"_s, index), u"none"_s);
            QVERIFY(!fixture.log.nextPairRepresentsAfter(index));
        }
        QCOMPARE(fixture.log.nextPairRepresentsAfter(0), fixture.at(1));
        QCOMPARE(fixture.log.nextPairRepresentsAfter(1), fixture.at(1));
        QCOMPARE(fixture.log.nextPairRepresentsAfter(2), fixture.at(3));
        QVERIFY(!fixture.log.nextPairRepresentsAfter(5));
    }

    void findsTheReadingsOfABattery()
    {
        LogFixture fixture;
        const ZELKDictionary second{{ZELKPropertyName, u"BAT1"_s}};
        fixture.log.addExternalEntries({batteryEvent(0, reading(50)), batteryEvent(10, reading(60, second)),
                                        plainAt(20), batteryEvent(30, reading(51)),
                                        batteryEvent(31, reading(51)), rawEvent(40, u"Plugged"_s, reading(1)),
                                        batteryEvent(50, reading(61, second))});
        ZELKLWCLogEntry *middle = fixture.at(2);
        const auto &log = fixture.log;
        QCOMPARE(log.powerEventForBatteryBefore(u"BAT0"_s, middle), fixture.at(0));
        QCOMPARE(log.powerEventForBatteryAfter(u"BAT0"_s, middle), fixture.at(3));
        QCOMPARE(log.powerEventForBatteryBefore(u"BAT1"_s, middle), fixture.at(1));
        QCOMPARE(log.powerEventForBatteryAfter(u"BAT1"_s, middle), fixture.at(5));
        // The entry itself counts for neither, nor an entry of another kind with the same name.
        QVERIFY(!log.powerEventForBatteryBefore(u"BAT0"_s, fixture.at(0)));
        QVERIFY(!log.powerEventForBatteryAfter(u"BAT0"_s, fixture.at(3)));
        QVERIFY(!log.powerEventForBatteryAfter(u"BAT1"_s, fixture.at(5)));
        // No name, no such name, and entries that do not stand in the log.
        QVERIFY(!log.powerEventForBatteryBefore(u"BAT2"_s, middle));
        QVERIFY(!log.powerEventForBatteryBefore(QString(), middle));
        QVERIFY(!log.powerEventForBatteryAfter(u"BAT0"_s, fixture.at(3)->duplicates().at(0)));
        QVERIFY(!log.powerEventForBatteryBefore(u"BAT0"_s, nullptr));
        QVERIFY(!log.powerEventForBatteryAfter(u"BAT0"_s, nullptr));
        QCOMPARE(log.battery(u"BAT0"_s), fixture.at(3)); // the entry, not what merged into it
    }

    void interpolates_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<int>("second");
        QTest::addColumn<double>("date");
        QTest::addColumn<float>("percentage");
        QTest::newRow("half way") << 100.0 << 60 << 50.0 << 55.0F;
        QTest::newRow("at the first") << 100.0 << 60 << 0.0 << 50.0F;
        QTest::newRow("at the second") << 100.0 << 60 << 100.0 << 60.0F;
        QTest::newRow("falling") << 100.0 << 40 << 75.0 << 42.5F;
        QTest::newRow("before both") << 100.0 << 60 << -1000.0 << -50.0F;
        QTest::newRow("after both") << 100.0 << 60 << 1000.0 << 150.0F;
        QTest::newRow("equal percentages") << 100.0 << 50 << 70.0 << 50.0F;
        QTest::newRow("at one time") << 0.0 << 60 << 70.0 << 50.0F;
        QTest::newRow("turned in time") << -100.0 << 60 << -50.0 << 50.0F;
    }

    void interpolates()
    {
        QFETCH(double, seconds);
        QFETCH(int, second);
        QFETCH(double, date);
        ZELKEntryArena arena;
        const auto make = [&](double at, int percentage) {
            return static_cast<ZELKLWCLogEntryPowerStatus *>(arena.entryWithDate(
                ZELKEntryKind::PowerStatus, ZELKDate(at), u"e"_s, u"m"_s, reading(percentage)));
        };
        QTEST(ZELKLWCLog::interpolatePercentageChargedForDate(ZELKDate(date), *make(0, 50),
                                                              *make(seconds, second)),
              "percentage");
    }

    void knowsTheirPlaces()
    {
        LogFixture fixture;
        // Duplicates and loose entries take handles between.
        for (int i = 0; i < 40; ++i) {
            fixture.add(batteryEvent(i, reading(i / 3)));
            fixture.log.entryWithDate(ZELKDate(0), u"e"_s, u"m"_s, {});
        }
        for (int i = 0; i < fixture.log.count(); ++i)
            QCOMPARE(fixture.log.indexOfEntry(fixture.at(i)), std::optional(std::uint64_t(i)));
        LogFixture other;
        QVERIFY(!fixture.log.indexOfEntry(other.add(plainAt(0))));
        QVERIFY(!fixture.log.indexOfEntry(nullptr));
    }
};

QTEST_GUILESS_MAIN(TestSearches)
#include "tst_searches.moc"
