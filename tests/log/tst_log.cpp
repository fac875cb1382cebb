// How raw events come into the log, and what views ask it for: the visible run, and searches.
#include "LogFixture.h"
#include "ZELKPropertyList.h"

#include <QSignalSpy>

#include <limits>
#include <random>

using namespace Qt::StringLiterals;

namespace {

const ZELKDictionary isCharging{{charging, true}};

ZELKRawEvent with(const QString &key, const QVariant &value)
{
    ZELKRawEvent event = plainAt(60);
    event.insert(key, value);
    return event;
}

ZELKRawEvent withProperties(const QVariant &properties)
{
    return with(ZELKEventKeyProperties, properties);
}

ZELKDate dateOf(const QVariant &date)
{
    return LogFixture().add(with(ZELKEventKeyDate, date))->date();
}

ZELKRawEvent without(const QString &key)
{
    ZELKRawEvent event = plainAt(60);
    event.remove(key);
    return event;
}

void addInPlace(LogFixture &fixture, const ZELKRawEventView &event)
{
    fixture.log.beginExternalEntries();
    fixture.log.addExternalEntry(event);
    fixture.log.endExternalEntries();
}

QString errorOf(const QString &text)
{
    return ZELKPropertyList::read(text.toStdString()).error;
}

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

class TestLog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void faultsDropAnEvent()
    {
        ZELKRawEvent odd = withProperties(u"?"_s);
        odd.remove(ZELKEventKeyMonitor);
        odd.insert(u"more"_s, QVariantList{1LL});
        std::vector<std::pair<ZELKRawEvent, QString>> faults{
            {odd, errorOf(u"?"_s)},
            {without(ZELKEventKeyProperties), errorOf({})},
            {withProperties(5LL), errorOf(u"5"_s)},
            {withProperties(u"<plist><string>x</string></plist>"_s),
             u"The properties are not a dictionary."_s}};
        for (const QString &text : {u"null"_s, u"NULL "_s, u"<plist><dict>"_s, u" "_s, u""_s})
            faults.emplace_back(withProperties(text), errorOf(text));
        for (const auto &[event, error] : faults) {
            const ConsoleLines console;
            LogFixture fixture;
            fixture.addAll({rawEvent(1, sleepEvent), event, rawEvent(2, wakeEvent), event});
            QVERIFY(!error.isEmpty());
            const QString line = u"Error unpacking event properties:%1 <%2>"_s.arg(
                error, ZELKValue::description(QVariant::fromValue(event)));
            QCOMPARE(console.lines(), (QStringList{line, line}));
            QCOMPARE(fixture.log.count(), 2);
            QCOMPARE(fixture.at(1)->past(), fixture.at(0));
            QCOMPARE(fixture.log.finalDate(), ZELKDate(2)); // also last of all it moves nothing
        }
    }

    /// Events that are read in place come to what their dictionaries come to.
    void bothWaysMakeTheSameLog()
    {
        const QString texts[] = {u"startup"_s, QString(), u"Lüfter aus"_s, u"🔋"_s, u"a\tb"_s};
        QStringList seen[2];
        for (const bool isInPlace : {false, true}) {
            const ConsoleLines console;
            LogFixture fixture(Texts::English);
            for (const QString &event : texts) {
                for (const QString &monitor : texts) {
                    for (const QString &properties : {u"NULL"_s, u"?"_s, u"<plist><dict/></plist>"_s}) {
                        const auto raw = ZELKMakeRawEvent(ZELKDate(5), event, monitor, properties);
                        const std::string bytes[] = {event.toStdString(), monitor.toStdString(),
                                                     properties.toStdString()};
                        isInPlace ? addInPlace(fixture, {"5.000000", bytes[0], bytes[1], bytes[2]})
                                  : fixture.addAll({raw});
                    }
                }
            }
            seen[isInPlace] = LogDump::of(fixture.log) + console.lines();
        }
        QCOMPARE(seen[1], seen[0]);
    }

