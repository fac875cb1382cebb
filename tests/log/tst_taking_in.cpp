// How raw events come into the log: faults, dates, batches, and the outer limits of the date range.
#include "LogDump.h"
#include "LogFixture.h"
#include "ZELKPropertyList.h"

#include <QSignalSpy>
#include <QtTest>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

const QString sleepEvent = ZELKEventSystemWillSleep;
const QString wakeEvent = ZELKEventSystemHasPoweredOn;
const QString plainEvent = ZELKEventSystemWillRestart;

ZELKRawEvent withProperties(const QVariant &properties)
{
    return {{ZELKEventKeyDate, u"60.000000"_s},
            {ZELKEventKeyDescription, plainEvent},
            {ZELKEventKeyMonitor, u"m"_s},
            {ZELKEventKeyProperties, properties}};
}

ZELKRawEvent without(const QString &key)
{
    ZELKRawEvent event = rawEvent(60, plainEvent);
    event.remove(key);
    return event;
}

QString errorOf(const QString &text)
{
    return ZELKPropertyList::read(text.toStdString()).error;
}

ZELKDate moment(const QByteArray &zone, const QDateTime &wall)
{
    return ZELKDate::fromDateTime(QDateTime(wall.date(), wall.time(), QTimeZone(zone)));
}

} // namespace

class TestTakingIn : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsMadeOfNothing()
    {
        LogFixture fixture;
        QCOMPARE(fixture.log.finalDate(), ZELKDate::distantPast());
        QVERIFY(!fixture.log.pastEntry());
        QVERIFY(!fixture.log.supportsBatteries());
        QVERIFY(fixture.log.validateMenuItem());
        QSignalSpy range(&fixture.range, &ZELKLWCDateRangeController::absoluteDurationChanged);
        QSignalSpy visible(&fixture.log, &ZELKLWCLog::visibleEntriesDidChange);
        fixture.log.addExternalEntries({});
        QCOMPARE(fixture.log.count(), 0);
        QCOMPARE(fixture.log.visibleRange(), ZELKVisibleRange());
        QVERIFY(fixture.log.entry().isEmpty() && fixture.log.visibleEntriesArray().isEmpty());
        QCOMPARE(range.count(), 0);
        QCOMPARE(visible.count(), 1);
        QCOMPARE(fixture.range.distantPast(), ZELKDate::distantPast());
        QCOMPARE(fixture.range.distantFuture(), ZELKDate::distantFuture());
    }

    void standsWithoutADateRange()
    {
        const ZELKEnvironmentScope scope(environmentWith(Texts::Keys));
        ZELKLWCLog log;
        log.addExternalEntries({rawEvent(0, plainEvent)});
        QCOMPARE(log.count(), 1);
        QCOMPARE(log.countOfVisibleEntries(), 0U);
    }

    void properties_data()
    {
        QTest::addColumn<QVariant>("text");
        QTest::addColumn<ZELKDictionary>("properties");
        const auto row = [](const char *title, const QVariant &text, const ZELKDictionary &properties) {
            QTest::newRow(title) << text << properties;
        };
        row("none", u"NULL"_s, {});
        row("an empty dictionary", ZELKPropertiesText({}), {});
        row("without a prologue", u"<plist><dict><key>a</key><true/></dict></plist>"_s, {{u"a"_s, true}});
        const ZELKDictionary mixed{{u"z"_s, -1LL},
                                   {u"a"_s, 1.5},
                                   {u"d"_s, QByteArray("\0x", 2)},
                                   {u"l"_s, QVariantList{1LL, u"ü"_s}},
                                   {u"t"_s, QVariant::fromValue(ZELKDate(7))},
                                   {u"n"_s, QVariant::fromValue(ZELKDictionary{{u"k"_s, u""_s}})}};
        row("all sorts, in their order", ZELKPropertiesText(mixed), mixed);
    }

    void properties()
    {
        QFETCH(QVariant, text);
        QFETCH(ZELKDictionary, properties);
        const Console console;
        LogFixture fixture;
        ZELKLWCLogEntry *entry = fixture.add(withProperties(text));
        QVERIFY(entry);
        QCOMPARE(LogDump::exact(entry->properties()), LogDump::exact(properties));
        QCOMPARE(Console::lines(), QStringList());
    }

    void faultsDropAnEvent_data()
    {
        QTest::addColumn<ZELKRawEvent>("event");
        QTest::addColumn<QString>("error");
        const auto row = [](const char *title, const ZELKRawEvent &event, const QString &error) {
            QTest::newRow(title) << event << error;
        };
        for (const QString &text : {u"null"_s, u"NULL "_s, u"<plist><dict>"_s, u"rubbish"_s, u" "_s})
            row(qPrintable(u"text: "_s + text), withProperties(text), errorOf(text));
        row("an empty text", withProperties(u""_s), errorOf({}));
        row("no text at all", without(ZELKEventKeyProperties), errorOf({}));
        row("no text", withProperties(5LL), errorOf(u"5"_s));
        row("no dictionary", withProperties(u"<plist><string>x</string></plist>"_s),
            u"The properties are not a dictionary."_s);
        ZELKRawEvent more = withProperties(u"?"_s);
        more.remove(ZELKEventKeyMonitor);
        more.insert(ZELKEventKeyDate, 1.5);
        more.insert(u"more"_s, QVariantList{1LL});
        row("the line shows the event as it came", more, errorOf(u"?"_s));
    }

    void faultsDropAnEvent()
    {
        QFETCH(ZELKRawEvent, event);
        QFETCH(QString, error);
        const Console console;
        LogFixture fixture;
        fixture.log.addExternalEntries({rawEvent(1, sleepEvent), event, rawEvent(2, wakeEvent)});
        QVERIFY(!error.isEmpty());
        QCOMPARE(Console::lines(), QStringList{u"Error unpacking event properties:%1 <%2>"_s.arg(
                                       error, ZELKValue::description(QVariant::fromValue(event)))});
        QCOMPARE(fixture.log.count(), 2);
        QCOMPARE(fixture.log.finalDate(), ZELKDate(2));
        QCOMPARE(fixture.at(1)->past(), fixture.at(0));
        // Also last of all it moves nothing.
        event.insert(ZELKEventKeyDate, u"900.000000"_s);
        fixture.log.addExternalEntries({event});
        QCOMPARE(fixture.log.finalDate(), ZELKDate(2));
    }

    void aFaultInPlaceReadsTheSame()
    {
        const Console console;
        LogFixture fixture;
        fixture.log.beginExternalEntries();
        fixture.log.addExternalEntry(ZELKRawEventView{"1.000000", "e", "m", "<plist>"});
        fixture.log.endExternalEntries();
        QCOMPARE(Console::lines(),
                 QStringList{u"Error unpacking event properties:%1 <{date = 1.000000; description = e; "
                             "monitor = m; properties = <plist>}>"_s.arg(errorOf(u"<plist>"_s))});
    }

    void dates_data()
    {
        QTest::addColumn<QVariant>("date");
        QTest::addColumn<double>("seconds");
        const auto row = [](const char *title, const QVariant &date, double seconds) {
            QTest::newRow(title) << date << seconds;
        };
        row("as ever", u"731000000.123456"_s, 731000000.123456);
        row("negative", u"-5.500000"_s, -5.5);
        row("no decimals", u"5"_s, 5.0);
        row("few decimals", u"5.25"_s, 5.25);
        row("seven decimals", u"5.0000001"_s, 5.0000001);
        row("with an exponent", u"1e3"_s, 1000.0);
        row("many digits", u"99999999999.123456"_s, 99999999999.123456);
        row("as many digits as there may be", u"9007199254.740991"_s, 9007199254.740991);
        row("more digits than that", u"9007199254.740993"_s, 9007199254.740993);
        row("blanks before", u"  7.000000"_s, 7.0);
        row("letters behind", u"7.00000x"_s, 7.0);
        row("two points", u"7.0.000000"_s, 7.0);
        row("a plus", u"+7.000000"_s, 7.0);
        row("only a point", u".000000"_s, 0.0);
        row("a point first", u".500000"_s, 0.5);
        row("rubbish", u"yesterday"_s, 0.0);
        row("nan", u"nan"_s, 0.0);
        row("no digits", u"١.٠٠٠٠٠٠"_s, 0.0);
        row("empty", u""_s, 0.0);
        row("a number", 12LL, 12.0);
        row("a real", 12.75, 12.75);
        row("a real that is none", std::numeric_limits<double>::quiet_NaN(), 0.0);
        row("a boolean", true, 1.0);
        row("a list", QVariantList{1LL}, 0.0);
        row("absent", {}, 0.0);
    }

    void dates()
    {
        QFETCH(QVariant, date);
        QFETCH(double, seconds);
        LogFixture fixture;
        ZELKRawEvent event = without(ZELKEventKeyDate);
        if (date.isValid())
            event.insert(ZELKEventKeyDate, date);
        QCOMPARE(fixture.add(event)->date().timeIntervalSinceReferenceDate(), seconds);
        QCOMPARE(fixture.log.finalDate(), ZELKDate(seconds));
        if (date.typeId() == QMetaType::QString) {
            const std::string text = date.toString().toStdString();
            LogFixture other;
            other.log.beginExternalEntries();
            other.log.addExternalEntry(ZELKRawEventView{text, "e", "m", "NULL"});
            other.log.endExternalEntries();
            QCOMPARE(other.at(0)->date().timeIntervalSinceReferenceDate(), seconds);
        }
    }

    void absentTextsAreEmpty()
    {
        LogFixture fixture(Texts::English);
        ZELKLWCLogEntry *entry = fixture.add(without(ZELKEventKeyDescription));
        QCOMPARE(entry->summary(), QString());
        QCOMPARE(entry->kind(), ZELKEntryKind::Plain);
        entry = fixture.add(without(ZELKEventKeyMonitor));
        QCOMPARE(entry->monitor(), QString());
        QCOMPARE(entry->group(), QString());
        QVERIFY(fixture.log.groups().contains(QString()));
    }

    void aBatchIsLinkedBeforeItAwakes()
    {
        // A pair within the batch, and one that is found across another group.
        LogFixture fixture(Texts::English);
        fixture.log.addExternalEntries({rawEvent(0, sleepEvent),
                                        batteryEvent(1, reading(50, {{ZELKPropertyIsCharging, true}})),
                                        rawEvent(60, wakeEvent), batteryEvent(61, reading(50)),
                                        batteryEvent(62, reading(50, {{ZELKPropertyIsCharging, true}}))});
        QCOMPARE(fixture.at(2)->summary(), u"System powering on after 1 minute"_s);
        QCOMPARE(fixture.at(4)->pair(), fixture.at(3));
        QCOMPARE(fixture.log.battery(u"BAT0"_s), fixture.at(4));
        QCOMPARE(fixture.log.batteryEnumerator(), QStringList{u"BAT0"_s});
        QCOMPARE(fixture.log.groups(), (QStringList{u"Power State"_s, u"Power Source - BAT0"_s}));
        QVERIFY(!fixture.log.battery(u"BAT1"_s));
        QVERIFY(!fixture.log.finalGroupEntries().value(u"BAT1"_s));
    }

    /// However the events are cut into batches, only the duplicates that come later make a difference.
    void batchesMakeNoDifference()
    {
        QList<ZELKRawEvent> events;
        for (int i = 0; i < 60; ++i) {
            events.append(rawEvent(i * 10, i % 4 < 2 ? sleepEvent : wakeEvent));
            events.append(batteryEvent(i * 10 + 1, reading(i / 3, {{ZELKPropertyIsCharging, i % 7 < 3}})));
            events.append(rawEvent(i * 10 + 2, i % 2 ? u"Stopping monitor"_s : u"Starting monitor"_s));
        }
        QStringList dumps;
        for (const qsizetype size : {qsizetype(1), qsizetype(7), events.size()}) {
            LogFixture fixture(Texts::English);
            for (qsizetype at = 0; at < events.size(); at += size)
                fixture.log.addExternalEntries(events.mid(at, size));
            for (ZELKLWCLogEntry *entry : fixture.log.entry())
                entry->initAttributes();
            dumps.append(LogDump::of(fixture.log).join(u'\n'));
        }
        QCOMPARE(dumps.at(0), dumps.at(1));
        QCOMPARE(dumps.at(0), dumps.at(2));
    }

    void aBatchLeftOpenAwakesLater()
    {
        LogFixture fixture(Texts::English);
        fixture.log.beginExternalEntries();
        fixture.log.addExternalEntry(rawEvent(0, sleepEvent));
        fixture.log.addExternalEntry(rawEvent(60, wakeEvent));
        fixture.log.addExternalEntries({rawEvent(120, sleepEvent)});
        QCOMPARE(fixture.at(1)->pairRepresents(), u"Awake"_s);
        QCOMPARE(fixture.at(2)->summary(), u"System sleeping after 1 minute"_s);
    }

    void duplicatesMoveTheEnds()
    {
        LogFixture fixture;
        fixture.log.addExternalEntries({batteryEvent(3600, reading(50))});
        QCOMPARE(fixture.range.distantPast(), ZELKDate(0));
        QCOMPARE(fixture.range.distantFuture(), ZELKDate(oneDay - 1));
        fixture.log.addExternalEntries(
            {batteryEvent(oneDay, reading(50)), batteryEvent(3 * oneDay + 60, reading(50))});
        QCOMPARE(fixture.log.count(), 1);
        QCOMPARE(fixture.log.finalDate(), ZELKDate(3 * oneDay + 60));
        QCOMPARE(fixture.range.distantFuture(), ZELKDate(4 * oneDay - 1));
        // A duplicate of an entry that is not the last one counts for the final date alone.
        fixture.log.addExternalEntries(
            {rawEvent(3 * oneDay + 70, sleepEvent), batteryEvent(9 * oneDay, reading(50))});
        QCOMPARE(fixture.log.finalDate(), ZELKDate(9 * oneDay));
        QCOMPARE(fixture.range.distantFuture(), ZELKDate(4 * oneDay - 1));
    }

    void theLimitsAreWholeLocalDays_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QDateTime>("only");
        QTest::addColumn<QDateTime>("first");
        QTest::addColumn<QDateTime>("last");
        const auto row = [](const char *zone, const char *only, const char *first, const char *last) {
            const auto parsed = [](const char *text) {
                return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate);
            };
            QTest::addRow("%s %s", zone, only)
                << QByteArray(zone) << parsed(only) << parsed(first) << parsed(last);
        };
        row("UTC", "2024-02-29T23:59:59", "2024-02-29T00:00:00", "2024-02-29T23:59:59");
        row("Asia/Kathmandu", "2024-03-01T00:00:00", "2024-03-01T00:00:00", "2024-03-01T23:59:59");
        row("Europe/Berlin", "2024-03-31T12:00:00", "2024-03-31T00:00:00", "2024-03-31T23:59:59");
        row("Europe/Berlin", "2024-10-27T12:00:00", "2024-10-27T00:00:00", "2024-10-27T23:59:59");
        // The clock goes from 0:00 to 1:00: that day has no midnight.
        row("America/Sao_Paulo", "2018-11-04T12:00:00", "2018-11-04T01:00:00", "2018-11-04T23:59:59");
        row("America/Sao_Paulo", "2018-11-03T12:00:00", "2018-11-03T00:00:00", "2018-11-03T23:59:59");
    }

    void theLimitsAreWholeLocalDays()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QDateTime, only);
        QFETCH(QDateTime, first);
        QFETCH(QDateTime, last);
        LogFixture fixture(Texts::Keys, zone);
        fixture.add(rawEvent(moment(zone, only).timeIntervalSinceReferenceDate(), plainEvent));
        QCOMPARE(fixture.range.distantPast(), moment(zone, first));
        QCOMPARE(fixture.range.distantFuture(), moment(zone, last));
    }

    void takesDatesBeyondAnyCalendar()
    {
        LogFixture fixture;
        fixture.log.addExternalEntries(
            {withProperties(u"NULL"_s), rawEvent(1e300, sleepEvent), rawEvent(-1e300, wakeEvent)});
        QCOMPARE(fixture.log.count(), 3);
        QVERIFY(!fixture.at(2)->stringValue().isEmpty());
        QCOMPARE(fixture.log.finalDate(), ZELKDate(-1e300));
    }
};

QTEST_GUILESS_MAIN(TestTakingIn)
#include "tst_taking_in.moc"