    void dates()
    {
        // What the C library reads at a text's beginning; a number that is none counts as 0.
        for (const char *text :
             {"731000000.123456", "-5.500000", "5", "5.0000001", "1e3", ".500000", "+7.000000", "  7.000000",
              "7.00000x", "7.0.000000", "yesterday", "nan", "١.٠٠٠٠٠٠", "", "9007199254.740991",
              "9007199254.740993", "999999999.999999"}) {
            const double seconds = std::strtod(text, nullptr);
            const ZELKDate expected(seconds == seconds ? seconds : 0.0);
            QCOMPARE(dateOf(QString::fromUtf8(text)), expected);
            LogFixture fixture;
            addInPlace(fixture, {text, "e", "m", "NULL"});
            QCOMPARE(fixture.log.finalDate(), expected);
        }
        QCOMPARE(dateOf(12.75), ZELKDate(12.75));
        QCOMPARE(dateOf(std::numeric_limits<double>::quiet_NaN()), ZELKDate(0));
        QCOMPARE(dateOf(QVariantList{1LL}), ZELKDate(0));
    }

    void absentTextsAreEmpty()
    {
        LogFixture fixture(Texts::English);
        const ZELKLWCLogEntry *entry = fixture.add(without(ZELKEventKeyDescription));
        QCOMPARE(entry->summary(), QString());
        QCOMPARE(entry->kind(), ZELKEntryKind::Plain);
        entry = fixture.add(without(ZELKEventKeyMonitor));
        QCOMPARE(entry->monitor() + entry->group(), QString());
        QCOMPARE(fixture.add(without(ZELKEventKeyDate))->date(), ZELKDate(0));
    }

    void aBatchIsLinkedBeforeItAwakes()
    {
        // A pair within the batch, and one that is found across another group.
        LogFixture fixture(Texts::English);
        fixture.addAll({rawEvent(0, sleepEvent), batteryEvent(1, reading(50, isCharging)),
                        rawEvent(60, wakeEvent), batteryEvent(61, reading(50)),
                        batteryEvent(62, reading(50, isCharging))});
        QCOMPARE(fixture.at(2)->summary(), u"System powering on after 1 minute"_s);
        QCOMPARE(fixture.at(4)->pair(), fixture.at(3));
        QCOMPARE(fixture.log.battery(u"BAT0"_s), fixture.at(4));
        QCOMPARE(fixture.log.batteryEnumerator(), QStringList{u"BAT0"_s});
        QCOMPARE(fixture.log.groups(), (QStringList{u"Power State"_s, u"Power Source - BAT0"_s}));
        QVERIFY(!fixture.log.battery(u"BAT1"_s));
    }

    /// However the events are cut into batches, only the duplicates that come later make a difference.
    void batchesMakeNoDifference()
    {
        Events events;
        for (int i = 0; i < 60; ++i) {
            events.append(rawEvent(i * 10, i % 4 < 2 ? sleepEvent : wakeEvent));
            events.append(batteryEvent(i * 10 + 1, reading(i / 3, {{charging, i % 7 < 3}})));
            events.append(rawEvent(i * 10 + 2, i % 2 ? u"Stopping monitor"_s : u"Starting monitor"_s));
        }
        const auto dumpOf = [&](qsizetype size) {
            LogFixture fixture(Texts::English);
            for (qsizetype at = 0; at < events.size(); at += size)
                fixture.addAll(events.mid(at, size));
            for (ZELKLWCLogEntry *entry : fixture.log.entry())
                entry->initAttributes();
            return LogDump::of(fixture.log);
        };
        QCOMPARE(dumpOf(1), dumpOf(events.size()));
        QCOMPARE(dumpOf(7), dumpOf(events.size()));
    }

    void aBatchLeftOpenAwakesLater()
    {
        LogFixture fixture(Texts::English);
        fixture.log.beginExternalEntries();
        fixture.log.addExternalEntry(rawEvent(0, sleepEvent));
        fixture.log.addExternalEntry(rawEvent(60, wakeEvent));
        fixture.addAll({rawEvent(120, sleepEvent)});
        QCOMPARE(fixture.at(1)->pairRepresents(), u"Awake"_s);
        QCOMPARE(fixture.at(2)->summary(), u"System sleeping after 1 minute"_s);
    }

    void duplicatesMoveTheEnds()
    {
        LogFixture fixture;
        fixture.addAll({batteryEvent(3600, reading(50)), batteryEvent(oneDay, reading(50)),
                        batteryEvent(3 * oneDay + 60, reading(50))});
        QCOMPARE(fixture.log.count(), 1);
        QCOMPARE(fixture.log.finalDate(), ZELKDate(3 * oneDay + 60));
        QCOMPARE(fixture.range.distantPast(), ZELKDate(0));
        QCOMPARE(fixture.range.distantFuture(), ZELKDate(4 * oneDay - 1));
        // A duplicate of an entry that is not the last one counts for the final date alone.
        fixture.addAll({rawEvent(3 * oneDay + 70, sleepEvent), batteryEvent(9 * oneDay, reading(50))});
        QCOMPARE(fixture.log.finalDate(), ZELKDate(9 * oneDay));
        QCOMPARE(fixture.range.distantFuture(), ZELKDate(4 * oneDay - 1));
    }

    void theLimitsAreWholeLocalDays()
    {
        const auto limits = [](const QByteArray &zone, const char *wall) {
            LogFixture fixture(Texts::Keys, zone);
            QDateTime time = QDateTime::fromString(QString::fromLatin1(wall), Qt::ISODate);
            time.setTimeZone(QTimeZone(zone));
            fixture.add(plainAt(ZELKDate::fromDateTime(time).timeIntervalSinceReferenceDate()));
            return fixture.range.distantPast().description().left(19) + u", "_s +
                   fixture.range.distantFuture().description().left(19);
        };
        QCOMPARE(limits("Asia/Kathmandu", "2024-02-29T23:59:59"),
                 u"2024-02-29 00:00:00, 2024-02-29 23:59:59"_s);
        QCOMPARE(limits("Europe/Berlin", "2024-03-31T12:00:00"),
                 u"2024-03-31 00:00:00, 2024-03-31 23:59:59"_s);
        QCOMPARE(limits("Europe/Berlin", "2024-10-27T12:00:00"),
                 u"2024-10-27 00:00:00, 2024-10-27 23:59:59"_s);
        // A day whose clock goes from 0:00 to 1:00 has no midnight.
        QCOMPARE(limits("America/Sao_Paulo", "2018-11-03T12:00:00"),
                 u"2018-11-03 00:00:00, 2018-11-03 23:59:59"_s);
        QCOMPARE(limits("America/Sao_Paulo", "2018-11-04T12:00:00"),
                 u"2018-11-04 01:00:00, 2018-11-04 23:59:59"_s);
    }

    void takesDatesBeyondAnyCalendar()
    {
        LogFixture fixture;
        fixture.addAll({plainAt(60), rawEvent(1e300, sleepEvent), rawEvent(-1e300, wakeEvent)});
        QCOMPARE(fixture.log.count(), 3);
        QVERIFY(!fixture.at(2)->stringValue().isEmpty());
        QCOMPARE(fixture.log.finalDate(), ZELKDate(-1e300));
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

    /// Searches find what a walk finds, in order and where so many of ten events are put anywhere.
    void findWhatAWalkFinds()
    {
        for (const int disorder : {0, 1, 5, 10})
            searchAndWalk(disorder);
        QCOMPARE(LogFixture().log.entryBeforeDate(ZELKDate(0)), none);
    }
    static void searchAndWalk(int disorder)
    {
        std::mt19937 random(20240305U + unsigned(disorder));
        const auto upTo = [&](int most) { return int(random() % unsigned(most + 1)); };
        // Four times a day and in its last second, from five days before on.
        const auto moment = [](int number) {
            return (number / 5 - 5 + (number % 5) * 0.25) * oneDay - (number % 5 == 4 ? 1 : 0);
        };
        for (int round = 0; round < 40; ++round) {
            LogFixture fixture;
            int now = 25;
            for (int batch = 0; batch < 3; ++batch) {
                Events events;
                for (int i = upTo(12); i > 0; --i) {
                    now += upTo(2);
                    events.append(plainAt(moment(upTo(9) < disorder ? upTo(50) : now)));
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

QTEST_GUILESS_MAIN(TestLog)
#include "tst_log.moc"
